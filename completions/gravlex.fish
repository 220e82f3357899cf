# SPDX-License-Identifier: MIT
# fish completion for gravlex(1) and the programs beside it

# The words that can stand behind what there is of a list of kinds: no kind twice, and nothing to
# remove from an empty list.
function __gravlex_kinds
    set -l words (__gravlex_values kinds)
    set -l typed (commandline -ct | string replace -r '^(--\w+=|-d)' '' | string trim -l -c '"\'')
    set -l list (string match -r '.*,' -- $typed)
    if test -n "$list"
        set -a words !(string match -v -r '^all\t' $words | string replace \t \t'Not: ')
    end
    for word in $words
        set -l name (string split -f 1 \t $word)
        contains -- $name (string split , -- "$list")
        or echo "$list$word"
    end
end

# The data sets that can stand behind what there is of a list, none twice: those of the first file
# on the command line that has any, in the table that is named there.
function __gravlex_sets
    set -l typed (commandline -ct | string replace -r '^(--\w+=|-c)' '' | string trim -l -c '"\'')
    set -l list (string match -r '.*,' -- $typed)
    set -l words (commandline -op)
    set -l table (string match -r -g '^.* (?:-t|--table)[= ]?(\d+) ' -- "$words ")
    test -n "$table"
    or set table 1
    for word in (string unescape -- $words[2..])
        test -f $word
        or continue
        set -l sets (gravlex-table --list --table $table -- $word 2>/dev/null | awk '
            NR > 1 && $2 != "-" && !known[$2]++ {
                print $2 "\t" $3 " points, s from " $4 " to " $5
            }')
        for line in $sets
            contains -- (string split -f 1 \t $line) (string split , -- "$list")
            or echo "$list$line"
        end
        test -n "$sets"
        and return
    end
end

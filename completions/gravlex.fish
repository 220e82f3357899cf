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

# The data sets of the input file: nothing can name them yet.
function __gravlex_sets
end

# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# bash completion for gravlex(1) and the programs beside it

# What the option $2 of the program $1 takes; empty if there is no such option.
_gravlex_takes() {
    local name takes text
    while read -r name takes text; do
        [[ $name != "$2" ]] || printf '%s\n' "$takes"
    done < <(_gravlex_options "$1")
}

# The data sets that can stand behind the list $1, none twice: those of the first file on the
# command line that has any, in the table that is named there.
_gravlex_sets() {
    local word table=1 line=" ${COMP_WORDS[*]} "
    local option='[[:space:]](-t|--table)( = | |)([0-9]+)[[:space:]]'
    [[ ! $line =~ $option ]] || table=${BASH_REMATCH[3]}
    for word in "${COMP_WORDS[@]:1}"; do
        word=${word//[\\\'\"]/}
        word=${word/#\~\//$HOME/}
        [[ -f $word ]] || continue
        gravlex-table --list --table "$table" -- "$word" 2>/dev/null | awk -v "list=,$1" '
            NR > 1 && $2 != "-" && !index(list, "," $2 ",") && !known[$2]++ {
                found = 1
                print $2, $3 " points, s from " $4 " to " $5
            }
            END { exit !found }' && return
    done
}

# Replies with those lines "word text" of standard input whose word begins with $2, each with $1 in
# front. When bash only lists them, the texts are shown, too.
_gravlex_reply() {
    local word text
    local -a words=() texts=()
    while read -r word text; do
        if [[ $word == "$2"* ]]; then
            words+=("$1$word")
            texts+=("$text")
        fi
    done
    COMPREPLY=("${words[@]}")
    if ((${#words[@]} > 1)) && [[ ${COMP_TYPE-} == 33 || ${COMP_TYPE-} == 63 ]]; then
        local i line
        for i in "${!words[@]}"; do
            printf -v line '%-*s (%s)' $((${#1} + 16)) "${words[i]}" "${texts[i]}"
            COMPREPLY[i]=${line:0:${COLUMNS:-80}-1}
        done
    fi
}

# The words that can stand behind the list $1, which is empty or ends with a comma: no kind twice,
# and nothing to remove from an empty list.
_gravlex_list_words() {
    local word text
    while read -r word text; do
        [[ ,$1 == *",$word,"* ]] || printf '%s %s\n' "$word" "$text"
        [[ -z $1 || $word == all || ,$1 == *",!$word,"* ]] ||
            printf '%s %s\n' "!$word" "Not: $text"
    done < <(_gravlex_values kinds)
}

# A list of kinds. Outside of quotes the history would take an exclamation mark, so that it gets a
# backslash; between double quotes nothing helps it, and no kinds are removed there.
_gravlex_reply_list() {
    local typed=$1 quote='' mark='\!'
    case $typed in
        [\'\"]*)
            quote=${typed:0:1}
            typed=${typed:1}
            mark='!'
            ;;
    esac
    typed=${typed//\\/}
    local last=${typed##*,}
    local list=${typed%"$last"}
    compopt -o nospace
    _gravlex_reply "${list//!/$mark}" "${last//!/$mark}" < <(
        _gravlex_list_words "$list" | case $quote in
            \") grep -v '^!' ;;
            \') cat ;;
            *) sed 's/^!/\\!/' ;;
        esac
    )
}

_gravlex() {
    local program=${1##*/} cur=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]}
    # "--png=fit" comes as three words.
    if [[ $cur == = ]]; then
        cur=''
    elif [[ $option == = ]]; then
        option=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    COMPREPLY=()
    local takes name text
    takes=$(_gravlex_takes "$program" "$option")
    case $takes in
        file) return ;; # the default: file names
        '' | nothing) [[ $cur == -* ]] || return ;;
    esac
    compopt +o default
    case $takes in
        '' | nothing)
            _gravlex_reply '' "$cur" < <(
                while read -r name takes text; do
                    printf '%s %s\n' "$name" "$text"
                done < <(_gravlex_options "$program")
            )
            ;;
        kinds) _gravlex_reply_list "$cur" ;;
        sets)
            compopt -o nospace
            text=${cur##*,}
            _gravlex_reply "${cur%"$text"}" "$text" < <(_gravlex_sets "${cur%"$text"}")
            ;;
        *) _gravlex_reply '' "$cur" < <(_gravlex_values "$takes") ;;
    esac
}

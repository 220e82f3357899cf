# SPDX-License-Identifier: MIT
# zsh completion for gravlex(1) and the programs beside it

# Adds the words that can stand behind what there is of a list of kinds: no kind twice, and nothing
# to remove from an empty list.
_gravlex_kinds() {
    local -a reply kinds removals used
    local word
    _gravlex_values kinds
    kinds=($reply)
    compset -S ',*'
    if compset -P '*,'; then
        removals=("!"${^${${kinds:#all:*}/:/:Not: }})
        used=(${(s:,:)${(Q)IPREFIX}##*=})
    fi
    for word in $used; do
        kinds=(${kinds:#${word}:*})
        removals=(${removals:#${word}:*})
    done
    _describe -t kinds 'kind of data' kinds -qS , -- removals -qS ,
}

# Adds the data sets that can stand behind what there is of a list, none twice: those of the first
# file on the command line that has any, in the table that is named there.
_gravlex_sets() {
    local -a sets used
    local word table=1
    [[ " $words " =~ ' (-t|--table)(=| |)([0-9]+) ' ]] && table=$match[3]
    for word in ${${(Q)words[2,-1]}/#\~\//$HOME/}; do
        [[ -f $word ]] || continue
        sets=(${(fu)"$(gravlex-table --list --table $table -- $word 2>/dev/null | awk '
            NR > 1 && $2 != "-" { print $2 ":" $3 " points, s from " $4 " to " $5 }')"})
        (($#sets)) && break
    done
    compset -S ',*'
    compset -P '*,' && used=(${(s:,:)${(Q)IPREFIX}##*=})
    for word in $used; do
        sets=(${sets:#${word}:*})
    done
    _describe -V -t sets 'data set' sets -qS ,
}

_gravlex_words() {
    local -a reply
    _gravlex_values $1
    _describe -V -t $1 ${1/-/ } reply
}

local -a reply
_gravlex_options $service
_arguments -s -S : $reply

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

# The data sets of the input file: nothing can name them yet.
_gravlex_sets() {
    _message 'data sets'
}

_gravlex_words() {
    local -a reply
    _gravlex_values $1
    _describe -V -t $1 ${1/-/ } reply
}

local -a reply
_gravlex_options $service
_arguments -s -S : $reply

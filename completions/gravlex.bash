# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# bash completion for gravlex(1)

# Each option, its short form, what it takes, and its help text.
_gravlex_options() {
    cat <<'END'
--version       -v  nothing   Print version
--png           -   file      Create image 'filename' in PNG format
--eps           -   file      Create image 'filename' in EPS format
--svg           -   file      Create image 'filename' in SVG format
--imgw          -w  number    Width of image in pixels
--imgl          -l  number    Length of image in pixels
--grid          -   nothing   Plot grid
--legend        -   nothing   Plot legend
--no-xtics      -   nothing   Do not plot xtics
--ytics         -   nothing   Plot ytics
--x2tics        -   nothing   Plot x2tics
--y2tics        -   nothing   Plot y2tics
--ratio         -r  number    Set aspect ratio for the image
--term          -   terminal  Set terminal to 'tname'
--bglp1         -   nothing   Add 1 to background data
--no-multiplot  -   nothing   Plot curves in separate windows
--no-autoshifts -   nothing   No auto shifts for data in ccombine mode
--shiftmult     -   number    Shift multiplier
--lw            -   number    Factor for width of lines
--elw           -   number    Factor for width of error bars
--psf           -   number    Factor for size of exp. data points
--smsef         -   number    Factor for standard deviations of sM(s)
--efa           -   number    Transparency factor for filled areas of standard deviations
--dread         -d  kinds     Read only indicated data types
--dcombine      -   kinds     Plot indicated data types on the same graph
--data          -   kinds     Combination of --dread and --dcombine
--table         -t  number    Table number, from which data should be read
--cread         -c  number    Read only indicated data set(s) (e.g. 1-1,2-1)
--ccombine      -   number    Plot indicated data on the same graph
--curves        -   number    Combination of --cread and --ccombine
--smserrbars    -   nothing   Plot sM(s) standard deviations as error bars
--dsmserrbars   -   nothing   Plot sM(s) standard deviations as error bars for delta sM(s)
--smserrfill    -   nothing   Plot sM(s) standard deviations as filled area
--dsmserrfill   -   nothing   Plot sM(s) standard deviations as filled area for delta sM(s)
--dsmslerrfill  -   nothing   Plot sM(s) standard deviations as filled area for levels of delta sM(s)
--style_sms     -   style     Plot style for sM(s)
--ptype_sms     -   point     Point type for sM(s)
--xmin          -   number    Set minimal value on the x-scale
--xmax          -   number    Set maximal value on the x-scale
--help          -?  nothing   Show this help message
--usage         -   nothing   Display brief usage message
END
}

_gravlex_kinds() {
    cat <<'END'
int   Total experimental intensity
tint  Theoretical intensity
dint  Delta intensity
rint  Reduced experimental intensity
lint  Levelled experimental intensity
bgl   Background
rbgl  Reduced background
lbgl  Levelled background
sms   Experimental sM(s)
tsms  Theoretical sM(s)
dsms  Delta sM(s)
sec   Sector function
iat   Atomic scattering intensity
smss  sM(s) Std. dev
ints  Int Std. dev
END
}

_gravlex_values() {
    case $1 in
        style) printf '%s\n' '1 lines' '2 points' '3 lines with points' '4 special' ;;
        point)
            printf '%s\n' '0 dot' '1 plus' '2 cross' '3 star' '4 open square' \
                '5 filled square' '6 open circle' '7 filled circle' '8 open triangle' \
                '9 filled triangle' '10 open inverted triangle' \
                '11 filled inverted triangle' '12 open diamond' '13 filled diamond' \
                '14 open pentagon' '15 filled pentagon'
            ;;
        terminal)
            printf '%s\n' 'dumb letters in the terminal' 'qt window' 'wxt window' 'x11 window'
            ;;
    esac
}

# What the option takes; empty if there is no such option.
_gravlex_takes() {
    local long short takes text
    while read -r long short takes text; do
        if [[ $1 == "$long" || $1 == "$short" ]]; then
            printf '%s\n' "$takes"
        fi
    done < <(_gravlex_options)
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
    done < <(_gravlex_kinds)
    [[ ,$1 == *,all,* ]] || printf '%s\n' 'all Every kind but lint and lbgl'
    [[ -n $1 ]] || return
    while read -r word text; do
        [[ ,$1 == *",!$word,"* ]] || printf '%s %s\n' "!$word" "Not: $text"
    done < <(_gravlex_kinds)
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
    local cur=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]}
    # "--png=fit" comes as three words.
    if [[ $cur == = ]]; then
        cur=''
    elif [[ $option == = ]]; then
        option=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    COMPREPLY=()
    local takes
    takes=$(_gravlex_takes "$option")
    case $takes in
        file) ;; # the default: file names
        kinds) _gravlex_reply_list "$cur" ;;
        number) compopt +o default ;;
        style | point | terminal)
            compopt +o default
            _gravlex_reply '' "$cur" < <(_gravlex_values "$takes")
            ;;
        *)
            [[ $cur == -* ]] || return
            compopt +o default
            local long short text
            _gravlex_reply '' "$cur" < <(
                while read -r long short takes text; do
                    printf '%s %s\n' "$long" "$text"
                    [[ $short == - ]] || printf '%s %s\n' "$short" "$text"
                done < <(_gravlex_options)
            )
            ;;
    esac
}

complete -o default -F _gravlex gravlex

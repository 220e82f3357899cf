# SPDX-License-Identifier: MIT
# fish completion for gravlex(1)

# The words that can stand behind what there is of a list of kinds: no kind twice, and nothing to
# remove from an empty list.
function __gravlex_kinds
    set -l kinds \
        int\t'Total experimental intensity' \
        tint\t'Theoretical intensity' \
        dint\t'Delta intensity' \
        rint\t'Reduced experimental intensity' \
        lint\t'Levelled experimental intensity' \
        bgl\tBackground \
        rbgl\t'Reduced background' \
        lbgl\t'Levelled background' \
        sms\t'Experimental sM(s)' \
        tsms\t'Theoretical sM(s)' \
        dsms\t'Delta sM(s)' \
        sec\t'Sector function' \
        iat\t'Atomic scattering intensity' \
        smss\t'sM(s) Std. dev' \
        ints\t'Int Std. dev'
    set -l typed (commandline -ct | string replace -r '^(--\w+=|-d)' '' | string trim -l -c '"\'')
    set -l list (string match -r '.*,' -- $typed)
    set -l words $kinds all\t'Every kind but lint and lbgl'
    if test -n "$list"
        set -a words !(string replace \t \t'Not: ' $kinds)
    end
    for word in $words
        set -l name (string split -f 1 \t $word)
        contains -- $name (string split , -- "$list")
        or echo "$list$word"
    end
end

set -l points 0\tdot 1\tplus 2\tcross 3\tstar 4\t'open square' 5\t'filled square' \
    6\t'open circle' 7\t'filled circle' 8\t'open triangle' 9\t'filled triangle' \
    10\t'open inverted triangle' 11\t'filled inverted triangle' 12\t'open diamond' \
    13\t'filled diamond' 14\t'open pentagon' 15\t'filled pentagon'
set -l styles 1\tlines 2\tpoints 3\t'lines with points' 4\tspecial
set -l terminals dumb\t'letters in the terminal' qt\twindow wxt\twindow x11\twindow

# A list for -a must be one word, in which the words and texts are quoted.
set -l points (string escape -- $points | string join ' ')
set -l styles (string escape -- $styles | string join ' ')
set -l terminals (string escape -- $terminals | string join ' ')

complete -c gravlex -s v -l version -d 'Print version'
complete -c gravlex -l png -rF -d 'Create image \'filename\' in PNG format'
complete -c gravlex -l eps -rF -d 'Create image \'filename\' in EPS format'
complete -c gravlex -l svg -rF -d 'Create image \'filename\' in SVG format'
complete -c gravlex -s w -l imgw -x -d 'Width of image in pixels'
complete -c gravlex -s l -l imgl -x -d 'Length of image in pixels'
complete -c gravlex -l grid -d 'Plot grid'
complete -c gravlex -l legend -d 'Plot legend'
complete -c gravlex -l no-xtics -d 'Do not plot xtics'
complete -c gravlex -l ytics -d 'Plot ytics'
complete -c gravlex -l x2tics -d 'Plot x2tics'
complete -c gravlex -l y2tics -d 'Plot y2tics'
complete -c gravlex -s r -l ratio -x -d 'Set aspect ratio for the image'
complete -c gravlex -l term -x -a $terminals -d 'Set terminal to \'tname\''
complete -c gravlex -l bglp1 -d 'Add 1 to background data'
complete -c gravlex -l no-multiplot -d 'Plot curves in separate windows'
complete -c gravlex -l no-autoshifts -d 'No auto shifts for data in ccombine mode'
complete -c gravlex -l shiftmult -x -d 'Shift multiplier'
complete -c gravlex -l lw -x -d 'Factor for width of lines'
complete -c gravlex -l elw -x -d 'Factor for width of error bars'
complete -c gravlex -l psf -x -d 'Factor for size of exp. data points'
complete -c gravlex -l smsef -x -d 'Factor for standard deviations of sM(s)'
complete -c gravlex -l efa -x \
    -d 'Transparency factor for filled areas of standard deviations'
complete -c gravlex -s d -l dread -x -a '(__gravlex_kinds)' -d 'Read only indicated data types'
complete -c gravlex -l dcombine -x -a '(__gravlex_kinds)' \
    -d 'Plot indicated data types on the same graph'
complete -c gravlex -l data -x -a '(__gravlex_kinds)' -d 'Combination of --dread and --dcombine'
complete -c gravlex -s t -l table -x -d 'Table number, from which data should be read'
complete -c gravlex -s c -l cread -x -d 'Read only indicated data set(s) (e.g. 1-1,2-1)'
complete -c gravlex -l ccombine -x -d 'Plot indicated data on the same graph'
complete -c gravlex -l curves -x -d 'Combination of --cread and --ccombine'
complete -c gravlex -l smserrbars -d 'Plot sM(s) standard deviations as error bars'
complete -c gravlex -l dsmserrbars \
    -d 'Plot sM(s) standard deviations as error bars for delta sM(s)'
complete -c gravlex -l smserrfill -d 'Plot sM(s) standard deviations as filled area'
complete -c gravlex -l dsmserrfill \
    -d 'Plot sM(s) standard deviations as filled area for delta sM(s)'
complete -c gravlex -l dsmslerrfill \
    -d 'Plot sM(s) standard deviations as filled area for levels of delta sM(s)'
complete -c gravlex -l style_sms -x -a $styles -d 'Plot style for sM(s)'
complete -c gravlex -l ptype_sms -x -a $points -d 'Point type for sM(s)'
complete -c gravlex -l xmin -x -d 'Set minimal value on the x-scale'
complete -c gravlex -l xmax -x -d 'Set maximal value on the x-scale'
complete -c gravlex -s '?' -l help -d 'Show this help message'
complete -c gravlex -l usage -d 'Display brief usage message'

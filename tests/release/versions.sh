#!/bin/sh
# SPDX-License-Identifier: MIT
#
# versions.sh SOURCES VERSION: whoever tells the version of the release tells the same one, and the
# same day.
set -eu
cd "$1"
version=$2
failed=0

# same FILE SED-SCRIPT EXPECTED: the first line that the script prints.
same() {
    found=$(sed -n "$2" "$1" | head -n 1)
    [ "$found" = "$3" ] && return
    echo "$1: '$found' instead of '$3'"
    failed=1
}

day=$(sed -n 's/^## .* (\(.*\))$/\1/p' CHANGELOG.md | head -n 1)
same CHANGELOG.md 's/^## \([^ ]*\) .*/\1/p' "$version"
same CITATION.cff 's/^version: //p' "$version"
same CITATION.cff 's/^date-released: //p' "$day"
same debian/changelog 's/^gravlex (\(.*\)) .*/\1/p' "$version"
same debian/changelog 's/^ -- .*>  //p' "$(LC_ALL=C date -u -d "$day 12:00" '+%a, %d %b %Y %T %z')"

# What gravlex itself prints is another number, which its manual explains.
printed=$(sed -n 's/^const char VERSION.* = "\(.*\)";/\1/p' src/kova/run/options.cpp)
same man/gravlex.1 's/^\.Ql \(.*-g[0-9a-f]*\) ,$/\1/p' "$printed"
exit $failed

#!/bin/sh
# SPDX-License-Identifier: MIT
#
# installed.sh SOURCES BUILD: what is installed is whole, and is uninstalled as README says.
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
uninstall=$(sed -n 's|^    sudo \(xargs .*\)<build/install_manifest.txt$|\1|p' "$1/README.md")

# In a folder that stands for /, so that the list is that of an installation.
DESTDIR=$folder cmake --install "$2" >"$folder/said" || { cat "$folder/said"; exit 1; }
rm "$folder/said"
document=$(find "$folder" -path '*/gravlex/README.md')
python3 "$1/tests/release/links.py" "${document%/*}"

sed "s|^|$folder|" "$2/install_manifest.txt" | sh -c "$uninstall"
find "$folder" -type f >&2
[ -z "$(find "$folder" -type f)" ]

#!/bin/sh
# SPDX-License-Identifier: MIT
#
# reproducible.sh SOURCES COMPILER: two builds in two folders give the same bytes, and none that
# tell where they were made.
set -eu
sources=$1 compiler=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# Each build is to compile for itself.
export CCACHE_DISABLE=1

# build FOLDER
build() {
    cmake -S "$1" -B "$1/out" -DGRAVLEX_TESTS=OFF -DCMAKE_BUILD_TYPE=Release \
        "-DCMAKE_CXX_COMPILER=$compiler"
    cmake --build "$1/out" -j 2
}

for name in one another/and/deeper; do
    mkdir -p "$work/$name"
    for part in CMakeLists.txt cmake completions src; do
        cp -R "$sources/$part" "$work/$name/"
    done
    if ! build "$work/$name" >"$work/log" 2>&1; then
        cat "$work/log"
        exit 1
    fi
done

cmp "$work/one/out/gravlex" "$work/another/and/deeper/out/gravlex"
if grep -aF "$work" "$work/one/out/gravlex"; then
    echo "it tells where it was built"
    exit 1
fi
echo "same bytes"

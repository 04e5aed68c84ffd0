#!/usr/bin/env bash
# Installs the build into a scratch prefix, compiles a program that includes
# only <zuvolib/zuvolib.h> and links only through pkg-config, runs it, and
# compares the ping document it prints with one written out here by hand.
# CXXFLAGS, when set, is passed to the compiler (e.g. -stdlib=libc++).
set -euo pipefail
build=$1 work=$2 src=$3 base=$4 cxx=$5

rm -rf "$work"
mkdir -p "$work"
cmake --install "$build" --prefix "$work/prefix" >"$work/install.log"
pc=$(find "$work/prefix" -name ZuvoClientLib.pc | head -n 1)
[ -n "$pc" ] || { echo "ZuvoClientLib.pc was not installed"; exit 1; }
export PKG_CONFIG_PATH=$(dirname "$pc")

# shellcheck disable=SC2046,SC2086
"$cxx" -std=c++17 ${CXXFLAGS:-} -o "$work/ping" "$src/ping_main.cpp" $(pkg-config --cflags --libs ZuvoClientLib)
LD_LIBRARY_PATH=$(pkg-config --variable=libdir ZuvoClientLib) "$work/ping" >"$work/actual.xml"

payload=$(printf '<zuvo:clientservertimes>\n\t<zuvo:servertime>1000</zuvo:servertime>\n\t<zuvo:clienttime>2000</zuvo:clienttime>\n</zuvo:clientservertimes>\n' | base64 -w0)
{
    printf '<?xml version="1.0" encoding="UTF-8"?>\n'
    printf '<zuvo:request xmlns:zuvo="%s2.7">\n' "$base"
    printf '\t<zuvo:header>\n'
    printf '\t\t<zuvo:softwareversion>sw-1</zuvo:softwareversion>\n'
    printf '\t\t<zuvo:uiversion>ui-2</zuvo:uiversion>\n'
    printf '\t\t<zuvo:payload encrypted="false">%s</zuvo:payload>\n' "$payload"
    printf '\t</zuvo:header>\n'
    printf '\t<zuvo:ping/>\n'
    printf '</zuvo:request>\n'
} >"$work/expected.xml"

if ! cmp -s "$work/expected.xml" "$work/actual.xml"; then
    echo "installed library printed a different ping document:"
    diff "$work/expected.xml" "$work/actual.xml" || true
    exit 1
fi
echo "installed package OK: ping document matches"

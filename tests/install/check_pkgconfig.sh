#!/usr/bin/env bash
# Installs the build into a scratch prefix and builds two programs linked
# only through pkg-config (`--static` when the libraries are static): one
# that includes only <zuvolib/zuvolib.h> and prints a ping document, compared
# with one written out here by hand, and the device example.
# Usage: check_pkgconfig.sh BUILD_DIR WORK_DIR SOURCE_DIR NAMESPACE_BASE CXX EXAMPLE_DIR
# CXXFLAGS, when set, is passed to the compiler (e.g. -stdlib=libc++).
set -euo pipefail
build=$1 work=$2 src=$3 base=$4 cxx=$5 example=$6
# shellcheck source=tests/install/common.sh
source "$(dirname "$0")/common.sh"

rm -rf "$work"
mkdir -p "$work"
install_into "$build" "$work/prefix"
pc=$(find "$work/prefix" -name ZuvoClientLib.pc | head -n 1)
[ -n "$pc" ] || { echo "ZuvoClientLib.pc was not installed"; exit 1; }
# Only the installed package and (in a cross build) the target's packages.
PKG_CONFIG_PATH=$(dirname "$pc")
export PKG_CONFIG_PATH
[ -z "${ZUVO_PKG_CONFIG_LIBDIR:-}" ] || export PKG_CONFIG_LIBDIR=$ZUVO_PKG_CONFIG_LIBDIR

kind=shared static=()
if is_static "$work/prefix"; then
    kind=static static=(--static)
fi
libdir=$(pkg-config --variable=libdir ZuvoClientLib)
flags=$(pkg-config "${static[@]}" --cflags --libs ZuvoClientLib)
for program in "$src/ping_main.cpp" "$example/device.cpp"; do
    name=$(basename "$program" .cpp)
    # shellcheck disable=SC2086
    "$cxx" -std=c++17 ${CXXFLAGS:-} ${ZUVO_TARGET_FLAGS:-} -o "$work/$name" "$program" $flags \
        -Wl,-rpath,"$libdir" 2>"$work/$name.log" ||
        { echo "linking $name with: $flags"; cat "$work/$name.log"; exit 1; }
done
run_target "$work/ping_main" >"$work/actual.xml"
run_target "$work/device" >"$work/device.out" || { cat "$work/device.out"; exit 1; }
check_device_output "$work/device.out"

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
echo "installed $kind package OK through pkg-config: ping document matches, device example ran"

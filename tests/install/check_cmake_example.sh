#!/usr/bin/env bash
# Installs the build into a scratch prefix, then configures and builds the
# device example (examples/device, a project of its own) against the
# installed CMake package and runs it; also runs the installed zuvo tool.
# Usage: check_cmake_example.sh BUILD_DIR WORK_DIR EXAMPLE_SOURCE_DIR CXX
# CXXFLAGS, when set, is passed to the example's build (e.g. -stdlib=libc++).
set -euo pipefail
build=$1 work=$2 example=$3 cxx=$4

rm -rf "$work"
mkdir -p "$work"
cmake --install "$build" --prefix "$work/prefix" >"$work/install.log"

cmake -S "$example" -B "$work/device" -DCMAKE_PREFIX_PATH="$work/prefix" \
    -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_CXX_FLAGS="${CXXFLAGS:-}" >"$work/configure.log" ||
    { cat "$work/configure.log"; exit 1; }
cmake --build "$work/device" >"$work/build.log" || { cat "$work/build.log"; exit 1; }

# The imported target carries the run path to the installed libraries.
"$work/device/device" >"$work/device.out" || { cat "$work/device.out"; exit 1; }
grep -q '^	<zuvo:ping/>$' "$work/device.out" || { echo "no ping document"; cat "$work/device.out"; exit 1; }
grep -q '^registration code K7Q2MX, retry every 5 s for 900 s; server time 1700000100$' \
    "$work/device.out" || { echo "pre-registration not read"; cat "$work/device.out"; exit 1; }

# The tool is installed beside the library and finds it on its own.
if [ -e "$work/prefix/bin/zuvo" ]; then
    env -u LD_LIBRARY_PATH "$work/prefix/bin/zuvo" build ping --set softwareVersion=9 |
        grep -q '<zuvo:softwareversion>9</zuvo:softwareversion>' ||
        { echo "installed zuvo does not run"; exit 1; }
fi
echo "installed package OK: device example built, ran and read its response"

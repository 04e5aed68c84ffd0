#!/usr/bin/env bash
# Installs the build into a scratch prefix, then configures and builds the
# device example (examples/device, a project of its own) against the
# installed CMake package and runs it; also runs the installed zuvo tool.
# Works the same for shared and static libraries.
# Usage: check_cmake_example.sh BUILD_DIR WORK_DIR EXAMPLE_SOURCE_DIR CXX
# CXXFLAGS, when set, is passed to the example's build (e.g. -stdlib=libc++).
set -euo pipefail
build=$1 work=$2 example=$3 cxx=$4
# shellcheck source=tests/install/common.sh
source "$(dirname "$0")/common.sh"

rm -rf "$work"
mkdir -p "$work"
install_into "$build" "$work/prefix"

# A cross toolchain searches packages only inside its sysroot: name the
# installed package's directory itself.
package_args=(-DCMAKE_PREFIX_PATH="$work/prefix")
if [ -n "${ZUVO_CMAKE_ARGS:-}" ]; then
    config=$(find "$work/prefix" -name ZuvoClientLibConfig.cmake | head -n 1)
    # shellcheck disable=SC2206
    package_args+=(-DZuvoClientLib_DIR="$(dirname "$config")" $ZUVO_CMAKE_ARGS)
fi
cmake -S "$example" -B "$work/device" "${package_args[@]}" -DCMAKE_CXX_COMPILER="$cxx" \
    -DCMAKE_CXX_FLAGS="${CXXFLAGS:-}" >"$work/configure.log" || { cat "$work/configure.log"; exit 1; }
cmake --build "$work/device" >"$work/build.log" || { cat "$work/build.log"; exit 1; }

# The imported target carries the run path to the installed libraries.
run_target "$work/device/device" >"$work/device.out" || { cat "$work/device.out"; exit 1; }
check_device_output "$work/device.out"

# The tool is installed beside the library and finds it on its own.
if [ -e "$work/prefix/bin/zuvo" ]; then
    (unset LD_LIBRARY_PATH; run_target "$work/prefix/bin/zuvo" build ping --set softwareVersion=9) |
        grep -q '<zuvo:softwareversion>9</zuvo:softwareversion>' ||
        { echo "installed zuvo does not run"; exit 1; }
fi
kind=shared
is_static "$work/prefix" && kind=static
echo "installed $kind package OK: device example built, ran and read its response"

#!/usr/bin/env bash
# Builds the three libraries again as static archives (BUILD_SHARED_LIBS=OFF)
# and runs both install checks on that build: the device example links them
# through the CMake package and through `pkg-config --static`.
# Usage: check_static.sh SOURCE_DIR WORK_DIR NAMESPACE_BASE CXX
set -euo pipefail
source_dir=$1 work=$2 base=$3 cxx=$4
here=$(dirname "$0")

rm -rf "$work"
mkdir -p "$work"
# Only the libraries, without optimisation or debug information (build type
# None): this checks linking, not speed.
# shellcheck disable=SC2086
cmake -S "$source_dir" -B "$work/build" -DBUILD_SHARED_LIBS=OFF -DCMAKE_BUILD_TYPE=None \
    -DZUVO_BUILD_TESTS=OFF -DZUVO_BUILD_TOOLS=OFF -DZUVO_BUILD_EXAMPLES=OFF \
    -DZUVO_NAMESPACE_BASE="$base" -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_CXX_FLAGS="${CXXFLAGS:-}" ${ZUVO_CMAKE_ARGS:-} \
    >"$work/configure.log" || { cat "$work/configure.log"; exit 1; }
cmake --build "$work/build" -j"$(nproc)" >"$work/build.log" || { cat "$work/build.log"; exit 1; }

bash "$here/check_cmake_example.sh" "$work/build" "$work/cmake" "$source_dir/examples/device" "$cxx"
bash "$here/check_pkgconfig.sh" "$work/build" "$work/pkgconfig" "$here" "$base" "$cxx" \
    "$source_dir/examples/device"

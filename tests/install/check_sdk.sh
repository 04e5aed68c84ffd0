#!/usr/bin/env bash
# The library built against a device SDK instead of its own stand-ins: the
# stand-ins alone are installed into a prefix of their own (playing the
# SDK), the library is built with ZUVO_BUILD_PLATFORM=OFF against it, and
# outside programs link the result through the CMake package and through
# pkg-config. Nothing of the stand-ins may be built or installed by that
# second build.
# Usage: check_sdk.sh SOURCE_DIR WORK_DIR NAMESPACE_BASE CXX
set -euo pipefail
source_dir=$1 work=$2 base=$3 cxx=$4
here=$(dirname "$0")

rm -rf "$work"
mkdir -p "$work"
# step NAME COMMAND...: runs a step, its output kept in WORK/NAME.log.
step() {
    local name=$1
    shift
    "$@" >"$work/$name.log" 2>&1 || { echo "$name failed:"; cat "$work/$name.log"; exit 1; }
}
flags=(-DCMAKE_BUILD_TYPE=None -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_CXX_FLAGS="${CXXFLAGS:-}"
       -DCMAKE_INSTALL_LIBDIR=lib)

sdk=$work/sdk
step sdk-configure cmake -S "$source_dir/platform" -B "$work/sdk-build" "${flags[@]}"
step sdk-build cmake --build "$work/sdk-build" -j"$(nproc)"
step sdk-install cmake --install "$work/sdk-build" --prefix "$sdk"

step configure cmake -S "$source_dir" -B "$work/build" "${flags[@]}" -DZUVO_BUILD_PLATFORM=OFF \
    -DCMAKE_PREFIX_PATH="$sdk" -DZUVO_BUILD_TESTS=OFF -DZUVO_BUILD_TOOLS=OFF \
    -DZUVO_BUILD_EXAMPLES=OFF -DZUVO_NAMESPACE_BASE="$base"
grep -qF "Device SDK: $sdk/lib/libkrel" "$work/configure.log" ||
    { echo "the SDK's libkrel was not chosen:"; cat "$work/configure.log"; exit 1; }
step build cmake --build "$work/build" -j"$(nproc)"
step install cmake --install "$work/build" --prefix "$work/prefix"

own=$(find "$work/build" "$work/prefix" \( -name 'libkrel*' -o -name 'libQRXClient*' -o \
    -name 'KrelContext*' -o -name 'Base64*' -o -name 'lexical_cast*' \) -print)
[ -z "$own" ] || { echo "the build made or installed stand-ins of its own:"; echo "$own"; exit 1; }
readelf -d "$work/prefix/lib/libZuvoClientLib.so" | grep -q 'NEEDED.*libQRXClient\.so' ||
    { echo "libZuvoClientLib.so does not need the SDK's libQRXClient"; exit 1; }

# Both checks install the build once more; the SDK is found through the
# environment, as an integrator's own build would name it.
export CMAKE_PREFIX_PATH=$sdk
bash "$here/check_cmake_example.sh" "$work/build" "$work/cmake" "$source_dir/examples/device" "$cxx"
pc=$work/prefix/lib/pkgconfig/ZuvoClientLib.pc
grep -q -- "-L$sdk/lib -lkrel -lQRXClient" "$pc" ||
    { echo "ZuvoClientLib.pc does not name the SDK's libraries:"; cat "$pc"; exit 1; }
LD_LIBRARY_PATH=$sdk/lib bash "$here/check_pkgconfig.sh" "$work/build" "$work/pkgconfig" "$here" \
    "$base" "$cxx" "$source_dir/examples/device"
echo "library built and used against the stand-ins installed as a device SDK"

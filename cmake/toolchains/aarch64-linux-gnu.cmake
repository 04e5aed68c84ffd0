# Cross build for aarch64-linux-gnu (64-bit ARM, little-endian).
#   cmake -S . -B build-aarch64 -DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/aarch64-linux-gnu.cmake \
#         -DZUVO_SYSROOT=/path/to/sysroot
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(ZUVO_TRIPLET aarch64-linux-gnu)
include(${CMAKE_CURRENT_LIST_DIR}/cross-linux.cmake)

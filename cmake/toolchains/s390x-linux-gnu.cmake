# Cross build for s390x-linux-gnu (64-bit IBM Z: big-endian, so it checks byte order).
#   cmake -S . -B build-s390x -DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/s390x-linux-gnu.cmake \
#         -DZUVO_SYSROOT=/path/to/sysroot
set(CMAKE_SYSTEM_PROCESSOR s390x)
set(ZUVO_TRIPLET s390x-linux-gnu)
include(${CMAKE_CURRENT_LIST_DIR}/cross-linux.cmake)

# Cross build for arm-linux-gnueabihf (32-bit ARM with hardware floating point; plain char is unsigned).
#   cmake -S . -B build-arm -DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/arm-linux-gnueabihf.cmake \
#         -DZUVO_SYSROOT=/path/to/sysroot
set(CMAKE_SYSTEM_PROCESSOR arm)
set(ZUVO_TRIPLET arm-linux-gnueabihf)
# GCC notes every function whose argument passing changed in GCC 7.1; this
# build mixes no objects from older compilers.
set(CMAKE_CXX_FLAGS_INIT "-Wno-psabi")
include(${CMAKE_CURRENT_LIST_DIR}/cross-linux.cmake)

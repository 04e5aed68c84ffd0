# Common part of the cross toolchain files: a Debian cross compiler for
# ZUVO_TRIPLET, the target's libraries in the sysroot ZUVO_SYSROOT, and
# qemu-user (qemu-CMAKE_SYSTEM_PROCESSOR) to run the target's programs on the
# build machine.
#
# A sysroot is a directory holding the target's /usr/include and
# /usr/lib/TRIPLET (and /lib/TRIPLET): a device SDK's sysroot, or target
# packages unpacked there (scripts/cross-test builds one from Debian's).
# The compiler brings the target's C and C++ runtime under /usr/TRIPLET.

set(ZUVO_SYSROOT "" CACHE PATH "Directory holding the target's headers and libraries")
if(NOT ZUVO_SYSROOT)
    message(FATAL_ERROR "Set ZUVO_SYSROOT to the target's sysroot (-DZUVO_SYSROOT=DIR)")
endif()
# try_compile projects configure with this file again: hand them the sysroot.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZUVO_SYSROOT ZUVO_TRIPLET)

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${ZUVO_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${ZUVO_TRIPLET}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${ZUVO_TRIPLET})

# Headers, libraries and packages come from the sysroot (and the compiler's
# own runtime); programs run during the build come from the build machine.
set(CMAKE_FIND_ROOT_PATH ${ZUVO_SYSROOT} /usr/${ZUVO_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The compiler is not built for this sysroot, so name its directories. A
# Debian-style sysroot keeps the target's libraries in usr/lib/TRIPLET and
# lib/TRIPLET, an SDK's often in usr/lib and lib; the linker follows shared
# libraries' own dependencies through -rpath-link.
set(_zuvo_include "-isystem ${ZUVO_SYSROOT}/usr/include/${ZUVO_TRIPLET} -isystem ${ZUVO_SYSROOT}/usr/include")
set(_zuvo_libdirs ${ZUVO_SYSROOT}/usr/lib/${ZUVO_TRIPLET} ${ZUVO_SYSROOT}/lib/${ZUVO_TRIPLET}
                  ${ZUVO_SYSROOT}/usr/lib ${ZUVO_SYSROOT}/lib)
set(_zuvo_link "")
foreach(dir ${_zuvo_libdirs})
    string(APPEND _zuvo_link " -L${dir} -Wl,-rpath-link,${dir}")
endforeach()
string(APPEND CMAKE_C_FLAGS_INIT " ${_zuvo_include}")
string(APPEND CMAKE_CXX_FLAGS_INIT " ${_zuvo_include}")
foreach(kind EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "${_zuvo_link}")
endforeach()

# ctest runs the target's programs under qemu-user, with the target's C
# runtime as its root and the sysroot's libraries on its library path.
find_program(ZUVO_QEMU_PATH qemu-${CMAKE_SYSTEM_PROCESSOR})
if(ZUVO_QEMU_PATH)
    list(JOIN _zuvo_libdirs ":" _zuvo_library_path)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${ZUVO_QEMU_PATH} -L /usr/${ZUVO_TRIPLET} -E
        "LD_LIBRARY_PATH=${_zuvo_library_path}")
endif()

# What ZuvoClientLib.pc says about the cipher context and the codec:
#   ZUVO_PC_PLATFORM_CFLAGS    -I for the device SDK's headers, when not the compiler's own
#   ZUVO_PC_PLATFORM_LIBS      -lkrel -lQRXClient, after -L for the SDK's directory
#   ZUVO_PC_REQUIRES_PRIVATE   libcrypto for the stand-in cipher (static linking)
# With the stand-ins they are installed beside the library, so no directory
# is named. A device SDK's directories are written without the sysroot, which
# pkg-config puts back from PKG_CONFIG_SYSROOT_DIR.

set(ZUVO_PC_PLATFORM_CFLAGS "")
set(ZUVO_PC_PLATFORM_LIBS "-lkrel -lQRXClient")
set(ZUVO_PC_REQUIRES_PRIVATE "libcrypto")
if(NOT ZUVO_BUILD_PLATFORM)
    set(ZUVO_PC_REQUIRES_PRIVATE "")
    # zuvo_pc_dir(VAR PATH IMPLICIT_DIRS): PATH without the sysroot, or empty
    # when the compiler searches it anyway.
    function(zuvo_pc_dir var path implicit)
        set(dir "${path}")
        if(CMAKE_SYSROOT AND dir MATCHES "^${CMAKE_SYSROOT}/")
            string(LENGTH "${CMAKE_SYSROOT}" length)
            string(SUBSTRING "${dir}" ${length} -1 dir)
        endif()
        if(path IN_LIST implicit OR dir IN_LIST implicit OR dir STREQUAL "/usr/include")
            set(dir "")
        endif()
        set(${var} "${dir}" PARENT_SCOPE)
    endfunction()
    set(libs "")
    foreach(library IN ITEMS ZUVO_KREL_LIBRARY ZUVO_QRXCLIENT_LIBRARY)
        get_filename_component(dir "${${library}}" DIRECTORY)
        zuvo_pc_dir(dir "${dir}" "${CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES}")
        if(dir AND NOT "-L${dir}" IN_LIST libs)
            list(APPEND libs "-L${dir}")
        endif()
    endforeach()
    list(APPEND libs -lkrel -lQRXClient)
    list(JOIN libs " " ZUVO_PC_PLATFORM_LIBS)
    set(cflags "")
    foreach(include IN ITEMS ZUVO_KREL_INCLUDE_DIR ZUVO_QRXCLIENT_INCLUDE_DIR)
        zuvo_pc_dir(dir "${${include}}" "${CMAKE_CXX_IMPLICIT_INCLUDE_DIRECTORIES}")
        if(dir AND NOT "-I${dir}" IN_LIST cflags)
            list(APPEND cflags "-I${dir}")
        endif()
    endforeach()
    list(JOIN cflags " " ZUVO_PC_PLATFORM_CFLAGS)
endif()

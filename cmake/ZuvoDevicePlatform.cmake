# The device SDK's cipher context (libkrel, <krel/KrelContext.h>) and Base64
# codec (libQRXClient, <QRXClient/Base64.h>, <QRXClient/lexical_cast.h>), as
# the imported targets ZuvoClientLib::krel and ZuvoClientLib::QRXClient.
# They are searched for like any library: CMAKE_PREFIX_PATH, then the system
# or the toolchain's sysroot. Used by the library's build with
# ZUVO_BUILD_PLATFORM=OFF and by the CMake package that build installs.
# Sets ZUVO_PLATFORM_MISSING to what was not found (empty: all found).

find_path(ZUVO_KREL_INCLUDE_DIR krel/KrelContext.h DOC "Directory holding krel/KrelContext.h")
find_library(ZUVO_KREL_LIBRARY krel DOC "The device SDK's cipher context library")
find_path(ZUVO_QRXCLIENT_INCLUDE_DIR QRXClient/Base64.h QRXClient/lexical_cast.h
          DOC "Directory holding QRXClient/Base64.h and QRXClient/lexical_cast.h")
find_library(ZUVO_QRXCLIENT_LIBRARY QRXClient DOC "The device SDK's Base64 codec library")

set(ZUVO_PLATFORM_MISSING)
foreach(pair IN ITEMS "ZUVO_KREL_LIBRARY=libkrel" "ZUVO_KREL_INCLUDE_DIR=krel/KrelContext.h"
                      "ZUVO_QRXCLIENT_LIBRARY=libQRXClient"
                      "ZUVO_QRXCLIENT_INCLUDE_DIR=QRXClient/Base64.h")
    string(REPLACE "=" ";" pair "${pair}")
    list(GET pair 0 found)
    if(NOT ${found})
        list(GET pair 1 name)
        list(APPEND ZUVO_PLATFORM_MISSING ${name})
    endif()
endforeach()
list(JOIN ZUVO_PLATFORM_MISSING ", " ZUVO_PLATFORM_MISSING)

if(NOT ZUVO_PLATFORM_MISSING AND NOT TARGET ZuvoClientLib::QRXClient)
    add_library(ZuvoClientLib::QRXClient UNKNOWN IMPORTED)
    set_target_properties(ZuvoClientLib::QRXClient PROPERTIES
        IMPORTED_LOCATION "${ZUVO_QRXCLIENT_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${ZUVO_QRXCLIENT_INCLUDE_DIR}")
    add_library(ZuvoClientLib::krel UNKNOWN IMPORTED)
    set_target_properties(ZuvoClientLib::krel PROPERTIES
        IMPORTED_LOCATION "${ZUVO_KREL_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${ZUVO_KREL_INCLUDE_DIR}"
        INTERFACE_LINK_LIBRARIES ZuvoClientLib::QRXClient)
endif()

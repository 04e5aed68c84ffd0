# The allocator of the zuvo tool and its HTTP baseline. `zuvo serve` decodes
# every exchange for its log, small allocations by the thousand: with
# mimalloc (Debian's libmimalloc) it answers a fresh connection per request
# about a quarter faster than with the C library's allocator (scripts/bench-serve).
# Linking it is enough: its malloc and free come before the C library's for
# the whole process. Only the executables use it; the library never chooses
# an allocator for the program that links it.
#
# ZUVO_SERVER_ALLOCATOR: "mimalloc" (the default, used when it is installed)
# or "system". Sanitizer builds and cross builds keep the system allocator
# (the sanitizers bring their own; a sysroot seldom holds mimalloc).

set(ZUVO_SERVER_ALLOCATOR "mimalloc" CACHE STRING
    "Allocator of the zuvo tool and its HTTP baseline: mimalloc or system")
set_property(CACHE ZUVO_SERVER_ALLOCATOR PROPERTY STRINGS mimalloc system)

set(ZUVO_MIMALLOC_LIBRARY "")
if(ZUVO_SERVER_ALLOCATOR STREQUAL "mimalloc" AND NOT ZUVO_SANITIZE AND NOT CMAKE_CROSSCOMPILING)
    find_library(ZUVO_MIMALLOC_LIBRARY_PATH NAMES mimalloc)
    if(ZUVO_MIMALLOC_LIBRARY_PATH)
        set(ZUVO_MIMALLOC_LIBRARY "${ZUVO_MIMALLOC_LIBRARY_PATH}")
        message(STATUS "zuvo tool allocator: ${ZUVO_MIMALLOC_LIBRARY}")
    else()
        message(STATUS "zuvo tool allocator: the C library's (libmimalloc-dev is not installed)")
    endif()
endif()

# Links the chosen allocator into executable `target`. Nothing references it
# by name, so it is kept against --as-needed.
function(zuvo_use_server_allocator target)
    if(ZUVO_MIMALLOC_LIBRARY)
        target_link_libraries(${target} PRIVATE
            "-Wl,--push-state,--no-as-needed" "${ZUVO_MIMALLOC_LIBRARY}" "-Wl,--pop-state")
    endif()
endfunction()

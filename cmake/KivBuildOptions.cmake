# SPDX-License-Identifier: Apache-2.0
# Compiler settings shared by every target of the project.
#
# kiv_strict_warnings(target) turns on the warning set that our own code is
# held to (and makes every warning an error). Third-party headers are pulled
# in as system headers, so their warnings never break the build.

function(kiv_strict_warnings target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Werror
        -Wshadow=compatible-local -Wnon-virtual-dtor -Woverloaded-virtual
        -Wcast-align -Wformat=2 -Wnull-dereference -Wimplicit-fallthrough)
    # Sanitizer instrumentation makes g++ 12 report uninitialised values that
    # are not (through inlined virtual calls); the plain build keeps the check.
    if(KIV_SANITIZE)
        target_compile_options(${target} PRIVATE -Wno-error=maybe-uninitialized -Wno-maybe-uninitialized)
    endif()
endfunction()

if(KIV_SANITIZE)
    if(KIV_SANITIZE STREQUAL "address,undefined" OR KIV_SANITIZE STREQUAL "undefined,address")
        set(_kiv_sanitize_flags -fsanitize=address,undefined -fno-sanitize-recover=undefined)
    elseif(KIV_SANITIZE STREQUAL "thread")
        set(_kiv_sanitize_flags -fsanitize=thread)
    else()
        message(FATAL_ERROR "KIV_SANITIZE must be empty, address,undefined or thread (got ${KIV_SANITIZE})")
    endif()
    add_compile_options(${_kiv_sanitize_flags} -fno-omit-frame-pointer)
    add_link_options(${_kiv_sanitize_flags})
endif()

# Shared object search path: binaries in the build tree find our libraries
# without LD_LIBRARY_PATH, installed ones through the install prefix.
set(CMAKE_INSTALL_RPATH "${CMAKE_INSTALL_FULL_LIBDIR}")

# SPDX-License-Identifier: Apache-2.0
# Compiler settings shared by every target of the project.
#
# kiv_strict_warnings(target) turns on the warning set that our own code is
# held to, and with KIV_WERROR makes every warning an error. Third-party
# headers are pulled in as system headers, so their warnings never break the
# build.
#
# KIV_WERROR is off by default: a packager's newer compiler brings new
# warnings, and those must not stop a release build. The project's own
# scripts (scripts/lib/build-settings.sh) and CI turn it on.

option(KIV_WERROR "Treat compiler warnings in our own code as errors" OFF)

function(kiv_strict_warnings target)
    if(KIV_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic
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

# Where the installed files go. libkivplr keeps its SONAME in <libdir>; our
# stand-ins for the vendor's closed libraries (libconfig, libstatus, the
# discovery client) go into a private <libdir>/kivotrel, where they never meet
# a system library of the same file name (Debian has its own libconfig).
set(KIV_INSTALL_PRIVATE_LIBDIR "${CMAKE_INSTALL_LIBDIR}/kivotrel")

# Shared object search path. Binaries in the build tree find our libraries
# through the build tree's absolute paths, which CMake replaces at install
# time. Installed ones find them through $ORIGIN-relative paths computed from
# the install directories, so an installed tree works under any prefix, under
# DESTDIR and after being moved; no installed file names an absolute
# directory.
#
#   kiv_install_rpath(target FROM ${CMAKE_INSTALL_SBINDIR}
#                     TO ${CMAKE_INSTALL_LIBDIR} ${KIV_INSTALL_PRIVATE_LIBDIR})
function(_kiv_full_install_dir directory result)
    if(IS_ABSOLUTE "${directory}")
        set(${result} "${directory}" PARENT_SCOPE)
    else()
        set(${result} "${CMAKE_INSTALL_PREFIX}/${directory}" PARENT_SCOPE)
    endif()
endfunction()

function(kiv_install_rpath target)
    cmake_parse_arguments(PARSE_ARGV 1 rpath "" "FROM" "TO")
    _kiv_full_install_dir("${rpath_FROM}" origin)
    set(paths "")
    foreach(directory IN LISTS rpath_TO)
        _kiv_full_install_dir("${directory}" full)
        file(RELATIVE_PATH relative "${origin}" "${full}")
        if(relative STREQUAL "")
            list(APPEND paths "$ORIGIN")
        else()
            list(APPEND paths "$ORIGIN/${relative}")
        endif()
    endforeach()
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "${paths}")
endfunction()

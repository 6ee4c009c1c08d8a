# SPDX-License-Identifier: Apache-2.0
# Cross build for the controller: 32-bit ARM Linux with glibc, Debian's
# g++-arm-linux-gnueabihf. The C library and libstdc++ come with the
# compiler (/usr/arm-linux-gnueabihf); everything else the build links comes
# from the sysroot that scripts/armhf-sysroot assembles. Tests run under
# qemu-arm with that sysroot as its library prefix.
#
#   scripts/armhf-sysroot out/armhf-sysroot
#   cmake -S . -B build-armhf \
#       -DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/arm-linux-gnueabihf.cmake \
#       -DKIV_ARMHF_SYSROOT=$PWD/out/armhf-sysroot

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)

if(NOT KIV_ARMHF_SYSROOT)
    if(DEFINED ENV{KIV_ARMHF_SYSROOT})
        set(KIV_ARMHF_SYSROOT $ENV{KIV_ARMHF_SYSROOT})
    else()
        get_filename_component(KIV_ARMHF_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../../out/armhf-sysroot ABSOLUTE)
    endif()
endif()
set(KIV_ARMHF_SYSROOT ${KIV_ARMHF_SYSROOT} CACHE PATH "armhf sysroot made by scripts/armhf-sysroot")
if(NOT EXISTS ${KIV_ARMHF_SYSROOT}/usr/lib/arm-linux-gnueabihf)
    message(FATAL_ERROR "No armhf sysroot at ${KIV_ARMHF_SYSROOT}: run scripts/armhf-sysroot first")
endif()
# Try-compile projects see the same settings.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KIV_ARMHF_SYSROOT)

set(CMAKE_FIND_ROOT_PATH /usr/arm-linux-gnueabihf ${KIV_ARMHF_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Libraries that the sysroot's libraries depend on in turn.
set(_kiv_armhf_link_flags
    "-Wl,-rpath-link,${KIV_ARMHF_SYSROOT}/lib/arm-linux-gnueabihf -Wl,-rpath-link,${KIV_ARMHF_SYSROOT}/usr/lib/arm-linux-gnueabihf")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${_kiv_armhf_link_flags}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${_kiv_armhf_link_flags}")

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L ${KIV_ARMHF_SYSROOT})

# SPDX-License-Identifier: Apache-2.0
# Qualified include paths. Every header of the tree is included by library
# and class, the same way inside the tree and after installation:
#   <KivPlr/core/SmartPtr.h>        platform library (area folder)
#   <VpCfg/CConfig.h>, <VpSts/CStatus.h>, <KivDiscoveryClient/Discovery.h>
#                                   the closed libraries' interfaces
#   <KivConfig/DiscoverableServices.h>  the publisher
#   <KivClosed/...>, <Discoveryd/...>, <StatusCollector/...>,
#   <DiscoveryCheck/...>, <KivTest/...>  helpers that are never installed
# The sources stay in their folders. At configure time each header is staged
# as a symbolic link under one of two roots in the build tree:
#   ${KIV_PUBLIC_INCLUDE_DIR}   the interfaces of our libraries; kivplr's part
#                               of it is what the development package installs
#   ${KIV_PRIVATE_INCLUDE_DIR}  helpers that only the tree's own targets and
#                               tests see
# A shared library adds the public root as a PUBLIC build include directory
# and the private root as PRIVATE, so a helper header cannot leak into its
# interface; the tree's static helper libraries (never installed) hand the
# private root on to what links them, the tests among them.
# Links (rather than copies) keep compiler diagnostics and editors on the
# real file, and an edit needs no reconfigure.

set(KIV_PUBLIC_INCLUDE_DIR ${PROJECT_BINARY_DIR}/include)
set(KIV_PRIVATE_INCLUDE_DIR ${PROJECT_BINARY_DIR}/include-private)

# Links left over from a header that was renamed or moved would keep a stale
# spelling compiling: both roots hold nothing but links (generated headers are
# linked in too), so they are emptied before the folders stage theirs. Only
# the links go; the files they point to, and their times, stay as they were.
file(REMOVE_RECURSE ${KIV_PUBLIC_INCLUDE_DIR} ${KIV_PRIVATE_INCLUDE_DIR})

# kiv_stage_headers(PUBLIC|PRIVATE <prefix> <header>...)
#   Makes each header (relative to the calling folder, or absolute) includable
#   as <prefix>/<file name> from the public or the private root.
function(kiv_stage_headers scope prefix)
    if(scope STREQUAL "PUBLIC")
        set(root ${KIV_PUBLIC_INCLUDE_DIR})
    elseif(scope STREQUAL "PRIVATE")
        set(root ${KIV_PRIVATE_INCLUDE_DIR})
    else()
        message(FATAL_ERROR "kiv_stage_headers: PUBLIC or PRIVATE, not '${scope}'")
    endif()
    file(MAKE_DIRECTORY ${root}/${prefix})
    foreach(header IN LISTS ARGN)
        get_filename_component(source ${header} ABSOLUTE BASE_DIR ${CMAKE_CURRENT_SOURCE_DIR})
        if(NOT EXISTS ${source})
            message(FATAL_ERROR "kiv_stage_headers: ${source} does not exist")
        endif()
        get_filename_component(name ${header} NAME)
        file(CREATE_LINK ${source} ${root}/${prefix}/${name} SYMBOLIC)
    endforeach()
endfunction()

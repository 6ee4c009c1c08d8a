# SPDX-License-Identifier: Apache-2.0
# Install rules for the platform library: the shared library, its public
# headers under include/KivPlr/<area>/ beside the umbrella header KivPlr.h, a
# CMake package (find_package(KivPlr) gives KivPlr::kivplr) and kivplr.pc.
# Programs and their service files install themselves from their folders.
#
# Every file belongs to one of three install components, so that a unit gets
# only what runs there (cmake --install BUILD --component NAME):
#   runtime      discoveryd, discovery-responder, discovery-check,
#                discovery-browse, libkivplr.so.<major> and the closed
#                libraries (versioned files), the systemd units, the man
#                pages of these programs, the licence
#   collector    the reference statuscollector and its man page: a unit with
#                the device's own collector leaves it out
#   development  headers, the CMake package, kivplr.pc, libkivplr.so

include(CMakePackageConfigHelpers)

install(TARGETS kivplr
    EXPORT KivPlrTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT runtime NAMELINK_COMPONENT development)

# Headers keep the spelling they have in the tree: <KivPlr/<area>/<Class>.h>,
# so a program's include path needs <prefix>/include and nothing below it.
install(FILES ${KIVPLR_UMBRELLA_HEADER}
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KivPlr COMPONENT development)
foreach(area IN LISTS KIVPLR_AREAS)
    install(FILES ${KIVPLR_${area}_HEADERS}
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KivPlr/${area} COMPONENT development)
endforeach()

set(KIVPLR_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/KivPlr)
install(EXPORT KivPlrTargets NAMESPACE KivPlr:: DESTINATION ${KIVPLR_CMAKE_DIR}
    COMPONENT development)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/KivPlrConfig.cmake.in
    ${PROJECT_BINARY_DIR}/KivPlrConfig.cmake
    INSTALL_DESTINATION ${KIVPLR_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KivPlrConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KivPlrConfig.cmake ${PROJECT_BINARY_DIR}/KivPlrConfigVersion.cmake
    DESTINATION ${KIVPLR_CMAKE_DIR} COMPONENT development)

# The .pc file finds the prefix relative to itself, so the tree can be
# installed under any prefix (or DESTDIR) and moved afterwards.
file(RELATIVE_PATH KIVPLR_PC_PREFIX_FROM_PCDIR
    /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(${PROJECT_SOURCE_DIR}/cmake/kivplr.pc.in ${PROJECT_BINARY_DIR}/kivplr.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kivplr.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT development)

# Debian packages carry their own copyright file and turn this off.
option(KIV_INSTALL_LICENSE "Install LICENSE into share/doc/kivdiscovery" ON)
if(KIV_INSTALL_LICENSE)
    install(FILES ${PROJECT_SOURCE_DIR}/LICENSE
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/kivdiscovery COMPONENT runtime)
endif()

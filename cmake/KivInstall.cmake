# SPDX-License-Identifier: Apache-2.0
# Install rules for the platform library: the shared library, its public
# headers flat under include/KivPlr/ beside the umbrella header KivPlr.h, a
# CMake package (find_package(KivPlr) gives KivPlr::kivplr) and kivplr.pc.
# Programs and their service files install themselves from their folders.

include(CMakePackageConfigHelpers)

install(TARGETS kivplr
    EXPORT KivPlrTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

install(FILES ${KIVPLR_PUBLIC_HEADERS} ${KIVPLR_GENERATED_DIR}/KivPlr/KivPlr.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KivPlr)

set(KIVPLR_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/KivPlr)
install(EXPORT KivPlrTargets NAMESPACE KivPlr:: DESTINATION ${KIVPLR_CMAKE_DIR})

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/KivPlrConfig.cmake.in
    ${PROJECT_BINARY_DIR}/KivPlrConfig.cmake
    INSTALL_DESTINATION ${KIVPLR_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KivPlrConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KivPlrConfig.cmake ${PROJECT_BINARY_DIR}/KivPlrConfigVersion.cmake
    DESTINATION ${KIVPLR_CMAKE_DIR})

# The .pc file finds the prefix relative to itself, so the tree can be
# installed under any prefix (or DESTDIR) and moved afterwards.
file(RELATIVE_PATH KIVPLR_PC_PREFIX_FROM_PCDIR
    /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(${PROJECT_SOURCE_DIR}/cmake/kivplr.pc.in ${PROJECT_BINARY_DIR}/kivplr.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kivplr.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

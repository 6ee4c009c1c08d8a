# SPDX-License-Identifier: Apache-2.0
# The installed library, used from a project outside the tree. Host only: the
# consumer is built with the host compiler.
if(NOT CMAKE_CROSSCOMPILING)
    add_test(NAME InstallTest.ConsumerBuildsAgainstInstalledPrefix
        COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/install/run-consumer-test
            ${PROJECT_BINARY_DIR} ${CMAKE_CURRENT_SOURCE_DIR}/install/consumer)
    set_tests_properties(InstallTest.ConsumerBuildsAgainstInstalledPrefix PROPERTIES LABELS install
        RESOURCE_LOCK kiv_install_from_build_tree)
endif()

# Installed copies under two prefixes and a DESTDIR run with the build and
# source trees out of sight, and no installed file has an absolute search
# path. Needs root for its mount namespace; skips (77) where it cannot make one.
add_test(NAME InstallTest.RelocatedCopiesRunWithoutTheBuildTree
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/install/run-relocation-test
        ${PROJECT_BINARY_DIR} ${PROJECT_SOURCE_DIR} ${CMAKE_CROSSCOMPILING_EMULATOR})
# Installing makes the systemd unit for the prefix inside the build tree, so
# the tests that install take turns.
set_tests_properties(InstallTest.RelocatedCopiesRunWithoutTheBuildTree PROPERTIES
    LABELS install SKIP_RETURN_CODE 77 RESOURCE_LOCK kiv_install_from_build_tree)

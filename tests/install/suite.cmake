# SPDX-License-Identifier: Apache-2.0
# The installed library, used from a project outside the tree. Host only: the
# consumer is built with the host compiler.
if(NOT CMAKE_CROSSCOMPILING)
    add_test(NAME InstallTest.ConsumerBuildsAgainstInstalledPrefix
        COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/install/run-consumer-test
            ${PROJECT_BINARY_DIR} ${CMAKE_CURRENT_SOURCE_DIR}/install/consumer)
    set_tests_properties(InstallTest.ConsumerBuildsAgainstInstalledPrefix PROPERTIES LABELS install)
endif()

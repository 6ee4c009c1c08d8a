# SPDX-License-Identifier: Apache-2.0
# The usage examples in the headers' opening comments, compiled with the
# flags of a test file that sees every include root (the cross compiler in
# the armhf lane). docs/architecture.md, "Header examples", has the rule.
add_test(NAME HeaderExamplesTest.EveryHeaderExampleCompiles
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/headers/compile-header-examples
        ${PROJECT_BINARY_DIR} ${CMAKE_CURRENT_SOURCE_DIR}/closed/AtomicFileWriterTest.cpp)
set_tests_properties(HeaderExamplesTest.EveryHeaderExampleCompiles PROPERTIES LABELS headers)

# SPDX-License-Identifier: Apache-2.0
# The end-to-end test of the real discoveryd binary: a private mount
# namespace, faketime, and a recording stand-in for the status collector.
# Built once the daemon is part of the tree.

if(TARGET discoveryd)
    kiv_add_test_suite(discoveryd_e2e_tests e2e)
    add_dependencies(discoveryd_e2e_tests discoveryd)
    target_compile_definitions(discoveryd_e2e_tests PRIVATE
        KIV_DISCOVERYD_PROGRAM="$<TARGET_FILE:discoveryd>")
endif()

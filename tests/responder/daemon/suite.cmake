# SPDX-License-Identifier: Apache-2.0
# Tests of discovery-responder (responder/daemon/) that need no root and no
# network: the state file, the interface table, the description watcher on
# a temporary directory, the command line (also of the program), and the
# responder behind a recording sender. The network-namespace tests are in tests/e2e.
kiv_add_test_suite(discovery_responder_tests responder/daemon LIBRARIES discovery_responder_core
    SOURCES
        DescriptionWatcherTest.cpp
        InterfaceTableTest.cpp
        IpAddressTest.cpp
        LinuxDiscoverySocketTest.cpp
        LinuxInterfaceMonitorTest.cpp
        ResponderCommandLineTest.cpp
        ResponderOptionsTest.cpp
        ResponderStateTest.cpp
        ResponderTest.cpp)
if(TARGET discovery_responder_tests)
    add_dependencies(discovery_responder_tests discovery-responder)
    target_compile_definitions(discovery_responder_tests PRIVATE
        KIV_DISCOVERY_RESPONDER_PROGRAM="$<TARGET_FILE:discovery-responder>"
        KIV_PROJECT_VERSION="${PROJECT_VERSION}")
endif()

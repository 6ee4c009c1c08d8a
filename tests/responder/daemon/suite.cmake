# SPDX-License-Identifier: Apache-2.0
# Tests of discovery-responder (responder/daemon/) that need no root and no
# network: the state file, the interface table, the description watcher on
# a temporary directory, the command line (also of the program), and the
# responder behind a recording sender. The network-namespace tests are in tests/e2e.
kiv_add_test_suite(discovery_responder_tests responder/daemon LIBRARIES discovery_responder_core
    PROGRAM discovery-responder MACRO KIV_DISCOVERY_RESPONDER_PROGRAM
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

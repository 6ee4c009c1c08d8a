# SPDX-License-Identifier: Apache-2.0
# Tests of the programs in tools/. Each program's tests have a folder of their
# own, so that every program gets its own test executable.

kiv_add_test_suite(statuscollector_tests tools/statuscollector LIBRARIES kiv_statuscollector status
    PROGRAM statuscollector MACRO KIV_STATUSCOLLECTOR_PROGRAM
    SOURCES
        CollectorOptionsTest.cpp
        DefaultGatewayTableTest.cpp
        DrmOutputScannerTest.cpp
        ModelCodeSettingTest.cpp
        NetworkDeviceScannerTest.cpp
        StatusCollectorCommandLineTest.cpp
        StatusCollectorProgramTest.cpp
        StatusCollectorTest.cpp
        StatusDocumentTest.cpp)

kiv_add_test_suite(discovery_check_tests tools/discovery-check LIBRARIES kivdiscoveryclient kiv_discovery_check
    PROGRAM discovery-check MACRO KIV_DISCOVERY_CHECK_PROGRAM
    SOURCES
        DiscoveryCheckCommandLineTest.cpp
        DiscoveryCheckTest.cpp
        PublishedMetadataTest.cpp)

if(TARGET discovery-browse)
    kiv_add_test_suite(discovery_browse_tests tools/discovery-browse LIBRARIES kiv_discovery_browse
        PROGRAM discovery-browse MACRO KIV_DISCOVERY_BROWSE_PROGRAM
        SOURCES
            BrowseOptionsTest.cpp
            DiscoveryBrowseCommandLineTest.cpp
            FoundUnitsTest.cpp)
endif()

# SPDX-License-Identifier: Apache-2.0
# Tests of the programs in tools/. Each program's tests have a folder of their
# own, so that every program gets its own test executable.

kiv_add_test_suite(statuscollector_tests tools/statuscollector LIBRARIES kiv_statuscollector status
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
if(TARGET statuscollector_tests)
    add_dependencies(statuscollector_tests statuscollector)
    target_compile_definitions(statuscollector_tests PRIVATE
        KIV_STATUSCOLLECTOR_PROGRAM="$<TARGET_FILE:statuscollector>"
        KIV_PROJECT_VERSION="${PROJECT_VERSION}")
endif()

kiv_add_test_suite(discovery_check_tests tools/discovery-check LIBRARIES kivdiscoveryclient kiv_discovery_check
    SOURCES
        DiscoveryCheckCommandLineTest.cpp
        DiscoveryCheckTest.cpp
        PublishedMetadataTest.cpp)
if(TARGET discovery_check_tests)
    add_dependencies(discovery_check_tests discovery-check)
    target_compile_definitions(discovery_check_tests PRIVATE
        KIV_DISCOVERY_CHECK_PROGRAM="$<TARGET_FILE:discovery-check>"
        KIV_PROJECT_VERSION="${PROJECT_VERSION}")
endif()

if(TARGET discovery-browse)
    kiv_add_test_suite(discovery_browse_tests tools/discovery-browse LIBRARIES kiv_discovery_browse
        SOURCES
            BrowseOptionsTest.cpp
            DiscoveryBrowseCommandLineTest.cpp
            FoundUnitsTest.cpp)
    add_dependencies(discovery_browse_tests discovery-browse)
    target_compile_definitions(discovery_browse_tests PRIVATE
        KIV_DISCOVERY_BROWSE_PROGRAM="$<TARGET_FILE:discovery-browse>"
        KIV_PROJECT_VERSION="${PROJECT_VERSION}")
endif()

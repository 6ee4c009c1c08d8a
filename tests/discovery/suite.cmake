# SPDX-License-Identifier: Apache-2.0
kiv_add_test_suite(kivdiscovery_tests discovery LIBRARIES kivdiscovery
    SOURCES
        DiscoverableServicesTest.cpp
        MetadataComputerNameTest.cpp
        MetadataDescriptionTest.cpp
        MetadataGroupTest.cpp
        MetadataProductFamilyTest.cpp
        MetadataStatusNetworkTest.cpp
        MetadataStatusOutputTest.cpp
        MetadataTimezoneTest.cpp
        RecordFiles.cpp)

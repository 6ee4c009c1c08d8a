# SPDX-License-Identifier: Apache-2.0
# Tests of the closed-library replacements. The internal XML helpers are
# linked in directly so that they can be tested on their own; pugixml is the
# round-trip test's independent reader of the written descriptions.
find_package(pugixml REQUIRED)
kiv_add_test_suite(closed_tests closed LIBRARIES config status kivdiscoveryclient kiv_closed_xml pugixml::pugixml
    SOURCES
        AtomicFileWriterTest.cpp
        CConfigTest.cpp
        CNetworkDeviceListTest.cpp
        CNetworkDeviceTest.cpp
        COutputListTest.cpp
        CServiceListTest.cpp
        CStatusTest.cpp
        DescriptionReaderTest.cpp
        DiscoveryReplacementTest.cpp
        DiscoveryRoundTripTest.cpp
        DiscoveryTest.cpp
        LastGoodFileTest.cpp
        QuoteTest.cpp
        XmlCharactersTest.cpp
        XmlRecordReaderTest.cpp)

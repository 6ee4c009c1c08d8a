# SPDX-License-Identifier: Apache-2.0
# The end-to-end tests of the real discoveryd binary: a private mount
# namespace, faketime, and a recording stand-in for the status collector; and
# one cycle with the reference collector in a private network namespace.
# Built once the daemon is part of the tree.

if(TARGET discoveryd)
    kiv_add_test_suite(discoveryd_e2e_tests e2e LIBRARIES kivdiscoveryclient
        SOURCES
        DiscoverydEndToEndTest.cpp
        DiscoverydWithReferenceCollectorTest.cpp)
    add_dependencies(discoveryd_e2e_tests discoveryd statuscollector discovery-check)
    target_compile_definitions(discoveryd_e2e_tests PRIVATE
        KIV_DISCOVERYD_PROGRAM="$<TARGET_FILE:discoveryd>"
        KIV_STATUSCOLLECTOR_PROGRAM="$<TARGET_FILE:statuscollector>"
        KIV_DISCOVERY_CHECK_PROGRAM="$<TARGET_FILE:discovery-check>")

    # The daemon links no account library, not even through libkivplr.
    add_test(NAME DiscoverydLinkTest.NeitherTheDaemonNorThePlatformLibraryNeedsAnAccountLibrary
        COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/e2e/no-account-libraries
            ${CMAKE_READELF} $<TARGET_FILE:kivplr> $<TARGET_FILE:discoveryd>)
    set_tests_properties(DiscoverydLinkTest.NeitherTheDaemonNorThePlatformLibraryNeedsAnAccountLibrary
        PROPERTIES LABELS e2e)
endif()

# WS-Discovery on a network of namespaces that the tests make: discoveryd
# and discovery-responder in the unit's, discovery-browse and independent
# clients in the client's.
if(TARGET discoveryd AND TARGET discovery-responder AND TARGET discovery-browse)
    kiv_add_test_suite(wsdiscovery_network_tests e2e LIBRARIES kivwsd
        SOURCES
        WsDiscoveryNetworkTest.cpp
        WsdTestNetwork.cpp)
    add_dependencies(wsdiscovery_network_tests discoveryd statuscollector discovery-responder discovery-browse)
    target_compile_definitions(wsdiscovery_network_tests PRIVATE
        KIV_DISCOVERYD_PROGRAM="$<TARGET_FILE:discoveryd>"
        KIV_STATUSCOLLECTOR_PROGRAM="$<TARGET_FILE:statuscollector>"
        KIV_DISCOVERY_RESPONDER_PROGRAM="$<TARGET_FILE:discovery-responder>"
        KIV_DISCOVERY_BROWSE_PROGRAM="$<TARGET_FILE:discovery-browse>")
endif()

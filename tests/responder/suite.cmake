# SPDX-License-Identifier: Apache-2.0
# Tests of the WS-Discovery protocol library kivwsd (responder/). The
# daemon's own tests, in daemon/, register their suite in their fragment.
kiv_add_test_suite(responder_tests responder LIBRARIES kivwsd
    SOURCES
        DescriptionTargetTest.cpp
        MessageIdCacheTest.cpp
        ProbeMatcherTest.cpp
        QualifiedNameTest.cpp
        ReplyLimiterTest.cpp
        WsdReaderTest.cpp
        WsdWriterTest.cpp)

if(EXISTS ${CMAKE_CURRENT_LIST_DIR}/daemon/suite.cmake)
    include(${CMAKE_CURRENT_LIST_DIR}/daemon/suite.cmake)
endif()

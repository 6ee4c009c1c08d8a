# SPDX-License-Identifier: Apache-2.0
kiv_add_test_suite(kivdiscovery_app_tests app LIBRARIES discoveryd_core
    SOURCES
        ConfigurationPathTest.cpp
        DaemonRefreshStepsTest.cpp
        DaemonStartupTest.cpp
        RefreshLoopTest.cpp)

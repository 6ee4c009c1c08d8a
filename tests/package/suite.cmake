# SPDX-License-Identifier: Apache-2.0
# The installed systemd units: systemd-analyze verify is clean and the
# sandbox's exposure stays at 3.0 or lower for discoveryd and at 2.0 or lower
# for discovery-responder. Host only: the unit is the same
# for every architecture. The Debian packages have their own test
# (tests/package/test-packages, run by scripts/test-package).
if(NOT CMAKE_CROSSCOMPILING)
    add_test(NAME PackageTest.ServiceUnitsVerifyCleanWithinTheirExposureLimits
        COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/package/check-service-unit ${PROJECT_BINARY_DIR})
    set_tests_properties(PackageTest.ServiceUnitsVerifyCleanWithinTheirExposureLimits PROPERTIES
        LABELS package
        SKIP_REGULAR_EXPRESSION "check-service-unit: SKIPPED"
        # Installing writes the configured units into the build tree: one
        # install from this build tree at a time (see tests/install).
        RESOURCE_LOCK kiv_install_from_build_tree)
endif()

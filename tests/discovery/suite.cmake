# SPDX-License-Identifier: Apache-2.0
kiv_add_test_suite(kivdiscovery_tests discovery LIBRARIES kivdiscovery)

// SPDX-License-Identifier: Apache-2.0
// SampleStatus.h - the text of a typical status snapshot for tests that
// need one: one network device with every item (number 1, eth0) and one
// published output (number 1, 2 rows, 4 columns).
//
// Example:
//   #include <KivTest/TemporaryDirectory.h>
//   KivTest::TemporaryDirectory directory;
//   std::string statusFile = directory.Path() + "/status.xml";
//   KivTest::WriteFile(statusFile, KivTest::SampleStatusXml(3, "192.0.2.20"));
//
// A free function; any thread.
#ifndef KIV_TESTS_SAMPLESTATUS_H
#define KIV_TESTS_SAMPLESTATUS_H

#include <cstdint>
#include <string>

namespace KivTest {

/// The snapshot with \p modelCode and the device's IPv4 address \p ipv4.
std::string SampleStatusXml(std::uint32_t modelCode, const std::string& ipv4 = "192.0.2.10");

} // namespace KivTest

#endif

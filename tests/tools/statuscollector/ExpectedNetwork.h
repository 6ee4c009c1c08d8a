// SPDX-License-Identifier: Apache-2.0
// ExpectedNetwork.h - what the collector's network devices should be on
// this machine, as `ip -j addr` and `ip -j route` report them (through the
// script ip_expectation.py), and the same one-line form for what it found.
//
// Used by the scanner and program tests of the status collector:
//
//   std::vector<std::string> expected;
//   std::string reason;
//   if (!ExpectedNetworkLines(expected, reason)) GTEST_SKIP() << reason;
//   EXPECT_EQ(DeviceLines(devices), expected);
#ifndef KIV_TESTS_EXPECTEDNETWORK_H
#define KIV_TESTS_EXPECTEDNETWORK_H

#include <KivTest/ShellCommand.h>
#include <StatusCollector/CollectedStatus.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace KivTest {

/// One device as "number|name|mac|ipv4|ipv6|gateway|subnet", "-" for an
/// absent item (a null text of the status record).
inline std::string DeviceLine(std::uint32_t number, const std::string& name, const std::vector<const char*>& items)
{
    std::string line = std::to_string(number) + "|" + name;
    for (const char* item : items)
        line += std::string("|") + (item != nullptr ? item : "-");
    return line;
}

inline const char* Text(const std::optional<std::string>& item)
{
    return item ? item->c_str() : nullptr;
}

inline std::vector<std::string> DeviceLines(const std::vector<KivCollector::CollectedStatus::NetworkDevice>& devices)
{
    std::vector<std::string> lines;
    for (const auto& device : devices)
        lines.push_back(DeviceLine(device.number, device.name,
                                   {Text(device.mac), Text(device.ipv4), Text(device.ipv6), Text(device.gateway),
                                    Text(device.subnet)}));
    return lines;
}

/// \p line as the snapshot shows it once loaded: the collector writes an
/// item an interface does not have as an empty element, so its "-" becomes
/// an empty field (the number and the name are always there).
inline std::string AbsentItemsEmpty(const std::string& line)
{
    std::vector<std::string> fields;
    std::string::size_type start = 0;
    for (;;) {
        std::string::size_type bar = line.find('|', start);
        fields.push_back(line.substr(start, bar == std::string::npos ? std::string::npos : bar - start));
        if (bar == std::string::npos)
            break;
        start = bar + 1;
    }
    std::string result;
    for (std::size_t index = 0; index < fields.size(); ++index) {
        bool item = index >= 2;
        result += (index == 0 ? "" : "|") + (item && fields[index] == "-" ? std::string() : fields[index]);
    }
    return result;
}

/// The expected lines from ip and python3; false with \p reason when either
/// cannot be run here.
inline bool ExpectedNetworkLines(std::vector<std::string>& lines, std::string& reason)
{
    ChildOutcome outcome =
        RunShellCommand("python3 " + ShellQuote(std::string(KIV_SOURCE_DIR) + "/tests/tools/statuscollector/ip_expectation.py"));
    if (!outcome.exited || outcome.exitStatus != 0) {
        reason = "cannot ask ip and python3 about the network: " + Describe(outcome);
        return false;
    }
    lines.clear();
    std::istringstream text(outcome.standardOutput);
    std::string line;
    while (std::getline(text, line))
        lines.push_back(line);
    return true;
}

} // namespace KivTest

#endif

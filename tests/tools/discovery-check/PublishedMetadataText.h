// SPDX-License-Identifier: Apache-2.0
// PublishedMetadataText.h - metadata texts in the form discoveryd publishes
// them, for the tests of the summary decoder and of "discovery-check
// summary". Attribute quotes carry a backslash, as the publisher writes them.
//
//   std::string text = KivTest::PublishedText(KivTest::DeviceText("2", {"eth0", "", "192.0.2.10", "", "", ""}),
//                                             KivTest::OutputText("1", "1", "1"));
#ifndef KIV_TESTS_PUBLISHEDMETADATATEXT_H
#define KIV_TESTS_PUBLISHEDMETADATATEXT_H

#include <cstddef>
#include <string>
#include <vector>

namespace KivTest {

/// The six items of a device, in published order.
const std::vector<std::string> DeviceItems = {"Name", "MAC", "IPv4", "IPv6", "Gateway", "Subnet"};

/// A complete NetworkDevice element with the six \p values in published order.
inline std::string DeviceText(const std::string& number, const std::vector<std::string>& values)
{
    std::string text = "<NetworkDevice number=\\\"" + number + "\\\">";
    for (std::size_t index = 0; index < DeviceItems.size(); ++index)
        text += "<" + DeviceItems[index] + ">" + values.at(index) + "</" + DeviceItems[index] + ">";
    return text + "</NetworkDevice>";
}

/// A device that the publisher cut at \p missingItem: everything before the
/// missing value, ending with its opening tag.
inline std::string CutDeviceText(const std::string& number, const std::vector<std::string>& values,
                                 const std::string& missingItem)
{
    std::string text = "<NetworkDevice number=\\\"" + number + "\\\">";
    for (std::size_t index = 0; index < DeviceItems.size(); ++index) {
        text += "<" + DeviceItems[index] + ">";
        if (DeviceItems[index] == missingItem)
            return text;
        text += values.at(index) + "</" + DeviceItems[index] + ">";
    }
    return text;
}

inline std::string OutputText(const std::string& number, const std::string& rows, const std::string& columns)
{
    return "<Output number=\\\"" + number + "\\\" i:type=\\\"Cablor6Type\\\"><TranslationTable><Rows>" + rows +
           "</Rows><Columns>" + columns + "</Columns></TranslationTable></Output>";
}

/// The whole metadata text: description "Wall left", time zone UTC, computer
/// name unit-1, product family TRX-7250, then \p network (the devices,
/// without the Network tags) and \p outputs. A \p network that ends in a cut
/// device gets no closing tag, as the publisher writes it.
inline std::string PublishedText(const std::string& network, const std::string& outputs, bool cut = false)
{
    return "<cpp:Config><Description>Wall left</Description><TimeZone>UTC</TimeZone>"
           "<ComputerName>unit-1</ComputerName></cpp:Config><cpp:State><ProductFamily>TRX-7250</ProductFamily>"
           "<Network>" + network + (cut ? "" : "</Network>") + "<Outputs>" + outputs +
           "</Outputs></cpp:State><cpp:DiscoveryVersion>1</cpp:DiscoveryVersion>";
}

} // namespace KivTest

#endif

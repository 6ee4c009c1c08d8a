// SPDX-License-Identifier: Apache-2.0
// StatusDocument.h - renders what the collector found as the status
// snapshot that the status library loads: XML 1.0 in UTF-8, root "status".
//
// Stateless; any thread may use it.
//
// Example:
//   CollectedStatus status;
//   CollectedStatus::NetworkDevice device;
//   device.number = 2;
//   device.name = "eth0";
//   status.networkDevices.push_back(device);
//   std::string text = StatusDocument::Render(status);
//   // <?xml ...?><status><modelCode>4294967295</modelCode><networkDevices>...
#ifndef KIV_TOOLS_STATUSDOCUMENT_H
#define KIV_TOOLS_STATUSDOCUMENT_H

#include <StatusCollector/CollectedStatus.h>

#include <string>

namespace KivCollector {

class StatusDocument
{
public:
    /// The whole document, indented by two spaces, ending in a line feed.
    /// Always has the elements modelCode, networkDevices and outputs (the
    /// lists possibly empty). A device item the interface does not have is an
    /// empty element, which the status library reads as an empty text, never
    /// a missing one. Text that XML cannot carry (bytes that are not UTF-8,
    /// control characters other than tab, line feed and carriage return) is
    /// written as "?" so that one odd interface name cannot make the whole
    /// snapshot unloadable.
    static std::string Render(const CollectedStatus& status);

    /// \p text with every byte sequence that XML 1.0 cannot carry replaced
    /// by "?".
    static std::string XmlSafe(const std::string& text);
};

} // namespace KivCollector

#endif

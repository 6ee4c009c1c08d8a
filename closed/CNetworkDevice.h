// SPDX-License-Identifier: Apache-2.0
// CNetworkDevice.h - one network interface of the unit as the status
// snapshot describes it: its number and six texts, each of which may be
// missing.
//
// Made by the status loader and owned by the record's CNetworkDeviceList;
// readers get const pointers that stay valid until the next successful
// CStatus::Load. Read on the loading thread only.
//
// Example:
//   #include <VpSts/CStatus.h>
//   VpSts::CStatus status;                 // the daemon reads gStatus
//   const VpSts::CNetworkDevice* device = status.networkDeviceList[0u];
//   if (device != nullptr && device->ipv4Address != nullptr)
//       std::printf("%u %s\n", device->deviceNumber, device->ipv4Address);
#ifndef KIV_CLOSED_CNETWORKDEVICE_H
#define KIV_CLOSED_CNETWORKDEVICE_H

#include <cstdint>
#include <string>

namespace VpSts {

class CNetworkDevice
{
public:
    /// The six texts, in the order of the file's child elements.
    enum TextField { Name, MacAddress, Ipv4Address, Ipv6Address, Gateway, Subnet, TextFieldCount };

    /// A device numbered \p number with every text missing (null).
    explicit CNetworkDevice(std::uint32_t number);

    // The text fields point into the entry's own storage.
    CNetworkDevice(const CNetworkDevice&) = delete;
    CNetworkDevice& operator=(const CNetworkDevice&) = delete;

    /// Sets the text \p field to \p value (used by the loader). An empty
    /// value gives an empty string, not a null pointer.
    void SetText(TextField field, const std::string& value);

    /// Attribute number of the file's networkDevice element.
    std::uint32_t deviceNumber;

    // The texts are zero-terminated UTF-8 owned by the entry, or null when
    // the file has no element for them; "" when the element is empty.

    /// Element name, e.g. "eth0".
    const char* name;
    /// Element mac, e.g. "00:11:22:33:44:55".
    const char* macAddress;
    /// Element ipv4, e.g. "192.0.2.10".
    const char* ipv4Address;
    /// Element ipv6, e.g. "2001:db8::10".
    const char* ipv6Address;
    /// Element gateway, e.g. "192.0.2.1".
    const char* gateway;
    /// Element subnet, e.g. "255.255.255.0".
    const char* subnet;

private:
    std::string storage[TextFieldCount];
};

} // namespace VpSts

#endif

// SPDX-License-Identifier: Apache-2.0
// NetworkDeviceScanner.h - lists the machine's network interfaces other
// than loopback with their MAC, first IPv4 address and netmask, preferred
// IPv6 address and IPv4 default gateway, ordered by interface index.
//
// Stateless; the collector makes one on the stack. Any thread may use it.
//
// Example:
//   DefaultGatewayTable gateways;   // loaded from /proc/net/route
//   std::vector<CollectedStatus::NetworkDevice> devices;
//   std::string fault;
//   if (!NetworkDeviceScanner().Scan(gateways, devices, fault))
//       std::fprintf(stderr, "%s\n", fault.c_str());
#ifndef KIV_TOOLS_NETWORKDEVICESCANNER_H
#define KIV_TOOLS_NETWORKDEVICESCANNER_H

#include <StatusCollector/CollectedStatus.h>
#include <StatusCollector/DefaultGatewayTable.h>

#include <cstddef>
#include <string>
#include <vector>

namespace KivCollector {

class NetworkDeviceScanner
{
public:
    /// Replaces \p devices by one entry per interface except loopback,
    /// ordered by interface index, numbered by it. IPv4 addresses carried
    /// under a label ("eth0:1") count for their interface. The IPv6 address
    /// is the first one of global scope, else the first link-local one,
    /// without a "%interface" suffix; site-local and loopback addresses are
    /// never taken. Answers false with \p fault when the system cannot list
    /// its interfaces; \p devices is then empty.
    bool Scan(const DefaultGatewayTable& gateways, std::vector<CollectedStatus::NetworkDevice>& devices,
              std::string& fault) const;

    /// \p count bytes as lower-case two-digit hex joined by ":"; empty for
    /// no bytes.
    static std::string FormatHardwareAddress(const unsigned char* bytes, std::size_t count);
};

} // namespace KivCollector

#endif

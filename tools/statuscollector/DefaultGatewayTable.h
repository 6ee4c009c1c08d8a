// SPDX-License-Identifier: Apache-2.0
// DefaultGatewayTable.h - the IPv4 default gateways of the machine, per
// interface, read from the kernel's routing table in /proc/net/route.
//
// The collector makes one, loads it once and asks it for each interface;
// a plain value used by one thread.
//
// Example:
//   DefaultGatewayTable gateways;
//   std::string fault;
//   if (!gateways.Load(DefaultGatewayTable::KernelRouteFile, fault))
//       std::fprintf(stderr, "%s\n", fault.c_str());
//   std::optional<std::string> gateway = gateways.Find("eth0");   // "192.0.2.1"
#ifndef KIV_TOOLS_DEFAULTGATEWAYTABLE_H
#define KIV_TOOLS_DEFAULTGATEWAYTABLE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KivCollector {

class DefaultGatewayTable
{
public:
    /// The kernel's IPv4 routing table of the main table.
    static constexpr const char* KernelRouteFile = "/proc/net/route";

    /// Replaces the table by the default routes in \p routeFile. A file that
    /// cannot be read leaves the table empty and answers false with \p fault
    /// naming the file and the reason.
    bool Load(const std::string& routeFile, std::string& fault);

    /// Replaces the table by the default routes in \p text, which has the
    /// layout of /proc/net/route: a header line, then one tab-separated line
    /// per route (interface, destination, gateway, flags, reference count,
    /// use, metric, mask, ...), addresses as the kernel prints them in hex.
    /// Lines that do not parse are skipped. A default route is one with
    /// destination and mask 0 that is up and goes through a gateway.
    void Parse(const std::string& text);

    /// The gateway of \p interfaceName's default route in dotted quad: the
    /// route with the lowest metric, the first listed among equal metrics.
    /// Empty when the interface has no default route through a gateway.
    std::optional<std::string> Find(const std::string& interfaceName) const;

private:
    struct DefaultRoute
    {
        std::string interfaceName;
        std::uint32_t gateway; ///< as the kernel printed it: network byte order in memory
        std::uint32_t metric;
    };

    std::vector<DefaultRoute> routes;
};

} // namespace KivCollector

#endif

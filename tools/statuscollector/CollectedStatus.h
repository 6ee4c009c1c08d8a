// SPDX-License-Identifier: Apache-2.0
// CollectedStatus.h - what the status collector found on this machine: the
// model code, the network devices and the display outputs, in the order in
// which they go into the status snapshot.
//
// Filled by the scanners in main(), then handed to StatusDocument to render;
// a plain value owned by whoever made it, used by one thread.
//
// Example:
//   #include <StatusCollector/StatusDocument.h>
//   CollectedStatus status;
//   status.modelCode = 3;
//   status.outputs.push_back({1, CollectedStatus::ConnectedKind, 1, 1});
//   std::string xml = StatusDocument::Render(status);
#ifndef KIV_TOOLS_COLLECTEDSTATUS_H
#define KIV_TOOLS_COLLECTEDSTATUS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KivCollector {

struct CollectedStatus
{
    /// The model code that the status record shows as unknown.
    static constexpr std::uint32_t UnknownModelCode = 4294967295u;
    /// Output kinds: a display is connected, or the connector is empty.
    static constexpr std::uint32_t ConnectedKind = 0;
    static constexpr std::uint32_t DisconnectedKind = 1;

    /// One network interface. An item the interface does not have stays
    /// unset; the snapshot shows it as an empty element.
    struct NetworkDevice
    {
        std::uint32_t number = 0; ///< the kernel's interface index
        std::string name;
        std::optional<std::string> mac;     ///< lower-case hex bytes joined by ":"
        std::optional<std::string> ipv4;    ///< first IPv4 address
        std::optional<std::string> ipv6;    ///< first global address, else the link-local one
        std::optional<std::string> gateway; ///< IPv4 default gateway through this interface
        std::optional<std::string> subnet;  ///< netmask of the first IPv4 address, dotted quad
    };

    /// One display connector.
    struct Output
    {
        std::uint32_t number = 0; ///< 1, 2, ... in connector name order
        std::uint32_t kind = DisconnectedKind;
        std::uint32_t rows = 1;
        std::uint32_t columns = 1;
    };

    std::uint32_t modelCode = UnknownModelCode;
    std::vector<NetworkDevice> networkDevices;
    std::vector<Output> outputs;
};

} // namespace KivCollector

#endif

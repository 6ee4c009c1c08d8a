// SPDX-License-Identifier: Apache-2.0
#include <StatusCollector/NetworkDeviceScanner.h>

#include <arpa/inet.h>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <ifaddrs.h>
#include <linux/if_packet.h>
#include <map>
#include <net/if.h>
#include <netinet/in.h>

namespace KivCollector {

namespace {

struct Interface
{
    CollectedStatus::NetworkDevice device;
    bool loopback = false;
    std::optional<std::string> linkLocalIpv6;
};

std::optional<std::string> AddressText(int family, const void* address)
{
    char text[INET6_ADDRSTRLEN];
    if (inet_ntop(family, address, text, sizeof text) == nullptr)
        return std::nullopt;
    return std::string(text);
}

/// The interface an address belongs to: IPv4 addresses may carry a label
/// "name:suffix", and interface names never contain ":".
/// A copy of the socket address that \p address points to, as the type its
/// family says it is (copied: the list's storage is only aligned for sockaddr).
template <typename Address>
Address Copy(const struct sockaddr* address)
{
    Address copy;
    std::memcpy(&copy, address, sizeof copy);
    return copy;
}

std::string InterfaceName(const char* nameOrLabel)
{
    std::string name(nameOrLabel);
    std::string::size_type colon = name.find(':');
    return colon == std::string::npos ? name : name.substr(0, colon);
}

void TakeIpv6(Interface& entry, const struct sockaddr_in6& address)
{
    const struct in6_addr& bytes = address.sin6_addr;
    if (IN6_IS_ADDR_LINKLOCAL(&bytes)) {
        if (!entry.linkLocalIpv6)
            entry.linkLocalIpv6 = AddressText(AF_INET6, &bytes);
        return;
    }
    // The kernel gives these host or site scope, never global.
    if (IN6_IS_ADDR_LOOPBACK(&bytes) || IN6_IS_ADDR_SITELOCAL(&bytes) || IN6_IS_ADDR_MULTICAST(&bytes) ||
        IN6_IS_ADDR_UNSPECIFIED(&bytes))
        return;
    if (!entry.device.ipv6)
        entry.device.ipv6 = AddressText(AF_INET6, &bytes);
}

} // namespace

std::string NetworkDeviceScanner::FormatHardwareAddress(const unsigned char* bytes, std::size_t count)
{
    static const char digits[] = "0123456789abcdef";
    std::string text;
    for (std::size_t index = 0; index < count; ++index) {
        if (index != 0)
            text += ':';
        text += digits[bytes[index] >> 4];
        text += digits[bytes[index] & 0x0F];
    }
    return text;
}

bool NetworkDeviceScanner::Scan(const DefaultGatewayTable& gateways,
                                std::vector<CollectedStatus::NetworkDevice>& devices, std::string& fault) const
{
    devices.clear();
    struct ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0) {
        fault = std::string("cannot list the network interfaces: ") + std::strerror(errno);
        return false;
    }
    std::map<std::uint32_t, Interface> interfaces;
    for (const struct ifaddrs* item = list; item != nullptr; item = item->ifa_next) {
        if (item->ifa_name == nullptr)
            continue;
        std::string name = InterfaceName(item->ifa_name);
        std::uint32_t index = 0;
        const struct sockaddr* address = item->ifa_addr;
        if (address != nullptr && address->sa_family == AF_PACKET)
            index = static_cast<std::uint32_t>(Copy<struct sockaddr_ll>(address).sll_ifindex);
        else
            index = if_nametoindex(name.c_str());
        if (index == 0)
            continue;
        Interface& entry = interfaces[index];
        entry.device.number = index;
        entry.device.name = name;
        if ((item->ifa_flags & IFF_LOOPBACK) != 0)
            entry.loopback = true;
        if (address == nullptr)
            continue;
        if (address->sa_family == AF_PACKET) {
            struct sockaddr_ll link = Copy<struct sockaddr_ll>(address);
            std::size_t length = link.sll_halen;
            if (length > sizeof link.sll_addr)
                length = sizeof link.sll_addr;
            if (length != 0 && !entry.device.mac)
                entry.device.mac = FormatHardwareAddress(link.sll_addr, length);
        } else if (address->sa_family == AF_INET && !entry.device.ipv4) {
            struct sockaddr_in ipv4 = Copy<struct sockaddr_in>(address);
            entry.device.ipv4 = AddressText(AF_INET, &ipv4.sin_addr);
            if (item->ifa_netmask != nullptr && item->ifa_netmask->sa_family == AF_INET) {
                struct sockaddr_in netmask = Copy<struct sockaddr_in>(item->ifa_netmask);
                entry.device.subnet = AddressText(AF_INET, &netmask.sin_addr);
            }
        } else if (address->sa_family == AF_INET6) {
            TakeIpv6(entry, Copy<struct sockaddr_in6>(address));
        }
    }
    freeifaddrs(list);

    for (auto& [index, entry] : interfaces) {
        if (entry.loopback)
            continue;
        if (!entry.device.ipv6)
            entry.device.ipv6 = entry.linkLocalIpv6;
        entry.device.gateway = gateways.Find(entry.device.name);
        devices.push_back(entry.device);
    }
    return true;
}

} // namespace KivCollector

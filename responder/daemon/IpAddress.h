// SPDX-License-Identifier: Apache-2.0
// IpAddress.h - an IPv4 or IPv6 address as the responder compares, prints
// and sends to it: family and bytes in network order, no zone.
//
// A plain value, copied freely; any thread.
//
// Example:
//   IpAddress source = IpAddress::FromText("192.0.2.20");
//   bool near = source.SharesPrefix(IpAddress::FromText("192.0.2.1"), 24);   // true
//   std::string host = IpAddress::FromText("fe80::1").UrlHost();              // "[fe80::1]"
#ifndef KIV_RESPONDER_IPADDRESS_H
#define KIV_RESPONDER_IPADDRESS_H

#include <array>
#include <cstddef>
#include <string>

struct sockaddr;

namespace KivResponder {

class IpAddress
{
public:
    enum class Family { None, V4, V6 };

    /// No address (Family::None); compares equal only to another empty one.
    IpAddress() = default;
    /// Four bytes of an IPv4 address in network order.
    static IpAddress V4(const unsigned char* bytes);
    /// Sixteen bytes of an IPv6 address in network order.
    static IpAddress V6(const unsigned char* bytes);
    /// Dotted IPv4 or IPv6 text; an empty address for anything else.
    static IpAddress FromText(const std::string& text);
    /// The address of a sockaddr_in or sockaddr_in6; empty for other families.
    static IpAddress FromSocketAddress(const sockaddr* address);

    Family GetFamily() const { return family; }
    bool IsEmpty() const { return family == Family::None; }
    /// 4 for IPv4, 16 for IPv6, 0 when empty.
    std::size_t Size() const;
    const unsigned char* Bytes() const { return bytes.data(); }

    /// fe80::/10.
    bool IsLinkLocalV6() const;
    /// 224.0.0.0/4 or ff00::/8.
    bool IsMulticast() const;
    /// True when both have the same family and their first \p prefixLength
    /// bits agree (a length beyond the address compares all of it).
    bool SharesPrefix(const IpAddress& other, unsigned prefixLength) const;

    /// "192.0.2.7", "fe80::1"; empty for an empty address.
    std::string Text() const;
    /// The host part of a URL: IPv6 in brackets, IPv4 as it is.
    std::string UrlHost() const;

    bool operator==(const IpAddress& other) const;
    bool operator!=(const IpAddress& other) const { return !(*this == other); }

private:
    Family family = Family::None;
    std::array<unsigned char, 16> bytes{};
};

} // namespace KivResponder

#endif

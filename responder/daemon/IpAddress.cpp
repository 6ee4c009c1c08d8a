// SPDX-License-Identifier: Apache-2.0
#include <KivResponder/IpAddress.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstring>

namespace KivResponder {

IpAddress IpAddress::V4(const unsigned char* value)
{
    IpAddress address;
    address.family = Family::V4;
    std::memcpy(address.bytes.data(), value, 4);
    return address;
}

IpAddress IpAddress::V6(const unsigned char* value)
{
    IpAddress address;
    address.family = Family::V6;
    std::memcpy(address.bytes.data(), value, 16);
    return address;
}

IpAddress IpAddress::FromText(const std::string& text)
{
    unsigned char value[16];
    if (::inet_pton(AF_INET, text.c_str(), value) == 1)
        return V4(value);
    if (::inet_pton(AF_INET6, text.c_str(), value) == 1)
        return V6(value);
    return IpAddress();
}

IpAddress IpAddress::FromSocketAddress(const sockaddr* address)
{
    if (address == nullptr)
        return IpAddress();
    if (address->sa_family == AF_INET) {
        sockaddr_in v4;
        std::memcpy(&v4, address, sizeof v4);
        return V4(reinterpret_cast<const unsigned char*>(&v4.sin_addr));
    }
    if (address->sa_family == AF_INET6) {
        sockaddr_in6 v6;
        std::memcpy(&v6, address, sizeof v6);
        return V6(v6.sin6_addr.s6_addr);
    }
    return IpAddress();
}

std::size_t IpAddress::Size() const
{
    switch (family) {
    case Family::V4:
        return 4;
    case Family::V6:
        return 16;
    case Family::None:
        break;
    }
    return 0;
}

bool IpAddress::IsLinkLocalV6() const
{
    return family == Family::V6 && bytes[0] == 0xfe && (bytes[1] & 0xc0) == 0x80;
}

bool IpAddress::IsMulticast() const
{
    if (family == Family::V4)
        return (bytes[0] & 0xf0) == 0xe0;
    return family == Family::V6 && bytes[0] == 0xff;
}

bool IpAddress::SharesPrefix(const IpAddress& other, unsigned prefixLength) const
{
    if (family != other.family || family == Family::None)
        return false;
    unsigned bits = static_cast<unsigned>(Size()) * 8;
    if (prefixLength > bits)
        prefixLength = bits;
    unsigned whole = prefixLength / 8;
    if (std::memcmp(bytes.data(), other.bytes.data(), whole) != 0)
        return false;
    unsigned rest = prefixLength % 8;
    if (rest == 0)
        return true;
    unsigned mask = (0xffu << (8 - rest)) & 0xffu;
    return (bytes[whole] & mask) == (other.bytes[whole] & mask);
}

std::string IpAddress::Text() const
{
    char text[INET6_ADDRSTRLEN] = {};
    if (family == Family::V4)
        ::inet_ntop(AF_INET, bytes.data(), text, sizeof text);
    else if (family == Family::V6)
        ::inet_ntop(AF_INET6, bytes.data(), text, sizeof text);
    return text;
}

std::string IpAddress::UrlHost() const
{
    return family == Family::V6 ? "[" + Text() + "]" : Text();
}

bool IpAddress::operator==(const IpAddress& other) const
{
    return family == other.family && std::memcmp(bytes.data(), other.bytes.data(), Size()) == 0;
}

} // namespace KivResponder

// SPDX-License-Identifier: Apache-2.0
#include <KivResponder/InterfaceTable.h>

#include <linux/if_addr.h>
#include <linux/if_link.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace KivResponder {

namespace {

/// Copies a netlink structure out of a buffer that need not be aligned for it.
template <typename Structure>
bool ReadStructure(const unsigned char* data, std::size_t size, Structure& structure)
{
    if (size < sizeof structure)
        return false;
    std::memcpy(&structure, data, sizeof structure);
    return true;
}

/// Calls \p visit(type, payload, payloadSize) for every complete attribute
/// in \p data; stops at the first one that is cut short.
template <typename Visitor>
void ForEachAttribute(const unsigned char* data, std::size_t size, Visitor visit)
{
    while (size >= sizeof(rtattr)) {
        rtattr attribute;
        std::memcpy(&attribute, data, sizeof attribute);
        if (attribute.rta_len < sizeof(rtattr) || attribute.rta_len > size)
            return;
        visit(attribute.rta_type, data + RTA_LENGTH(0), attribute.rta_len - RTA_LENGTH(0));
        std::size_t step = RTA_ALIGN(attribute.rta_len);
        if (step >= size)
            return;
        data += step;
        size -= step;
    }
}

bool SameAddress(const InterfaceTable::Address& entry, const IpAddress& address)
{
    return entry.address == address;
}

} // namespace

void InterfaceTable::SetLink(int index, const std::string& name, unsigned flags)
{
    Interface& interface = interfaces[index];
    interface.index = index;
    interface.name = name;
    interface.up = (flags & IFF_UP) != 0;
    interface.multicast = (flags & IFF_MULTICAST) != 0;
    interface.loopback = (flags & IFF_LOOPBACK) != 0;
}

void InterfaceTable::RemoveLink(int index)
{
    interfaces.erase(index);
}

void InterfaceTable::AddAddress(int index, const Address& address)
{
    Interface& interface = interfaces[index];
    interface.index = index;
    for (Address& entry : interface.addresses) {
        if (SameAddress(entry, address.address)) {
            entry.prefixLength = address.prefixLength;
            return;
        }
    }
    interface.addresses.push_back(address);
}

void InterfaceTable::RemoveAddress(int index, const IpAddress& address)
{
    auto found = interfaces.find(index);
    if (found == interfaces.end())
        return;
    auto& addresses = found->second.addresses;
    addresses.erase(std::remove_if(addresses.begin(), addresses.end(),
                                   [&](const Address& entry) { return SameAddress(entry, address); }),
                    addresses.end());
}

void InterfaceTable::Clear()
{
    interfaces.clear();
}

bool InterfaceTable::Apply(const void* data, std::size_t size)
{
    const auto* bytes = static_cast<const unsigned char*>(data);
    bool changed = false;
    while (size >= sizeof(nlmsghdr)) {
        nlmsghdr header;
        std::memcpy(&header, bytes, sizeof header);
        if (header.nlmsg_len < sizeof(nlmsghdr) || header.nlmsg_len > size)
            break;
        const unsigned char* payload = bytes + NLMSG_HDRLEN;
        std::size_t payloadSize = header.nlmsg_len - NLMSG_HDRLEN;
        switch (header.nlmsg_type) {
        case RTM_NEWLINK:
        case RTM_DELLINK:
            changed |= ApplyLink(payload, payloadSize, header.nlmsg_type == RTM_DELLINK);
            break;
        case RTM_NEWADDR:
        case RTM_DELADDR:
            changed |= ApplyAddress(payload, payloadSize, header.nlmsg_type == RTM_DELADDR);
            break;
        default:
            break;
        }
        std::size_t step = NLMSG_ALIGN(header.nlmsg_len);
        if (step >= size)
            break;
        bytes += step;
        size -= step;
    }
    return changed;
}

bool InterfaceTable::ApplyLink(const void* message, std::size_t size, bool removed)
{
    const auto* bytes = static_cast<const unsigned char*>(message);
    ifinfomsg link;
    if (!ReadStructure(bytes, size, link) || link.ifi_index <= 0)
        return false;
    if (removed) {
        bool known = interfaces.count(link.ifi_index) != 0;
        RemoveLink(link.ifi_index);
        return known;
    }
    std::string name;
    std::size_t header = NLMSG_ALIGN(sizeof link);
    if (size > header) {
        ForEachAttribute(bytes + header, size - header, [&](unsigned type, const unsigned char* value, std::size_t length) {
            if (type == IFLA_IFNAME)
                name.assign(reinterpret_cast<const char*>(value), strnlen(reinterpret_cast<const char*>(value), length));
        });
    }
    const Interface* before = Find(link.ifi_index);
    Interface previous;
    if (before != nullptr)
        previous = *before;
    SetLink(link.ifi_index, name, link.ifi_flags);
    const Interface& after = interfaces[link.ifi_index];
    return before == nullptr || previous.name != after.name || previous.up != after.up ||
           previous.multicast != after.multicast || previous.loopback != after.loopback;
}

bool InterfaceTable::ApplyAddress(const void* message, std::size_t size, bool removed)
{
    const auto* bytes = static_cast<const unsigned char*>(message);
    ifaddrmsg header;
    if (!ReadStructure(bytes, size, header) || (header.ifa_family != AF_INET && header.ifa_family != AF_INET6))
        return false;
    std::size_t addressSize = header.ifa_family == AF_INET ? 4 : 16;
    IpAddress local;
    IpAddress peer;
    std::uint32_t flags = header.ifa_flags;
    std::size_t offset = NLMSG_ALIGN(sizeof header);
    if (size > offset) {
        ForEachAttribute(bytes + offset, size - offset, [&](unsigned type, const unsigned char* value, std::size_t length) {
            if ((type == IFA_LOCAL || type == IFA_ADDRESS) && length >= addressSize) {
                IpAddress found = addressSize == 4 ? IpAddress::V4(value) : IpAddress::V6(value);
                (type == IFA_LOCAL ? local : peer) = found;
            } else if (type == IFA_FLAGS && length >= sizeof flags) {
                std::memcpy(&flags, value, sizeof flags);
            }
        });
    }
    // On a point-to-point link IFA_ADDRESS is the far end; IFA_LOCAL is ours.
    IpAddress address = local.IsEmpty() ? peer : local;
    int index = static_cast<int>(header.ifa_index);
    if (address.IsEmpty() || index <= 0)
        return false;
    // An address still checking for duplicates, or one that failed, cannot be
    // sent from or reached yet; it comes again once it is usable.
    if (removed || (flags & (IFA_F_TENTATIVE | IFA_F_DADFAILED)) != 0) {
        const Interface* interface = Find(index);
        if (interface == nullptr)
            return false;
        std::size_t count = interface->addresses.size();
        RemoveAddress(index, address);
        return interface->addresses.size() != count;
    }
    const Interface* interface = Find(index);
    if (interface != nullptr) {
        for (const Address& entry : interface->addresses) {
            if (entry.address == address && entry.prefixLength == header.ifa_prefixlen)
                return false;
        }
    }
    AddAddress(index, {address, header.ifa_prefixlen});
    return true;
}

void InterfaceTable::RestrictTo(const std::vector<std::string>& names)
{
    allowedNames = std::set<std::string>(names.begin(), names.end());
}

bool InterfaceTable::IsAllowed(const Interface& interface) const
{
    return allowedNames.empty() || interface.loopback || allowedNames.count(interface.name) != 0;
}

bool InterfaceTable::IsServed(const Interface& interface) const
{
    return interface.up && interface.multicast && !interface.loopback && IsAllowed(interface);
}

const InterfaceTable::Interface* InterfaceTable::Find(int index) const
{
    auto found = interfaces.find(index);
    return found == interfaces.end() ? nullptr : &found->second;
}

bool InterfaceTable::IsOnLink(int index, const IpAddress& source) const
{
    const Interface* arrival = Find(index);
    if (arrival == nullptr || source.IsEmpty() || source.IsMulticast())
        return false;
    static const unsigned char unspecified[16] = {};
    if (std::memcmp(source.Bytes(), unspecified, source.Size()) == 0)
        return false;
    if (source.IsLinkLocalV6())
        return true;
    for (const Address& entry : arrival->addresses) {
        if (entry.prefixLength > 0 && source.SharesPrefix(entry.address, entry.prefixLength))
            return true;
    }
    for (const auto& other : interfaces) {
        for (const Address& entry : other.second.addresses) {
            if (entry.address == source)
                return true;
        }
    }
    return false;
}

} // namespace KivResponder

// SPDX-License-Identifier: Apache-2.0
// InterfaceTable.h - the machine's network interfaces and their addresses
// as rtnetlink reports them, and the rules the responder draws from them:
// which interfaces it serves and whether a sender is on the link a datagram
// arrived on.
//
// Owned by the responder's loop, which feeds it the netlink messages its
// InterfaceMonitor reads; tests feed it messages they build. One thread.
//
// Example:
//   #include <net/if.h>
//   InterfaceTable table;
//   table.SetLink(2, "eth0", IFF_UP | IFF_MULTICAST);
//   table.AddAddress(2, {IpAddress::FromText("192.0.2.2"), 24});
//   bool answer = table.IsOnLink(2, IpAddress::FromText("192.0.2.77"));   // true
#ifndef KIV_RESPONDER_INTERFACETABLE_H
#define KIV_RESPONDER_INTERFACETABLE_H

#include <KivResponder/IpAddress.h>

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace KivResponder {

class InterfaceTable
{
public:
    struct Address
    {
        IpAddress address;
        unsigned prefixLength = 0;
    };

    struct Interface
    {
        int index = 0;
        std::string name;
        bool up = false;
        bool multicast = false;
        bool loopback = false;
        /// Usable addresses only: tentative and failed ones are left out.
        std::vector<Address> addresses;
    };

    /// Adds interface \p index or updates its name and flags (IFF_UP,
    /// IFF_MULTICAST, IFF_LOOPBACK of \p flags; the others are ignored).
    void SetLink(int index, const std::string& name, unsigned flags);
    /// Forgets interface \p index and its addresses; nothing for an unknown one.
    void RemoveLink(int index);
    /// Adds \p address to interface \p index, or updates its prefix length
    /// when the address is there already. An address for an interface not
    /// yet known makes an entry without name or flags until its link arrives.
    void AddAddress(int index, const Address& address);
    /// Removes \p address from interface \p index, if it has it.
    void RemoveAddress(int index, const IpAddress& address);
    /// Forgets everything (before a fresh dump).
    void Clear();

    /// Applies a buffer of rtnetlink messages, from a dump or from
    /// notifications: RTM_NEWLINK, RTM_DELLINK, RTM_NEWADDR and RTM_DELADDR
    /// of IPv4 and IPv6; every other message, and any message or attribute
    /// that is cut short, is skipped. True when the table changed.
    bool Apply(const void* data, std::size_t size);

    /// Serve only the interfaces of these names from now on; an empty list
    /// (the default) serves all.
    void RestrictTo(const std::vector<std::string>& names);
    /// Up, multicast-capable, not loopback, and allowed by RestrictTo.
    bool IsServed(const Interface& interface) const;
    /// True when RestrictTo allows the interface's name, and always for
    /// loopback, through which the machine's own clients reach the responder.
    bool IsAllowed(const Interface& interface) const;

    /// The interface of \p index, or null.
    const Interface* Find(int index) const;
    const std::map<int, Interface>& Interfaces() const { return interfaces; }

    /// Whether a datagram from \p source that arrived on interface \p index
    /// may be answered: the source lies in the subnet of one of that
    /// interface's addresses, is an IPv6 link-local address (the interface
    /// is its link), or is one of this machine's own addresses (a client on
    /// the unit itself, whose datagrams the kernel delivers through
    /// loopback). An unknown interface, an empty, unspecified or multicast
    /// source, and addresses with a prefix length of 0 (which would put the
    /// whole Internet on the link) never count.
    bool IsOnLink(int index, const IpAddress& source) const;

private:
    bool ApplyLink(const void* message, std::size_t size, bool removed);
    bool ApplyAddress(const void* message, std::size_t size, bool removed);

    std::map<int, Interface> interfaces;
    std::set<std::string> allowedNames;
};

} // namespace KivResponder

#endif

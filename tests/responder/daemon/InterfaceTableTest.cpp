// SPDX-License-Identifier: Apache-2.0
#include <KivResponder/InterfaceTable.h>

#include <gtest/gtest.h>

#include <cstring>
#include <linux/if_addr.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <string>
#include <vector>

using KivResponder::InterfaceTable;
using KivResponder::IpAddress;

namespace {

/// Builds rtnetlink messages as the kernel sends them, one after another.
class NetlinkBuffer
{
public:
    void Link(std::uint16_t type, int index, unsigned flags, const std::string& name)
    {
        ifinfomsg body{};
        body.ifi_family = AF_UNSPEC;
        body.ifi_index = index;
        body.ifi_flags = flags;
        std::string payload = Raw(body);
        payload += Attribute(IFLA_IFNAME, name + std::string(1, '\0'));
        Message(type, payload);
    }

    void Address(std::uint16_t type, int index, const std::string& text, unsigned prefixLength,
                 unsigned flags = 0, bool withLocal = true)
    {
        IpAddress address = IpAddress::FromText(text);
        ifaddrmsg body{};
        body.ifa_family = address.GetFamily() == IpAddress::Family::V4 ? AF_INET : AF_INET6;
        body.ifa_prefixlen = static_cast<unsigned char>(prefixLength);
        body.ifa_index = static_cast<unsigned>(index);
        body.ifa_flags = static_cast<unsigned char>(flags);
        std::string bytes(reinterpret_cast<const char*>(address.Bytes()), address.Size());
        std::string payload = Raw(body);
        payload += Attribute(IFA_ADDRESS, bytes);
        if (withLocal)
            payload += Attribute(IFA_LOCAL, bytes);
        Message(type, payload);
    }

    const std::string& Bytes() const { return bytes; }

private:
    template <typename Structure>
    static std::string Raw(const Structure& structure)
    {
        std::string raw(reinterpret_cast<const char*>(&structure), sizeof structure);
        raw.resize(NLMSG_ALIGN(raw.size()), '\0');
        return raw;
    }

    static std::string Attribute(std::uint16_t type, const std::string& value)
    {
        rtattr header{};
        header.rta_type = type;
        header.rta_len = static_cast<unsigned short>(RTA_LENGTH(value.size()));
        std::string attribute(reinterpret_cast<const char*>(&header), sizeof header);
        attribute += value;
        attribute.resize(RTA_ALIGN(attribute.size()), '\0');
        return attribute;
    }

    void Message(std::uint16_t type, const std::string& payload)
    {
        nlmsghdr header{};
        header.nlmsg_type = type;
        header.nlmsg_len = static_cast<std::uint32_t>(NLMSG_LENGTH(payload.size()));
        bytes += std::string(reinterpret_cast<const char*>(&header), sizeof header);
        bytes += payload;
        bytes.resize(NLMSG_ALIGN(bytes.size()), '\0');
    }

    std::string bytes;
};

InterfaceTable EthernetWithAddresses()
{
    InterfaceTable table;
    table.SetLink(2, "eth0", IFF_UP | IFF_MULTICAST);
    table.AddAddress(2, {IpAddress::FromText("192.0.2.2"), 24});
    table.AddAddress(2, {IpAddress::FromText("2001:db8:1::2"), 64});
    table.SetLink(3, "eth1", IFF_UP | IFF_MULTICAST);
    table.AddAddress(3, {IpAddress::FromText("198.51.100.2"), 24});
    return table;
}

} // namespace

TEST(InterfaceTableTest, SourceInTheSubnetOfTheArrivalInterfaceIsOnLink)
{
    InterfaceTable table = EthernetWithAddresses();
    EXPECT_TRUE(table.IsOnLink(2, IpAddress::FromText("192.0.2.200")));
    EXPECT_TRUE(table.IsOnLink(2, IpAddress::FromText("2001:db8:1::77")));
}

TEST(InterfaceTableTest, SourceInTheSubnetOfAnotherInterfaceIsOffLink)
{
    InterfaceTable table = EthernetWithAddresses();
    EXPECT_FALSE(table.IsOnLink(2, IpAddress::FromText("198.51.100.9")));
    EXPECT_FALSE(table.IsOnLink(2, IpAddress::FromText("203.0.113.9")));
    EXPECT_FALSE(table.IsOnLink(2, IpAddress::FromText("2001:db8:2::1")));
}

TEST(InterfaceTableTest, Ipv6LinkLocalSourceIsOnLinkOfAKnownInterface)
{
    InterfaceTable table = EthernetWithAddresses();
    EXPECT_TRUE(table.IsOnLink(3, IpAddress::FromText("fe80::1234")));
    EXPECT_FALSE(table.IsOnLink(9, IpAddress::FromText("fe80::1234")));
}

TEST(InterfaceTableTest, OwnAddressIsOnLinkOnAnyInterface)
{
    InterfaceTable table = EthernetWithAddresses();
    table.SetLink(1, "lo", IFF_UP | IFF_LOOPBACK);
    table.AddAddress(1, {IpAddress::FromText("127.0.0.1"), 8});
    EXPECT_TRUE(table.IsOnLink(1, IpAddress::FromText("192.0.2.2")));
}

TEST(InterfaceTableTest, UnspecifiedMulticastAndSlashZeroNeverMakeASourceOnLink)
{
    InterfaceTable table;
    table.SetLink(2, "eth0", IFF_UP | IFF_MULTICAST);
    table.AddAddress(2, {IpAddress::FromText("192.0.2.2"), 0});
    EXPECT_FALSE(table.IsOnLink(2, IpAddress::FromText("203.0.113.9")));
    EXPECT_FALSE(table.IsOnLink(2, IpAddress::FromText("0.0.0.0")));
    EXPECT_FALSE(table.IsOnLink(2, IpAddress::FromText("239.255.255.250")));
    EXPECT_FALSE(table.IsOnLink(2, IpAddress()));
}

TEST(InterfaceTableTest, ServedInterfacesAreUpMulticastAndNotLoopback)
{
    InterfaceTable table;
    table.SetLink(1, "lo", IFF_UP | IFF_LOOPBACK | IFF_MULTICAST);
    table.SetLink(2, "eth0", IFF_UP | IFF_MULTICAST);
    table.SetLink(3, "eth1", IFF_MULTICAST);
    table.SetLink(4, "tun0", IFF_UP);
    EXPECT_FALSE(table.IsServed(*table.Find(1)));
    EXPECT_TRUE(table.IsServed(*table.Find(2)));
    EXPECT_FALSE(table.IsServed(*table.Find(3)));
    EXPECT_FALSE(table.IsServed(*table.Find(4)));
}

TEST(InterfaceTableTest, RestrictToServesOnlyTheNamedInterfacesButKeepsLoopback)
{
    InterfaceTable table = EthernetWithAddresses();
    table.SetLink(1, "lo", IFF_UP | IFF_LOOPBACK);
    table.RestrictTo({"eth1"});
    EXPECT_FALSE(table.IsServed(*table.Find(2)));
    EXPECT_TRUE(table.IsServed(*table.Find(3)));
    EXPECT_TRUE(table.IsAllowed(*table.Find(1)));
    EXPECT_FALSE(table.IsAllowed(*table.Find(2)));
}

TEST(InterfaceTableTest, ApplyFollowsLinksAndAddressesAsTheyComeAndGo)
{
    InterfaceTable table;
    NetlinkBuffer dump;
    dump.Link(RTM_NEWLINK, 2, IFF_UP | IFF_MULTICAST, "eth0");
    dump.Address(RTM_NEWADDR, 2, "192.0.2.2", 24);
    dump.Address(RTM_NEWADDR, 2, "fe80::2", 64);
    ASSERT_TRUE(table.Apply(dump.Bytes().data(), dump.Bytes().size()));
    ASSERT_NE(table.Find(2), nullptr);
    EXPECT_EQ(table.Find(2)->name, "eth0");
    EXPECT_EQ(table.Find(2)->addresses.size(), 2u);
    EXPECT_TRUE(table.IsServed(*table.Find(2)));

    NetlinkBuffer changes;
    changes.Address(RTM_DELADDR, 2, "192.0.2.2", 24);
    changes.Link(RTM_NEWLINK, 2, IFF_MULTICAST, "eth0");
    ASSERT_TRUE(table.Apply(changes.Bytes().data(), changes.Bytes().size()));
    EXPECT_EQ(table.Find(2)->addresses.size(), 1u);
    EXPECT_FALSE(table.IsServed(*table.Find(2)));

    NetlinkBuffer gone;
    gone.Link(RTM_DELLINK, 2, 0, "eth0");
    ASSERT_TRUE(table.Apply(gone.Bytes().data(), gone.Bytes().size()));
    EXPECT_EQ(table.Find(2), nullptr);
}

TEST(InterfaceTableTest, ApplyReportsNoChangeForARepeatedAddress)
{
    InterfaceTable table;
    NetlinkBuffer messages;
    messages.Link(RTM_NEWLINK, 2, IFF_UP | IFF_MULTICAST, "eth0");
    messages.Address(RTM_NEWADDR, 2, "192.0.2.2", 24);
    ASSERT_TRUE(table.Apply(messages.Bytes().data(), messages.Bytes().size()));
    EXPECT_FALSE(table.Apply(messages.Bytes().data(), messages.Bytes().size()));
}

TEST(InterfaceTableTest, ApplyLeavesOutTentativeAddressesUntilTheyAreUsable)
{
    InterfaceTable table;
    NetlinkBuffer tentative;
    tentative.Link(RTM_NEWLINK, 2, IFF_UP | IFF_MULTICAST, "eth0");
    tentative.Address(RTM_NEWADDR, 2, "2001:db8::2", 64, IFA_F_TENTATIVE);
    table.Apply(tentative.Bytes().data(), tentative.Bytes().size());
    EXPECT_TRUE(table.Find(2)->addresses.empty());
    NetlinkBuffer usable;
    usable.Address(RTM_NEWADDR, 2, "2001:db8::2", 64);
    table.Apply(usable.Bytes().data(), usable.Bytes().size());
    EXPECT_EQ(table.Find(2)->addresses.size(), 1u);
}

TEST(InterfaceTableTest, ApplyTakesAnAddressWithoutLocalFromItsAddressAttribute)
{
    InterfaceTable table;
    NetlinkBuffer messages;
    messages.Address(RTM_NEWADDR, 2, "2001:db8::2", 64, 0, false);
    table.Apply(messages.Bytes().data(), messages.Bytes().size());
    ASSERT_NE(table.Find(2), nullptr);
    ASSERT_EQ(table.Find(2)->addresses.size(), 1u);
    EXPECT_EQ(table.Find(2)->addresses[0].address.Text(), "2001:db8::2");
}

TEST(InterfaceTableTest, ApplyStopsAtAMessageCutShort)
{
    InterfaceTable table;
    NetlinkBuffer messages;
    messages.Link(RTM_NEWLINK, 2, IFF_UP | IFF_MULTICAST, "eth0");
    messages.Link(RTM_NEWLINK, 3, IFF_UP | IFF_MULTICAST, "eth1");
    std::string bytes = messages.Bytes();
    bytes.resize(bytes.size() - 6);
    table.Apply(bytes.data(), bytes.size());
    EXPECT_NE(table.Find(2), nullptr);
    EXPECT_EQ(table.Find(3), nullptr);
    EXPECT_FALSE(table.Apply(bytes.data(), 3));
}

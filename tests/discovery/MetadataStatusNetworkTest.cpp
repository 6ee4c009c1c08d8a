// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataStatusNetwork.h>
#include <KivPlr/core/SmartPtr.h>
#include <VpSts/CStatus.h>
#include "MetadataTesting.h"

#include <gtest/gtest.h>

#include <string>

using namespace KivConfig;
using KivPlr::SmartPtr;
using KivTest::AddDevice;

namespace {

std::string FragmentOf(const VpSts::CStatus& status)
{
    return KivTest::RefreshedXml(new MetadataStatusNetwork(status));
}

} // namespace

TEST(MetadataStatusNetworkTest, EmptyDeviceListGivesAnEmptyNetworkElement)
{
    VpSts::CStatus status;
    EXPECT_EQ(FragmentOf(status), "<Network></Network>");
}

TEST(MetadataStatusNetworkTest, DeviceNumberAttributeQuotesCarryABackslash)
{
    VpSts::CStatus status;
    AddDevice(status, 1, "eth0", "00:11:22:33:44:55", "192.0.2.10", "2001:db8::10", "192.0.2.1",
              "255.255.255.0");
    EXPECT_EQ(FragmentOf(status),
              R"(<Network><NetworkDevice number=\"1\"><Name>eth0</Name>)"
              R"(<MAC>00:11:22:33:44:55</MAC><IPv4>192.0.2.10</IPv4><IPv6>2001:db8::10</IPv6>)"
              R"(<Gateway>192.0.2.1</Gateway><Subnet>255.255.255.0</Subnet>)"
              R"(</NetworkDevice></Network>)");
}

TEST(MetadataStatusNetworkTest, DevicesFollowOneAnotherInListOrderWithTheirOwnNumbers)
{
    VpSts::CStatus status;
    AddDevice(status, 7, "eth1", "m1", "a1", "b1", "g1", "s1");
    AddDevice(status, 3, "eth0", "m0", "a0", "b0", "g0", "s0");
    EXPECT_EQ(FragmentOf(status),
              R"(<Network>)"
              R"(<NetworkDevice number=\"7\"><Name>eth1</Name><MAC>m1</MAC><IPv4>a1</IPv4>)"
              R"(<IPv6>b1</IPv6><Gateway>g1</Gateway><Subnet>s1</Subnet></NetworkDevice>)"
              R"(<NetworkDevice number=\"3\"><Name>eth0</Name><MAC>m0</MAC><IPv4>a0</IPv4>)"
              R"(<IPv6>b0</IPv6><Gateway>g0</Gateway><Subnet>s0</Subnet></NetworkDevice>)"
              R"(</Network>)");
}

TEST(MetadataStatusNetworkTest, DeviceNumberedZeroIsWrittenAsZero)
{
    VpSts::CStatus status;
    AddDevice(status, 0, "", "", "", "", "", "");
    EXPECT_EQ(FragmentOf(status),
              R"(<Network><NetworkDevice number=\"0\"><Name></Name><MAC></MAC><IPv4></IPv4>)"
              R"(<IPv6></IPv6><Gateway></Gateway><Subnet></Subnet></NetworkDevice></Network>)");
}

TEST(MetadataStatusNetworkTest, LargestDeviceNumberIsWrittenUnsigned)
{
    VpSts::CStatus status;
    AddDevice(status, 4294967295u, "n", "m", "a", "b", "g", "s");
    EXPECT_EQ(FragmentOf(status),
              R"(<Network><NetworkDevice number=\"4294967295\"><Name>n</Name><MAC>m</MAC>)"
              R"(<IPv4>a</IPv4><IPv6>b</IPv6><Gateway>g</Gateway><Subnet>s</Subnet>)"
              R"(</NetworkDevice></Network>)");
}

TEST(MetadataStatusNetworkTest, MissingIpv6EndsTheFragmentRightAfterItsOpeningTag)
{
    VpSts::CStatus status;
    AddDevice(status, 1, "eth0", "00:11:22:33:44:55", "192.0.2.10", nullptr, "192.0.2.1",
              "255.255.255.0");
    AddDevice(status, 2, "eth1", "m", "a", "b", "g", "s");
    EXPECT_EQ(FragmentOf(status),
              R"(<Network><NetworkDevice number=\"1\"><Name>eth0</Name>)"
              R"(<MAC>00:11:22:33:44:55</MAC><IPv4>192.0.2.10</IPv4><IPv6>)");
}

TEST(MetadataStatusNetworkTest, MissingNameOfASecondDeviceKeepsTheFirstDeviceWhole)
{
    VpSts::CStatus status;
    AddDevice(status, 1, "n", "m", "a", "b", "g", "s");
    AddDevice(status, 2, nullptr, "m", "a", "b", "g", "s");
    EXPECT_EQ(FragmentOf(status),
              R"(<Network><NetworkDevice number=\"1\"><Name>n</Name><MAC>m</MAC><IPv4>a</IPv4>)"
              R"(<IPv6>b</IPv6><Gateway>g</Gateway><Subnet>s</Subnet></NetworkDevice>)"
              R"(<NetworkDevice number=\"2\"><Name>)");
}

TEST(MetadataStatusNetworkTest, MissingSubnetStopsBeforeItsValue)
{
    VpSts::CStatus status;
    AddDevice(status, 5, "n", "m", "a", "b", "g", nullptr);
    EXPECT_EQ(FragmentOf(status),
              R"(<Network><NetworkDevice number=\"5\"><Name>n</Name><MAC>m</MAC><IPv4>a</IPv4>)"
              R"(<IPv6>b</IPv6><Gateway>g</Gateway><Subnet>)");
}

TEST(MetadataStatusNetworkTest, ValuesAreWrittenUnescaped)
{
    VpSts::CStatus status;
    AddDevice(status, 1, "a<b&c", "\"q\"", "1", "2", "3", "4");
    EXPECT_EQ(FragmentOf(status),
              R"(<Network><NetworkDevice number=\"1\"><Name>a<b&c</Name><MAC>"q"</MAC>)"
              R"(<IPv4>1</IPv4><IPv6>2</IPv6><Gateway>3</Gateway><Subnet>4</Subnet>)"
              R"(</NetworkDevice></Network>)");
}

TEST(MetadataStatusNetworkTest, IdenticalListsInTwoCyclesLeaveTheFlagUnsetInTheSecond)
{
    VpSts::CStatus status;
    AddDevice(status, 1, "eth0", "m", "a", "b", "g", "s");
    SmartPtr<IMetadata> provider(new MetadataStatusNetwork(status));
    provider->Refresh();
    EXPECT_TRUE(provider->IsChanged());
    provider->ClearChanged();
    provider->Refresh();
    EXPECT_FALSE(provider->IsChanged());
}

TEST(MetadataStatusNetworkTest, TruncatedTextIsWhatIsCachedAndCompared)
{
    VpSts::CStatus status;
    AddDevice(status, 1, "eth0", "m", "a", nullptr, "g", "s");
    SmartPtr<IMetadata> provider(new MetadataStatusNetwork(status));
    provider->Refresh();
    provider->ClearChanged();
    provider->Refresh();
    EXPECT_FALSE(provider->IsChanged());

    // A change after the cut is invisible; one before it is a change.
    VpSts::CStatus other;
    AddDevice(other, 1, "eth0", "m", "a", nullptr, "other gateway", "s");
    SmartPtr<IMetadata> sameCut(new MetadataStatusNetwork(other));
    sameCut->Refresh();
    std::string first;
    std::string second;
    provider->GetXml(first);
    sameCut->GetXml(second);
    EXPECT_EQ(first, second);
}

TEST(MetadataStatusNetworkTest, DeviceAddedLaterIsAChange)
{
    VpSts::CStatus status;
    SmartPtr<IMetadata> provider(new MetadataStatusNetwork(status));
    provider->Refresh();
    provider->ClearChanged();
    AddDevice(status, 1, "eth0", "m", "a", "b", "g", "s");
    provider->Refresh();
    EXPECT_TRUE(provider->IsChanged());
}

// SPDX-License-Identifier: Apache-2.0
#include <KivResponder/IpAddress.h>

#include <gtest/gtest.h>

using KivResponder::IpAddress;

TEST(IpAddressTest, TextRoundTripsForBothFamilies)
{
    EXPECT_EQ(IpAddress::FromText("192.0.2.7").Text(), "192.0.2.7");
    EXPECT_EQ(IpAddress::FromText("FE80::0001").Text(), "fe80::1");
    EXPECT_TRUE(IpAddress::FromText("not an address").IsEmpty());
}

TEST(IpAddressTest, UrlHostPutsIpv6InBrackets)
{
    EXPECT_EQ(IpAddress::FromText("2001:db8::5").UrlHost(), "[2001:db8::5]");
    EXPECT_EQ(IpAddress::FromText("192.0.2.7").UrlHost(), "192.0.2.7");
}

TEST(IpAddressTest, SharesPrefixComparesOnlyTheLeadingBits)
{
    IpAddress address = IpAddress::FromText("192.0.2.130");
    EXPECT_TRUE(address.SharesPrefix(IpAddress::FromText("192.0.2.129"), 25));
    EXPECT_FALSE(address.SharesPrefix(IpAddress::FromText("192.0.2.1"), 25));
    EXPECT_TRUE(address.SharesPrefix(IpAddress::FromText("192.0.2.1"), 24));
    EXPECT_FALSE(address.SharesPrefix(IpAddress::FromText("2001:db8::1"), 0));
}

TEST(IpAddressTest, LinkLocalCoversAllOfFe80Slash10)
{
    EXPECT_TRUE(IpAddress::FromText("fe80::1").IsLinkLocalV6());
    EXPECT_TRUE(IpAddress::FromText("febf::1").IsLinkLocalV6());
    EXPECT_FALSE(IpAddress::FromText("fec0::1").IsLinkLocalV6());
    EXPECT_FALSE(IpAddress::FromText("169.254.1.1").IsLinkLocalV6());
}

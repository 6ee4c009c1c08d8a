// SPDX-License-Identifier: Apache-2.0
#include <StatusCollector/DefaultGatewayTable.h>

#include <KivTest/TemporaryDirectory.h>

#include <arpa/inet.h>
#include <cstdio>
#include <gtest/gtest.h>

using KivCollector::DefaultGatewayTable;

namespace {

const char Header[] = "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";
// Flags as the kernel prints them: up, up and through a gateway.
const char Up[] = "0001";
const char UpGateway[] = "0003";

/// An address as the kernel prints it in /proc/net/route on this machine.
std::string KernelHex(const char* dottedQuad)
{
    struct in_addr address;
    inet_pton(AF_INET, dottedQuad, &address);
    char text[16];
    std::snprintf(text, sizeof text, "%08X", static_cast<unsigned int>(address.s_addr));
    return text;
}

std::string Route(const std::string& interfaceName, const char* destination, const char* gateway,
                  const char* flags, unsigned metric, const char* mask)
{
    return interfaceName + "\t" + KernelHex(destination) + "\t" + KernelHex(gateway) + "\t" + flags + "\t0\t0\t" +
           std::to_string(metric) + "\t" + KernelHex(mask) + "\t0\t0\t0\n";
}

} // namespace

TEST(DefaultGatewayTableTest, FindsTheGatewayOfAnInterfacesDefaultRoute)
{
    DefaultGatewayTable table;
    table.Parse(std::string(Header) + Route("eth0", "0.0.0.0", "192.0.2.1", UpGateway, 0, "0.0.0.0") +
                Route("eth0", "192.0.2.0", "0.0.0.0", Up, 0, "255.255.255.0"));
    EXPECT_EQ(table.Find("eth0"), std::optional<std::string>("192.0.2.1"));
}

TEST(DefaultGatewayTableTest, PrefersTheDefaultRouteWithTheLowestMetric)
{
    DefaultGatewayTable table;
    table.Parse(std::string(Header) + Route("eth0", "0.0.0.0", "192.0.2.1", UpGateway, 600, "0.0.0.0") +
                Route("eth0", "0.0.0.0", "192.0.2.254", UpGateway, 100, "0.0.0.0"));
    EXPECT_EQ(table.Find("eth0"), std::optional<std::string>("192.0.2.254"));
}

TEST(DefaultGatewayTableTest, TakesTheFirstListedAmongEqualMetrics)
{
    DefaultGatewayTable table;
    table.Parse(std::string(Header) + Route("eth0", "0.0.0.0", "192.0.2.7", UpGateway, 5, "0.0.0.0") +
                Route("eth0", "0.0.0.0", "192.0.2.8", UpGateway, 5, "0.0.0.0"));
    EXPECT_EQ(table.Find("eth0"), std::optional<std::string>("192.0.2.7"));
}

TEST(DefaultGatewayTableTest, KeepsTheGatewaysOfDifferentInterfacesApart)
{
    DefaultGatewayTable table;
    table.Parse(std::string(Header) + Route("eth0", "0.0.0.0", "192.0.2.1", UpGateway, 0, "0.0.0.0") +
                Route("eth1", "0.0.0.0", "198.51.100.1", UpGateway, 0, "0.0.0.0"));
    EXPECT_EQ(table.Find("eth0"), std::optional<std::string>("192.0.2.1"));
    EXPECT_EQ(table.Find("eth1"), std::optional<std::string>("198.51.100.1"));
    EXPECT_EQ(table.Find("eth"), std::nullopt);
}

TEST(DefaultGatewayTableTest, IgnoresRoutesToOtherDestinations)
{
    DefaultGatewayTable table;
    table.Parse(std::string(Header) + Route("eth0", "10.0.0.0", "192.0.2.1", UpGateway, 0, "255.0.0.0") +
                Route("eth0", "0.0.0.0", "192.0.2.1", UpGateway, 0, "128.0.0.0"));
    EXPECT_EQ(table.Find("eth0"), std::nullopt);
}

TEST(DefaultGatewayTableTest, IgnoresDefaultRoutesWithoutGatewayOrNotUp)
{
    DefaultGatewayTable table;
    table.Parse(std::string(Header) + Route("wg0", "0.0.0.0", "0.0.0.0", Up, 0, "0.0.0.0") +
                Route("eth0", "0.0.0.0", "192.0.2.1", "0002", 0, "0.0.0.0") +
                Route("eth1", "0.0.0.0", "192.0.2.1", Up, 0, "0.0.0.0"));
    EXPECT_EQ(table.Find("wg0"), std::nullopt);
    EXPECT_EQ(table.Find("eth0"), std::nullopt);
    EXPECT_EQ(table.Find("eth1"), std::nullopt);
}

TEST(DefaultGatewayTableTest, SkipsLinesThatDoNotParse)
{
    DefaultGatewayTable table;
    table.Parse(std::string(Header) + "eth0\t00000000\tnothex\t0003\t0\t0\t0\t00000000\n" + "eth0\t00000000\n" +
                "eth0\t00000000\t1102000A00\t0003\t0\t0\t0\t00000000\n" + "eth0\t00000000\t0102000A\t0003\t0\t0\t-1\t00000000\n" +
                Route("eth1", "0.0.0.0", "192.0.2.1", UpGateway, 0, "0.0.0.0"));
    EXPECT_EQ(table.Find("eth0"), std::nullopt);
    EXPECT_EQ(table.Find("eth1"), std::optional<std::string>("192.0.2.1"));
}

TEST(DefaultGatewayTableTest, TreatsTheFirstLineAsTheHeader)
{
    DefaultGatewayTable table;
    table.Parse(Route("eth0", "0.0.0.0", "192.0.2.1", UpGateway, 0, "0.0.0.0"));
    EXPECT_EQ(table.Find("eth0"), std::nullopt);
}

TEST(DefaultGatewayTableTest, ParseReplacesTheEarlierTable)
{
    DefaultGatewayTable table;
    table.Parse(std::string(Header) + Route("eth0", "0.0.0.0", "192.0.2.1", UpGateway, 0, "0.0.0.0"));
    table.Parse(Header);
    EXPECT_EQ(table.Find("eth0"), std::nullopt);
}

TEST(DefaultGatewayTableTest, LoadReadsARouteFile)
{
    KivTest::TemporaryDirectory directory;
    std::string file = directory.Path() + "/route";
    ASSERT_TRUE(KivTest::WriteFile(file, std::string(Header) +
                                             Route("eth0", "0.0.0.0", "203.0.113.9", UpGateway, 0, "0.0.0.0")));
    DefaultGatewayTable table;
    std::string fault;
    EXPECT_TRUE(table.Load(file, fault)) << fault;
    EXPECT_EQ(table.Find("eth0"), std::optional<std::string>("203.0.113.9"));
}

TEST(DefaultGatewayTableTest, LoadOfAMissingFileFailsNamingItAndEmptiesTheTable)
{
    KivTest::TemporaryDirectory directory;
    DefaultGatewayTable table;
    table.Parse(std::string(Header) + Route("eth0", "0.0.0.0", "192.0.2.1", UpGateway, 0, "0.0.0.0"));
    std::string fault;
    EXPECT_FALSE(table.Load(directory.Path() + "/missing", fault));
    EXPECT_EQ(fault, "cannot open " + directory.Path() + "/missing: No such file or directory");
    EXPECT_EQ(table.Find("eth0"), std::nullopt);
}

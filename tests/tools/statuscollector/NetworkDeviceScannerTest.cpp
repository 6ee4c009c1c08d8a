// SPDX-License-Identifier: Apache-2.0
#include <StatusCollector/NetworkDeviceScanner.h>

#include "ExpectedNetwork.h"

#include <cstdint>
#include <gtest/gtest.h>

using KivCollector::CollectedStatus;
using KivCollector::DefaultGatewayTable;
using KivCollector::NetworkDeviceScanner;

namespace {

std::vector<CollectedStatus::NetworkDevice> ScanThisMachine()
{
    DefaultGatewayTable gateways;
    std::string fault;
    EXPECT_TRUE(gateways.Load(DefaultGatewayTable::KernelRouteFile, fault)) << fault;
    std::vector<CollectedStatus::NetworkDevice> devices;
    EXPECT_TRUE(NetworkDeviceScanner().Scan(gateways, devices, fault)) << fault;
    return devices;
}

} // namespace

TEST(NetworkDeviceScannerTest, FormatsHardwareAddressesAsLowerCaseColonHex)
{
    const unsigned char bytes[] = {0x00, 0x1A, 0xBC, 0x0D, 0xEF, 0xFF};
    EXPECT_EQ(NetworkDeviceScanner::FormatHardwareAddress(bytes, 6), "00:1a:bc:0d:ef:ff");
    EXPECT_EQ(NetworkDeviceScanner::FormatHardwareAddress(bytes, 1), "00");
    EXPECT_EQ(NetworkDeviceScanner::FormatHardwareAddress(bytes, 0), "");
}

TEST(NetworkDeviceScannerTest, AgreesWithWhatIpReportsForThisMachine)
{
    std::vector<std::string> expected;
    std::string reason;
    if (!KivTest::ExpectedNetworkLines(expected, reason))
        GTEST_SKIP() << reason;
    EXPECT_EQ(KivTest::DeviceLines(ScanThisMachine()), expected);
}

TEST(NetworkDeviceScannerTest, LeavesOutLoopbackAndOrdersByIndex)
{
    std::vector<CollectedStatus::NetworkDevice> devices = ScanThisMachine();
    std::uint32_t previous = 0;
    for (const auto& device : devices) {
        EXPECT_NE(device.name, "lo");
        EXPECT_GT(device.number, previous) << device.name;
        previous = device.number;
    }
}

TEST(NetworkDeviceScannerTest, ScanReplacesTheEarlierList)
{
    std::vector<CollectedStatus::NetworkDevice> devices(3);
    devices[0].name = "stale";
    std::string fault;
    ASSERT_TRUE(NetworkDeviceScanner().Scan(DefaultGatewayTable(), devices, fault)) << fault;
    for (const auto& device : devices) {
        EXPECT_NE(device.name, "stale");
        EXPECT_EQ(device.gateway, std::nullopt) << "an empty table has no gateway for " << device.name;
    }
}

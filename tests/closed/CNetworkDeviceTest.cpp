// SPDX-License-Identifier: Apache-2.0
#include <VpSts/CNetworkDevice.h>

#include <gtest/gtest.h>

#include <string>

using VpSts::CNetworkDevice;

TEST(CNetworkDeviceTest, NewDeviceHasEveryTextNull)
{
    CNetworkDevice device(3);
    EXPECT_EQ(device.deviceNumber, 3u);
    EXPECT_EQ(device.name, nullptr);
    EXPECT_EQ(device.macAddress, nullptr);
    EXPECT_EQ(device.ipv4Address, nullptr);
    EXPECT_EQ(device.ipv6Address, nullptr);
    EXPECT_EQ(device.gateway, nullptr);
    EXPECT_EQ(device.subnet, nullptr);
}

TEST(CNetworkDeviceTest, EachTextFieldSetsItsOwnPointer)
{
    CNetworkDevice device(1);
    device.SetText(CNetworkDevice::Name, "n");
    device.SetText(CNetworkDevice::MacAddress, "m");
    device.SetText(CNetworkDevice::Ipv4Address, "4");
    device.SetText(CNetworkDevice::Ipv6Address, "6");
    device.SetText(CNetworkDevice::Gateway, "g");
    device.SetText(CNetworkDevice::Subnet, "s");
    EXPECT_STREQ(device.name, "n");
    EXPECT_STREQ(device.macAddress, "m");
    EXPECT_STREQ(device.ipv4Address, "4");
    EXPECT_STREQ(device.ipv6Address, "6");
    EXPECT_STREQ(device.gateway, "g");
    EXPECT_STREQ(device.subnet, "s");
}

TEST(CNetworkDeviceTest, EmptyTextIsAnEmptyStringNotNull)
{
    CNetworkDevice device(1);
    device.SetText(CNetworkDevice::Gateway, "");
    ASSERT_NE(device.gateway, nullptr);
    EXPECT_STREQ(device.gateway, "");
    EXPECT_EQ(device.subnet, nullptr);
}

TEST(CNetworkDeviceTest, SettingATextAgainReplacesIt)
{
    CNetworkDevice device(1);
    device.SetText(CNetworkDevice::Name, "short");
    device.SetText(CNetworkDevice::Name, std::string(1000, 'x'));
    EXPECT_EQ(std::string(device.name), std::string(1000, 'x'));
}

TEST(CNetworkDeviceTest, FieldOutOfRangeIsIgnored)
{
    CNetworkDevice device(1);
    device.SetText(CNetworkDevice::TextFieldCount, "x");
    EXPECT_EQ(device.name, nullptr);
    EXPECT_EQ(device.subnet, nullptr);
}

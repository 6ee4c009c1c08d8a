// SPDX-License-Identifier: Apache-2.0
#include <VpSts/CNetworkDeviceList.h>

#include <gtest/gtest.h>

#include <memory>

using VpSts::CNetworkDevice;
using VpSts::CNetworkDeviceList;

TEST(CNetworkDeviceListTest, IndexPastTheEndAnswersNull)
{
    CNetworkDeviceList list;
    EXPECT_EQ(list[0u], nullptr);
    list.Add(std::make_unique<CNetworkDevice>(4));
    ASSERT_NE(list[0u], nullptr);
    EXPECT_EQ(list[0u]->deviceNumber, 4u);
    EXPECT_EQ(list[1u], nullptr);
    EXPECT_EQ(list[4294967295u], nullptr);
}

TEST(CNetworkDeviceListTest, NullDeviceIsNotAdded)
{
    CNetworkDeviceList list;
    list.Add(nullptr);
    EXPECT_EQ(list.Count(), 0u);
}

TEST(CNetworkDeviceListTest, EntriesStayInPlaceWhenListsAreSwapped)
{
    CNetworkDeviceList first;
    auto device = std::make_unique<CNetworkDevice>(1);
    device->SetText(CNetworkDevice::Name, "eth0");
    const CNetworkDevice* address = device.get();
    const char* name = device->name;
    first.Add(std::move(device));
    CNetworkDeviceList second;
    second.Swap(first);
    EXPECT_EQ(first.Count(), 0u);
    EXPECT_EQ(second[0u], address);
    EXPECT_EQ(second[0u]->name, name);
    EXPECT_STREQ(second[0u]->name, "eth0");
}

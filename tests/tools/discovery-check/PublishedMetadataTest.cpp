// SPDX-License-Identifier: Apache-2.0
#include <DiscoveryCheck/PublishedMetadata.h>

#include "PublishedMetadataText.h"

#include <gtest/gtest.h>

using KivCheck::PublishedMetadata;
using KivTest::CutDeviceText;
using KivTest::DeviceText;
using KivTest::OutputText;
using KivTest::PublishedText;

namespace {

const std::vector<std::string> Eth0 = {"eth0", "02:00:00:00:00:02", "192.0.2.10", "2001:db8::10", "192.0.2.1",
                                        "255.255.255.0"};
const std::vector<std::string> Ifb0 = {"ifb0", "02:00:00:00:00:01", "", "", "", ""};

/// "number name mac ipv4 ipv6 gateway subnet" of an interface.
std::string Line(const PublishedMetadata::Interface& interface)
{
    return interface.number + " " + interface.name + " " + interface.mac + " " + interface.ipv4 + " " +
           interface.ipv6 + " " + interface.gateway + " " + interface.subnet;
}

} // namespace

TEST(PublishedMetadataTest, DecodesEveryPartOfACompleteText)
{
    PublishedMetadata metadata = PublishedMetadata::Decode(PublishedText(
        DeviceText("2", Ifb0) + DeviceText("4", Eth0), OutputText("1", "2", "4") + OutputText("3", "1", "1")));
    EXPECT_EQ(metadata.problem, "");
    EXPECT_EQ(metadata.description, "Wall left");
    EXPECT_EQ(metadata.timeZone, "UTC");
    EXPECT_EQ(metadata.computerName, "unit-1");
    EXPECT_EQ(metadata.productFamily, "TRX-7250");
    ASSERT_EQ(metadata.interfaces.size(), 2u);
    EXPECT_EQ(Line(metadata.interfaces[0]), "2 ifb0 02:00:00:00:00:01    ");
    EXPECT_EQ(Line(metadata.interfaces[1]), "4 eth0 02:00:00:00:00:02 192.0.2.10 2001:db8::10 192.0.2.1 255.255.255.0");
    EXPECT_FALSE(metadata.networkCut);
    ASSERT_EQ(metadata.outputs.size(), 2u);
    EXPECT_EQ(metadata.outputs[0].number, "1");
    EXPECT_EQ(metadata.outputs[0].rows, "2");
    EXPECT_EQ(metadata.outputs[0].columns, "4");
    EXPECT_EQ(metadata.outputs[1].number, "3");
    EXPECT_EQ(metadata.discoveryVersion, "1");
}

TEST(PublishedMetadataTest, ACutAtAnyItemNamesTheInterfaceAndTheItemAndTheOutputsStillFollow)
{
    for (const std::string& item : KivTest::DeviceItems) {
        PublishedMetadata metadata = PublishedMetadata::Decode(
            PublishedText(DeviceText("4", Eth0) + CutDeviceText("7", Ifb0, item), OutputText("1", "1", "1"), true));
        EXPECT_EQ(metadata.problem, "") << item;
        ASSERT_EQ(metadata.interfaces.size(), 1u) << item;
        EXPECT_EQ(metadata.interfaces[0].name, "eth0");
        EXPECT_TRUE(metadata.networkCut) << item;
        EXPECT_EQ(metadata.cutNumber, "7") << item;
        EXPECT_EQ(metadata.cutItem, item);
        EXPECT_EQ(metadata.cutName, item == "Name" ? "" : "ifb0") << item;
        ASSERT_EQ(metadata.outputs.size(), 1u) << item;
        EXPECT_EQ(metadata.discoveryVersion, "1") << item;
    }
}

TEST(PublishedMetadataTest, ACutInTheFirstInterfaceLeavesNoInterface)
{
    PublishedMetadata metadata =
        PublishedMetadata::Decode(PublishedText(CutDeviceText("2", Ifb0, "IPv4"), "", true));
    EXPECT_EQ(metadata.problem, "");
    EXPECT_TRUE(metadata.interfaces.empty());
    EXPECT_TRUE(metadata.networkCut);
    EXPECT_EQ(metadata.cutName, "ifb0");
    EXPECT_TRUE(metadata.outputs.empty());
}

TEST(PublishedMetadataTest, EmptyListsAreNotACut)
{
    PublishedMetadata metadata = PublishedMetadata::Decode(PublishedText("", ""));
    EXPECT_EQ(metadata.problem, "");
    EXPECT_TRUE(metadata.interfaces.empty());
    EXPECT_FALSE(metadata.networkCut);
    EXPECT_TRUE(metadata.outputs.empty());
}

TEST(PublishedMetadataTest, UnescapedValuesHoldingMarkupAreReadWhole)
{
    std::string text = PublishedText(DeviceText("1", {"a</Name>b", "", "", "", "", ""}), "");
    std::string::size_type description = text.find("Wall left");
    text.replace(description, 9, "a<b</Description>&c");
    PublishedMetadata metadata = PublishedMetadata::Decode(text);
    EXPECT_EQ(metadata.problem, "");
    EXPECT_EQ(metadata.description, "a<b</Description>&c");
    ASSERT_EQ(metadata.interfaces.size(), 1u);
    EXPECT_EQ(metadata.interfaces[0].name, "a</Name>b");
}

TEST(PublishedMetadataTest, TextOutsideTheLayoutIsReportedAtItsByteAfterWhatWasRead)
{
    EXPECT_EQ(PublishedMetadata::Decode("").problem, "byte 0: expected <cpp:Config>");
    EXPECT_EQ(PublishedMetadata::Decode("<cpp:Config><Oops>").problem, "byte 12: expected <Description>");
    std::string text = PublishedText(DeviceText("2", Eth0), "<Output/>");
    PublishedMetadata metadata = PublishedMetadata::Decode(text);
    EXPECT_EQ(metadata.problem, "byte " + std::to_string(text.find("<Output/>")) +
                                    ": expected <Output number=\\\"...\\\" ...>...</Output> or </Outputs>");
    ASSERT_EQ(metadata.interfaces.size(), 1u);
    EXPECT_EQ(PublishedMetadata::Decode(PublishedText("", "") + "x").problem,
              "byte " + std::to_string(PublishedText("", "").size()) + ": more text after </cpp:DiscoveryVersion>");
}

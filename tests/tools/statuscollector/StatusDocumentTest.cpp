// SPDX-License-Identifier: Apache-2.0
#include <StatusCollector/StatusDocument.h>

#include <KivTest/TemporaryDirectory.h>
#include <VpSts/CStatus.h>

#include <gtest/gtest.h>

using KivCollector::CollectedStatus;
using KivCollector::StatusDocument;

namespace {

/// Loads \p text through the status library, as the daemon does.
bool LoadThroughStatusLibrary(const std::string& text, VpSts::CStatus& status)
{
    KivTest::TemporaryDirectory directory;
    std::string file = directory.Path() + "/status.xml";
    EXPECT_TRUE(KivTest::WriteFile(file, text));
    bool loaded = status.Load(file.c_str());
    EXPECT_TRUE(loaded) << status.ErrorMessage() << "\n" << text;
    return loaded;
}

std::string Nullable(const char* text)
{
    return text != nullptr ? std::string("\"") + text + "\"" : "null";
}

/// An interface with every item: number 2, eth0.
CollectedStatus::NetworkDevice FullDevice()
{
    CollectedStatus::NetworkDevice full;
    full.number = 2;
    full.name = "eth0";
    full.mac = "00:11:22:33:44:55";
    full.ipv4 = "192.0.2.10";
    full.ipv6 = "2001:db8::10";
    full.gateway = "192.0.2.1";
    full.subnet = "255.255.255.0";
    return full;
}

const char FullDeviceText[] =
    "2 \"eth0\" \"00:11:22:33:44:55\" \"192.0.2.10\" \"2001:db8::10\" \"192.0.2.1\" \"255.255.255.0\"";

/// An interface with a name and nothing else: number 7, ifb0.
CollectedStatus::NetworkDevice BareDevice()
{
    CollectedStatus::NetworkDevice bare;
    bare.number = 7;
    bare.name = "ifb0";
    return bare;
}

const char BareDeviceText[] = "7 \"ifb0\" \"\" \"\" \"\" \"\" \"\"";

/// A loaded device as "number name mac ipv4 ipv6 gateway subnet", each text
/// quoted or "null"; "none" past the end of the list.
std::string DeviceText(const VpSts::CNetworkDevice* device)
{
    if (device == nullptr)
        return "none";
    std::string text = std::to_string(device->deviceNumber);
    for (const char* item : {device->name, device->macAddress, device->ipv4Address, device->ipv6Address,
                             device->gateway, device->subnet})
        text += " " + Nullable(item);
    return text;
}

} // namespace

TEST(StatusDocumentTest, AnEmptyStatusHasTheUnknownModelAndEmptyLists)
{
    EXPECT_EQ(StatusDocument::Render(CollectedStatus()), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                                         "<status>\n"
                                                         "  <modelCode>4294967295</modelCode>\n"
                                                         "  <networkDevices />\n"
                                                         "  <outputs />\n"
                                                         "</status>\n");
}

TEST(StatusDocumentTest, TheSnapshotLoadsBackThroughTheStatusLibrary)
{
    CollectedStatus collected;
    collected.modelCode = 3;
    collected.networkDevices = {FullDevice(), BareDevice()};
    collected.outputs = {{1, CollectedStatus::DisconnectedKind, 1, 1}, {2, CollectedStatus::ConnectedKind, 1, 1}};

    VpSts::CStatus status;
    ASSERT_TRUE(LoadThroughStatusLibrary(StatusDocument::Render(collected), status));
    EXPECT_EQ(status.modelCode, 3u);
    EXPECT_EQ(DeviceText(status.networkDeviceList[0u]), FullDeviceText);
    EXPECT_EQ(DeviceText(status.networkDeviceList[1u]), BareDeviceText);
    EXPECT_EQ(DeviceText(status.networkDeviceList[2u]), "none");

    const VpSts::COutput* output1 = status.outputList[0u];
    const VpSts::COutput* output2 = status.outputList[1u];
    ASSERT_NE(output1, nullptr);
    ASSERT_NE(output2, nullptr);
    EXPECT_EQ(status.outputList[2u], nullptr);
    EXPECT_EQ(output1->outputNumber, 1u);
    EXPECT_EQ(output1->outputKind, 1u);
    EXPECT_EQ(output2->outputNumber, 2u);
    EXPECT_EQ(output2->outputKind, 0u);
    EXPECT_EQ(output2->translationRows, 1u);
    EXPECT_EQ(output2->translationColumns, 1u);
}

TEST(StatusDocumentTest, AnOddInterfaceNameCannotMakeTheSnapshotUnloadable)
{
    CollectedStatus collected;
    CollectedStatus::NetworkDevice odd;
    odd.number = 1;
    odd.name = std::string("e\x01th\xff<&>\"0", 10);
    collected.networkDevices = {odd};
    VpSts::CStatus status;
    ASSERT_TRUE(LoadThroughStatusLibrary(StatusDocument::Render(collected), status));
    ASSERT_NE(status.networkDeviceList[0u], nullptr);
    EXPECT_EQ(Nullable(status.networkDeviceList[0u]->name), "\"e?th?<&>\"0\"");
}

TEST(StatusDocumentTest, XmlSafeReplacesWhatXmlCannotCarry)
{
    EXPECT_EQ(StatusDocument::XmlSafe("plain\ttab\nline\rcr"), "plain\ttab\nline\rcr");
    EXPECT_EQ(StatusDocument::XmlSafe(std::string("nul\0bel\a", 8)), "nul?bel?");
    EXPECT_EQ(StatusDocument::XmlSafe("caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x93\xba"), "caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x93\xba");
    EXPECT_EQ(StatusDocument::XmlSafe("\xc3"), "?");                 // cut short
    EXPECT_EQ(StatusDocument::XmlSafe("\xc0\xaf"), "??");            // overlong "/"
    EXPECT_EQ(StatusDocument::XmlSafe("\xed\xa0\x80"), "???");       // surrogate
    EXPECT_EQ(StatusDocument::XmlSafe("\xef\xbf\xbe"), "???");       // U+FFFE
    EXPECT_EQ(StatusDocument::XmlSafe("\xf4\x90\x80\x80"), "????");  // beyond U+10FFFF
    EXPECT_EQ(StatusDocument::XmlSafe(""), "");
}

TEST(StatusDocumentTest, ItemsAnInterfaceLacksAreEmptyElementsNotMissingOnes)
{
    CollectedStatus collected;
    collected.networkDevices = {BareDevice()};
    std::string text = StatusDocument::Render(collected);
    std::string::size_type items = text.find("<networkDevice number=\"7\">");
    ASSERT_NE(items, std::string::npos) << text;
    for (const char* item : {"mac", "ipv4", "ipv6", "gateway", "subnet"}) {
        // pugixml writes an empty text as an element with nothing inside.
        std::string empty = std::string("<") + item + "></" + item + ">";
        std::string::size_type found = text.find(empty, items);
        EXPECT_NE(found, std::string::npos) << empty << " in\n" << text;
        if (found != std::string::npos)
            items = found;
    }
}

TEST(StatusDocumentTest, AnInterfaceWithoutAddressesDoesNotHideTheInterfacesAfterIt)
{
    CollectedStatus collected;
    collected.networkDevices = {BareDevice(), FullDevice()};
    VpSts::CStatus status;
    ASSERT_TRUE(LoadThroughStatusLibrary(StatusDocument::Render(collected), status));
    // No null text anywhere: the publisher's network fragment runs through
    // both interfaces.
    EXPECT_EQ(DeviceText(status.networkDeviceList[0u]), BareDeviceText);
    EXPECT_EQ(DeviceText(status.networkDeviceList[1u]), FullDeviceText);
    EXPECT_EQ(DeviceText(status.networkDeviceList[2u]), "none");
}

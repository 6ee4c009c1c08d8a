// SPDX-License-Identifier: Apache-2.0
#include <VpSts/CStatus.h>

#include <KivTest/BadRecordFiles.h>
#include <KivTest/TemporaryDirectory.h>
#include "LoadTestHelpers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <sstream>
#include <string>

using KivTest::TemporaryDirectory;
using KivTest::WriteFile;
using VpSts::CNetworkDevice;
using VpSts::CStatus;
using VpSts::COutput;

namespace {

const std::string Declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

std::string Status(const std::string& body)
{
    return Declaration + "<status>\n" + body + "</status>\n";
}

std::string Devices(const std::string& devices)
{
    return "<networkDevices>" + devices + "</networkDevices>";
}

std::string Outputs(const std::string& outputs)
{
    return "<outputs>" + outputs + "</outputs>";
}

const std::string Example = Status(
    "  <modelCode>3</modelCode>\n"
    "  <networkDevices>\n"
    "    <networkDevice number=\"1\">\n"
    "      <name>eth0</name>\n"
    "      <mac>00:11:22:33:44:55</mac>\n"
    "      <ipv4>192.0.2.10</ipv4>\n"
    "      <ipv6>2001:db8::10</ipv6>\n"
    "      <gateway>192.0.2.1</gateway>\n"
    "      <subnet>255.255.255.0</subnet>\n"
    "    </networkDevice>\n"
    "  </networkDevices>\n"
    "  <outputs>\n"
    "    <output number=\"1\" kind=\"0\" rows=\"2\" columns=\"4\"/>\n"
    "  </outputs>\n"
    "  <dateTime>2024-05-01T12:00:00</dateTime>\n"
    "  <upTime>P1D</upTime>\n"
    "  <identifier>0x00000000000000ff</identifier>\n");

class CStatusTest : public ::testing::Test
{
protected:
    bool Load(const std::string& content)
    {
        EXPECT_TRUE(WriteFile(File(), content));
        return status.Load(File().c_str());
    }

    std::string File() const { return directory.Path() + "/status.xml"; }

    std::string OnlyFault() const { return ::OnlyFault(status.ErrorMessages(), File()); }

    void ExpectDefaults() const
    {
        EXPECT_EQ(status.modelCode, 4294967295u);
        EXPECT_EQ(status.networkDeviceList[0u], nullptr);
        EXPECT_EQ(status.networkDeviceList.Count(), 0u);
        EXPECT_EQ(status.outputList[0u], nullptr);
        EXPECT_EQ(status.outputList.Count(), 0u);
        EXPECT_STREQ(status.dateTime, "2000-01-01T00:00:00");
        EXPECT_STREQ(status.upTime, "P0S");
        EXPECT_STREQ(status.identifier, "0x0000000000000000");
    }

    TemporaryDirectory directory;
    CStatus status;
};

} // namespace

TEST_F(CStatusTest, DefaultConstructionGivesEveryDefault)
{
    ExpectDefaults();
    EXPECT_TRUE(status.ErrorMessages().empty());
}

TEST_F(CStatusTest, LoadReadsEveryField)
{
    ASSERT_TRUE(Load(Example)) << status.ErrorMessage();
    EXPECT_EQ(status.modelCode, 3u);
    ASSERT_EQ(status.networkDeviceList.Count(), 1u);
    const CNetworkDevice* device = status.networkDeviceList[0u];
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(device->deviceNumber, 1u);
    EXPECT_STREQ(device->name, "eth0");
    EXPECT_STREQ(device->macAddress, "00:11:22:33:44:55");
    EXPECT_STREQ(device->ipv4Address, "192.0.2.10");
    EXPECT_STREQ(device->ipv6Address, "2001:db8::10");
    EXPECT_STREQ(device->gateway, "192.0.2.1");
    EXPECT_STREQ(device->subnet, "255.255.255.0");
    EXPECT_EQ(status.networkDeviceList[1u], nullptr);
    ASSERT_EQ(status.outputList.Count(), 1u);
    const COutput* output = status.outputList[0u];
    ASSERT_NE(output, nullptr);
    EXPECT_EQ(output->outputNumber, 1u);
    EXPECT_EQ(output->outputKind, 0u);
    EXPECT_EQ(output->translationRows, 2u);
    EXPECT_EQ(output->translationColumns, 4u);
    EXPECT_EQ(status.outputList[1u], nullptr);
    EXPECT_STREQ(status.dateTime, "2024-05-01T12:00:00");
    EXPECT_STREQ(status.upTime, "P1D");
    EXPECT_STREQ(status.identifier, "0x00000000000000ff");
}

TEST_F(CStatusTest, AbsentDeviceTextsAreNullAndEmptyOnesAreEmptyStrings)
{
    ASSERT_TRUE(Load(Status(Devices("<networkDevice number=\"7\"><name>eth1</name><mac></mac><ipv6/>"
                                    "<subnet>  </subnet></networkDevice>"))))
        << status.ErrorMessage();
    const CNetworkDevice* device = status.networkDeviceList[0u];
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(device->deviceNumber, 7u);
    EXPECT_STREQ(device->name, "eth1");
    ASSERT_NE(device->macAddress, nullptr);
    EXPECT_STREQ(device->macAddress, "");
    EXPECT_EQ(device->ipv4Address, nullptr);
    ASSERT_NE(device->ipv6Address, nullptr);
    EXPECT_STREQ(device->ipv6Address, "");
    EXPECT_EQ(device->gateway, nullptr);
    EXPECT_STREQ(device->subnet, "  ");
}

TEST_F(CStatusTest, DeviceWithoutTextsHasOnlyNullTexts)
{
    ASSERT_TRUE(Load(Status(Devices("<networkDevice number=\"0\"/>"))));
    const CNetworkDevice* device = status.networkDeviceList[0u];
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(device->deviceNumber, 0u);
    for (const char* text : {device->name, device->macAddress, device->ipv4Address, device->ipv6Address,
                             device->gateway, device->subnet})
        EXPECT_EQ(text, nullptr);
}

TEST_F(CStatusTest, NullDeviceTextStopsAStreamAsThePublisherExpects)
{
    ASSERT_TRUE(Load(Status(Devices("<networkDevice number=\"1\"><name>eth0</name><ipv4>a</ipv4></networkDevice>"))));
    const CNetworkDevice* device = status.networkDeviceList[0u];
    std::ostringstream stream;
    stream << "<MAC>" << device->macAddress << "</MAC>";
    EXPECT_TRUE(stream.fail());
    EXPECT_EQ(stream.str(), "<MAC>");
}

TEST_F(CStatusTest, ListsKeepDocumentOrder)
{
    ASSERT_TRUE(Load(Status(Devices("<networkDevice number=\"3\"/><networkDevice number=\"1\"/>"
                                    "<networkDevice number=\"3\"/>") +
                            Outputs("<output number=\"2\" kind=\"1\" rows=\"1\" columns=\"1\"/>"
                                    "<output number=\"1\" kind=\"0\" rows=\"3\" columns=\"5\"/>"))));
    ASSERT_EQ(status.networkDeviceList.Count(), 3u);
    EXPECT_EQ(status.networkDeviceList[0u]->deviceNumber, 3u);
    EXPECT_EQ(status.networkDeviceList[1u]->deviceNumber, 1u);
    EXPECT_EQ(status.networkDeviceList[2u]->deviceNumber, 3u);
    ASSERT_EQ(status.outputList.Count(), 2u);
    EXPECT_EQ(status.outputList[0u]->outputNumber, 2u);
    EXPECT_EQ(status.outputList[0u]->outputKind, 1u);
    EXPECT_EQ(status.outputList[1u]->translationRows, 3u);
    EXPECT_EQ(status.outputList[1u]->translationColumns, 5u);
}

TEST_F(CStatusTest, GoodFileReplacesTheRecordWhole)
{
    ASSERT_TRUE(Load(Example));
    ASSERT_TRUE(Load(Status("<upTime>PT5M</upTime>")));
    EXPECT_STREQ(status.upTime, "PT5M");
    EXPECT_EQ(status.modelCode, 4294967295u);
    EXPECT_EQ(status.networkDeviceList[0u], nullptr);
    EXPECT_EQ(status.outputList[0u], nullptr);
    EXPECT_STREQ(status.dateTime, "2000-01-01T00:00:00");
    EXPECT_STREQ(status.identifier, "0x0000000000000000");
}

TEST_F(CStatusTest, BadFileKeepsTheRecordWholeWithItsEntries)
{
    ASSERT_TRUE(Load(Example));
    const CNetworkDevice* device = status.networkDeviceList[0u];
    const char* name = device->name;
    EXPECT_FALSE(Load(Status("<modelCode>4</modelCode>" +
                             Devices("<networkDevice number=\"9\"><name>wlan0</name></networkDevice>") +
                             Outputs("<output number=\"1\" kind=\"0\" rows=\"1\"/>"))));
    EXPECT_EQ(status.modelCode, 3u);
    ASSERT_EQ(status.networkDeviceList.Count(), 1u);
    EXPECT_EQ(status.networkDeviceList[0u], device);
    EXPECT_EQ(device->name, name);
    EXPECT_STREQ(device->name, "eth0");
    EXPECT_EQ(status.outputList[0u]->translationColumns, 4u);
    EXPECT_STREQ(status.upTime, "P1D");
}

TEST_F(CStatusTest, ByteIdenticalFileKeepsRecordWithoutReparsing)
{
    ASSERT_TRUE(Load(Example));
    const CNetworkDevice* device = status.networkDeviceList[0u];
    const COutput* output = status.outputList[0u];
    const char* dateTime = status.dateTime;
    // A parse would build new entries and texts; the same bytes keep them,
    // also right after a failed load, whose messages go.
    for (const std::string& before : {Example, Status("<modelCode>x</modelCode>")}) {
        Load(before);
        EXPECT_TRUE(Load(Example));
        EXPECT_TRUE(status.ErrorMessages().empty());
        EXPECT_EQ(status.networkDeviceList[0u], device);
        EXPECT_EQ(status.outputList[0u], output);
        EXPECT_EQ(status.dateTime, dateTime);
    }
}

TEST_F(CStatusTest, ChangedFileOfEqualSizeIsParsed)
{
    ASSERT_TRUE(Load(Example));
    const CNetworkDevice* device = status.networkDeviceList[0u];
    std::string changed = Example;
    changed.replace(changed.find("eth0"), 4, "eth1");
    ASSERT_EQ(changed.size(), Example.size());
    EXPECT_TRUE(Load(changed));
    ASSERT_NE(status.networkDeviceList[0u], nullptr);
    EXPECT_NE(status.networkDeviceList[0u], device);
    EXPECT_STREQ(status.networkDeviceList[0u]->name, "eth1");
}

TEST_F(CStatusTest, ByteIdenticalCopyOfABadFileStillFails)
{
    std::string bad = Status("<modelCode>x</modelCode>");
    EXPECT_FALSE(Load(bad));
    EXPECT_FALSE(Load(bad));
    EXPECT_EQ(OnlyFault(), "3:1: element modelCode: \"x\" is not an unsigned decimal number");
    ExpectDefaults();
}

TEST_F(CStatusTest, BadFileBeforeAnyGoodOneKeepsTheDefaults)
{
    EXPECT_FALSE(Load(Status("<modelCode>1</modelCode><modelCode>2</modelCode>")));
    ExpectDefaults();
}

TEST_F(CStatusTest, MissingFileFailsWithCannotOpen)
{
    EXPECT_FALSE(status.Load(File().c_str()));
    EXPECT_EQ(status.ErrorMessage(), "cannot open " + File() + ": No such file or directory");
    ExpectDefaults();
}

TEST_F(CStatusTest, NullPathFails)
{
    EXPECT_FALSE(status.Load(nullptr));
    EXPECT_EQ(status.ErrorMessage(), "no status file given");
}

TEST_F(CStatusTest, ModelCodeIsAThirtyTwoBitDecimalNumber)
{
    ASSERT_TRUE(Load(Status("<modelCode>0</modelCode>")));
    EXPECT_EQ(status.modelCode, 0u);
    ASSERT_TRUE(Load(Status("<modelCode>4294967295</modelCode>")));
    EXPECT_EQ(status.modelCode, 4294967295u);
    EXPECT_FALSE(Load(Status("<modelCode>4294967296</modelCode>")));
    EXPECT_EQ(OnlyFault(), "3:1: element modelCode: 4294967296 is out of range 0..4294967295");
    for (const char* bad : {"-1", "+1", " 1", "1 ", "0x1", ""}) {
        EXPECT_FALSE(Load(Status(std::string("<modelCode>") + bad + "</modelCode>"))) << bad;
        EXPECT_EQ(status.modelCode, 4294967295u);
    }
}

TEST_F(CStatusTest, DeviceNumberIsRequired)
{
    EXPECT_FALSE(Load(Status(Devices("<networkDevice><name>eth0</name></networkDevice>"))));
    EXPECT_EQ(OnlyFault(), "3:17: attribute number of networkDevice is missing");
}

TEST_F(CStatusTest, EveryOutputAttributeIsRequired)
{
    const char* attributes[] = {"number", "kind", "rows", "columns"};
    for (const char* left : attributes) {
        std::string element = "<output";
        for (const char* attribute : attributes) {
            if (attribute != left)
                element += std::string(" ") + attribute + "=\"1\"";
        }
        element += "/>";
        EXPECT_FALSE(Load(Status(Outputs(element)))) << left;
        EXPECT_EQ(OnlyFault(), std::string("3:10: attribute ") + left + " of output is missing");
    }
}

TEST_F(CStatusTest, OutputNumbersAreThirtyTwoBit)
{
    ASSERT_TRUE(Load(Status(Outputs("<output number=\"4294967295\" kind=\"4294967295\" rows=\"4294967295\" "
                                    "columns=\"4294967295\"/>"))));
    EXPECT_EQ(status.outputList[0u]->outputNumber, 4294967295u);
    EXPECT_EQ(status.outputList[0u]->translationColumns, 4294967295u);
    EXPECT_FALSE(Load(Status(Outputs("<output number=\"1\" kind=\"0\" rows=\"4294967296\" columns=\"1\"/>"))));
    EXPECT_EQ(OnlyFault(), "3:10: attribute rows of output: 4294967296 is out of range 0..4294967295");
}

TEST_F(CStatusTest, EverySingularElementGivenTwiceFails)
{
    for (const char* name : {"modelCode", "dateTime", "upTime", "identifier"}) {
        std::string element = std::string("<") + name + ">1</" + name + ">\n";
        EXPECT_FALSE(Load(Status(element + element))) << name;
        EXPECT_EQ(OnlyFault(), std::string("4:1: element ") + name + " of status is given twice (first at 3:1)");
    }
    for (const char* name : {"networkDevices", "outputs"}) {
        std::string element = std::string("<") + name + "/>\n";
        EXPECT_FALSE(Load(Status(element + element))) << name;
        EXPECT_EQ(OnlyFault(), std::string("4:1: element ") + name + " of status is given twice (first at 3:1)");
    }
    for (const char* name : {"name", "mac", "ipv4", "ipv6", "gateway", "subnet"}) {
        std::string element = std::string("<") + name + ">x</" + name + ">";
        EXPECT_FALSE(Load(Status(Devices("<networkDevice number=\"1\">" + element + element + "</networkDevice>"))))
            << name;
        EXPECT_NE(OnlyFault().find(std::string("element ") + name + " of networkDevice is given twice"),
                  std::string::npos);
    }
}

TEST_F(CStatusTest, DeviceTextHoldingChildrenFails)
{
    EXPECT_FALSE(Load(Status(Devices("<networkDevice number=\"1\"><ipv4><a/></ipv4></networkDevice>"))));
    EXPECT_EQ(OnlyFault(), "3:49: element ipv4 must hold text, not the element a");
}

TEST_F(CStatusTest, UnknownElementsAndAttributesAreIgnored)
{
    ASSERT_TRUE(Load(Status("<vendor><x>1</x></vendor><modelCode unit=\"none\">2</modelCode>" +
                            Devices("<networkDevice number=\"1\" kind=\"wired\"><speed>1000</speed><name>e</name>"
                                    "</networkDevice><bridge/>") +
                            Outputs("<output number=\"1\" kind=\"0\" rows=\"1\" columns=\"1\" name=\"HDMI-A-1\"/>"
                                    "<connector/>"))))
        << status.ErrorMessage();
    EXPECT_EQ(status.modelCode, 2u);
    ASSERT_EQ(status.networkDeviceList.Count(), 1u);
    EXPECT_STREQ(status.networkDeviceList[0u]->name, "e");
    EXPECT_EQ(status.outputList.Count(), 1u);
}

TEST_F(CStatusTest, WrongRootFails)
{
    EXPECT_FALSE(Load("<configuration/>"));
    EXPECT_EQ(OnlyFault(), "1:1: root element is configuration, expected status");
}

TEST_F(CStatusTest, InvalidUtf8AndForbiddenCharactersFail)
{
    EXPECT_FALSE(Load(Status(Devices("<networkDevice number=\"1\"><name>eth\xFE</name></networkDevice>"))));
    EXPECT_EQ(OnlyFault(), "3:52: invalid UTF-8 byte 0xFE");
    EXPECT_FALSE(Load(Status(Devices("<networkDevice number=\"1\"><name>eth\x1B</name></networkDevice>"))));
    EXPECT_EQ(OnlyFault(), "3:52: character U+001B is not allowed in XML");
}

TEST_F(CStatusTest, FileAtFourMebibytesPassesAndOneByteMoreFails)
{
    std::string head = "<status><modelCode>5</modelCode><!--";
    std::string tail = "--></status>";
    std::string file = head + std::string(4194304 - head.size() - tail.size(), 'x') + tail;
    ASSERT_EQ(file.size(), 4194304u);
    EXPECT_TRUE(Load(file)) << status.ErrorMessage();
    EXPECT_EQ(status.modelCode, 5u);
    file.insert(head.size(), "x");
    EXPECT_FALSE(Load(file));
    EXPECT_EQ(status.ErrorMessage(), File() + ": file of 4194305 bytes is larger than the limit of 4194304 bytes");
    EXPECT_EQ(status.modelCode, 5u);
}

TEST_F(CStatusTest, ThousandTwentyFourDevicesPassAndOneMoreFails)
{
    std::string devices;
    for (int index = 0; index < 1024; ++index)
        devices += "<networkDevice number=\"" + std::to_string(index) + "\"><name>n</name></networkDevice>\n";
    ASSERT_TRUE(Load(Status(Devices("\n" + devices))));
    EXPECT_EQ(status.networkDeviceList.Count(), 1024u);
    EXPECT_EQ(status.networkDeviceList[1023u]->deviceNumber, 1023u);
    EXPECT_EQ(status.networkDeviceList[1024u], nullptr);
    EXPECT_FALSE(Load(Status(Devices("\n" + devices + "<networkDevice number=\"1024\"/>\n"))));
    EXPECT_EQ(OnlyFault(), "1028:1: more than 1024 networkDevice elements in networkDevices");
    EXPECT_EQ(status.networkDeviceList.Count(), 1024u);
}

TEST_F(CStatusTest, ThousandTwentyFourOutputsPassAndOneMoreFails)
{
    std::string outputs;
    for (int index = 0; index < 1024; ++index)
        outputs += "<output number=\"" + std::to_string(index) + "\" kind=\"0\" rows=\"1\" columns=\"1\"/>\n";
    ASSERT_TRUE(Load(Status(Outputs("\n" + outputs))));
    EXPECT_EQ(status.outputList.Count(), 1024u);
    EXPECT_EQ(status.outputList[1023u]->outputNumber, 1023u);
    EXPECT_EQ(status.outputList[1024u], nullptr);
    EXPECT_FALSE(Load(Status(Outputs("\n" + outputs + "<output number=\"1\" kind=\"0\" rows=\"1\" columns=\"1\"/>\n"))));
    EXPECT_EQ(OnlyFault(), "1028:1: more than 1024 output elements in outputs");
}

TEST_F(CStatusTest, DeviceTextOfFourKibibytesPassesAndOneByteMoreFails)
{
    std::string text(4096, 'm');
    ASSERT_TRUE(Load(Status(Devices("<networkDevice number=\"1\"><mac>" + text + "</mac></networkDevice>"))));
    EXPECT_EQ(std::strlen(status.networkDeviceList[0u]->macAddress), 4096u);
    EXPECT_FALSE(Load(Status(Devices("<networkDevice number=\"1\"><mac>" + text + "m</mac></networkDevice>"))));
    EXPECT_EQ(OnlyFault(), "3:43: text of element mac is longer than the limit of 4096 bytes");
    ASSERT_TRUE(Load(Status("<identifier>" + text + "</identifier>")));
    EXPECT_FALSE(Load(Status("<identifier>" + text + "x</identifier>")));
    EXPECT_EQ(OnlyFault(), "3:1: text of element identifier is longer than the limit of 4096 bytes");
}

TEST_F(CStatusTest, SampleFaultsAreReportedWithFileLineAndColumn)
{
    for (const KivTest::BadRecordFile& sample : KivTest::BadRecordFiles()) {
        if (sample.kind != KivTest::BadRecordFile::Status)
            continue;
        EXPECT_FALSE(Load(sample.content)) << sample.fault;
        ASSERT_EQ(status.ErrorMessages().size(), 1u) << sample.fault << ": " << status.ErrorMessage();
        EXPECT_EQ(status.ErrorMessages()[0], File() + ":" + sample.expected) << sample.fault;
        ExpectDefaults();
    }
}

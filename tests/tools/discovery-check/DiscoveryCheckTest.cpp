// SPDX-License-Identifier: Apache-2.0
// Tests of the discovery-check program, run as a separate process (through
// qemu-arm in the armhf lane).

#include <KivDiscoveryClient/Discovery.h>
#include <KivTest/BadRecordFiles.h>
#include <KivTest/ShellCommand.h>
#include <KivTest/TemporaryDirectory.h>
#include <KivTest/WorkingDirectoryGuard.h>
#include "PublishedMetadataText.h"

#include <gtest/gtest.h>

#include <string>

using KivTest::ChildOutcome;
using KivTest::TemporaryDirectory;
using KivTest::WriteFile;

namespace {

class DiscoveryCheckTest : public ::testing::Test
{
protected:
    ChildOutcome Run(const std::string& arguments)
    {
        return KivTest::RunOwnProgram(KIV_DISCOVERY_CHECK_PROGRAM, arguments);
    }

    ChildOutcome Check(const std::string& kind, const std::string& path)
    {
        return Run(kind + " " + KivTest::ShellQuote(path));
    }

    /// Writes Management.xml with port 8080 and \p metadata, as the
    /// publisher does; answers its path.
    std::string Publish(const std::string& metadata)
    {
        KivDiscoveryClient::Discovery description("Management");
        description.AddType("cpp:Management");
        description.SetPort(8080);
        description.SetMetaData(metadata);
        KivTest::WorkingDirectoryGuard enter(directory.Path());
        EXPECT_TRUE(description.WriteToFile()) << description.ErrorMessage();
        return directory.Path() + "/Management.xml";
    }

    TemporaryDirectory directory;
};

} // namespace

TEST_F(DiscoveryCheckTest, ConfigurationSummaryShowsEveryFieldAndService)
{
    ASSERT_TRUE(WriteFile(directory.Path() + "/configuration.xml",
                          "<configuration><description>Wall \"left\"\r\n</description><timeZone>UTC</timeZone>"
                          "<computerName>unit-1</computerName><formatVersion>2</formatVersion><owner>ops</owner>"
                          "<siteLocation>Hall</siteLocation><domainName>example.net</domainName>"
                          "<thresholdLow>1</thresholdLow><thresholdHigh>2</thresholdHigh>"
                          "<productPrefix>TRZ</productPrefix><services><service kind=\"0\" port=\"8080\"/>"
                          "<service kind=\"2\" port=\"554\"/></services></configuration>"));
    ChildOutcome outcome = Check("config", directory.Path());
    EXPECT_EQ(outcome.exitStatus, 0) << KivTest::Describe(outcome);
    EXPECT_EQ(outcome.standardError, "");
    EXPECT_EQ(outcome.standardOutput, "configuration " + directory.Path() + "/configuration.xml\n"
                                      "  description: \"Wall \\\"left\\\"\\n\"\n"
                                      "  timeZone: \"UTC\"\n"
                                      "  computerName: \"unit-1\"\n"
                                      "  formatVersion: \"2\"\n"
                                      "  owner: \"ops\"\n"
                                      "  siteLocation: \"Hall\"\n"
                                      "  domainName: \"example.net\"\n"
                                      "  thresholdLow: 1\n"
                                      "  thresholdHigh: 2\n"
                                      "  productPrefix: \"TRZ\"\n"
                                      "  services: 2\n"
                                      "    service 1: kind 0, port 8080\n"
                                      "    service 2: kind 2, port 554\n");
}

TEST_F(DiscoveryCheckTest, ConfigurationWithoutElementsShowsTheDefaults)
{
    ASSERT_TRUE(WriteFile(directory.Path() + "/configuration.xml", "<configuration/>"));
    ChildOutcome outcome = Check("config", directory.Path());
    EXPECT_EQ(outcome.exitStatus, 0) << KivTest::Describe(outcome);
    EXPECT_NE(outcome.standardOutput.find("  computerName: \"trxDefault\"\n"), std::string::npos);
    EXPECT_NE(outcome.standardOutput.find("  timeZone: \"Europe/Zurich\"\n"), std::string::npos);
    EXPECT_NE(outcome.standardOutput.find("  services: 0\n"), std::string::npos);
}

TEST_F(DiscoveryCheckTest, StatusSummaryShowsAbsentAndEmptyDeviceTextsApart)
{
    std::string file = directory.Path() + "/status.xml";
    ASSERT_TRUE(WriteFile(file, "<status><modelCode>3</modelCode><networkDevices>"
                                "<networkDevice number=\"2\"><name>eth0</name><mac></mac><ipv4>192.0.2.10</ipv4>"
                                "<gateway>192.0.2.1</gateway><subnet>255.255.255.0</subnet></networkDevice>"
                                "</networkDevices><outputs><output number=\"1\" kind=\"0\" rows=\"2\" columns=\"4\"/>"
                                "<output number=\"3\" kind=\"1\" rows=\"1\" columns=\"1\"/></outputs></status>"));
    ChildOutcome outcome = Check("status", file);
    EXPECT_EQ(outcome.exitStatus, 0) << KivTest::Describe(outcome);
    EXPECT_EQ(outcome.standardOutput, "status " + file + "\n"
                                      "  modelCode: 3\n"
                                      "  dateTime: \"2000-01-01T00:00:00\"\n"
                                      "  upTime: \"P0S\"\n"
                                      "  identifier: \"0x0000000000000000\"\n"
                                      "  networkDevices: 1\n"
                                      "    networkDevice 1: number 2\n"
                                      "      name: \"eth0\"\n"
                                      "      mac: \"\"\n"
                                      "      ipv4: \"192.0.2.10\"\n"
                                      "      ipv6: (absent)\n"
                                      "      gateway: \"192.0.2.1\"\n"
                                      "      subnet: \"255.255.255.0\"\n"
                                      "  outputs: 2\n"
                                      "    output 1: number 1, kind 0, rows 2, columns 4\n"
                                      "    output 2: number 3, kind 1, rows 1, columns 1\n");
}

TEST_F(DiscoveryCheckTest, DescriptionSummaryShowsWhatTheWriterWrote)
{
    KivDiscoveryClient::Discovery description("Management");
    description.AddType("cpp:Management");
    description.AddScope("http://standards.kivotrel.example/2011/videoprocessor/trx");
    description.SetPort(8080);
    description.SetMetaData("<cpp:Config>\t&\r</cpp:Config>");
    bool written;
    {
        // The writer puts the file into the working directory.
        KivTest::WorkingDirectoryGuard enter(directory.Path());
        written = description.WriteToFile();
    }
    ASSERT_TRUE(written) << description.ErrorMessage();
    std::string file = directory.Path() + "/Management.xml";
    ChildOutcome outcome = Check("description", file);
    EXPECT_EQ(outcome.exitStatus, 0) << KivTest::Describe(outcome);
    EXPECT_EQ(outcome.standardOutput, "description " + file + "\n"
                                      "  name: \"Management\"\n"
                                      "  types: 1\n"
                                      "    type 1: \"cpp:Management\"\n"
                                      "  scopes: 1\n"
                                      "    scope 1: \"http://standards.kivotrel.example/2011/videoprocessor/trx\"\n"
                                      "  port: 8080\n"
                                      "  metadata: \"<cpp:Config>\\t&\\r</cpp:Config>\"\n");
}

TEST_F(DiscoveryCheckTest, EverySampleFaultIsReportedWithFileLineAndColumn)
{
    int checked = 0;
    for (const KivTest::BadRecordFile& sample : KivTest::BadRecordFiles()) {
        std::string file = KivTest::WriteBadRecordFile(directory.Path(), sample);
        ChildOutcome outcome = sample.kind == KivTest::BadRecordFile::Configuration
                                   ? Check("config", directory.Path())
                                   : Check("status", file);
        EXPECT_EQ(outcome.exitStatus, 1) << sample.fault << ": " << KivTest::Describe(outcome);
        EXPECT_EQ(outcome.standardOutput, "") << sample.fault;
        EXPECT_EQ(outcome.standardError, file + ":" + sample.expected + "\n") << sample.fault;
        ++checked;
    }
    EXPECT_GE(checked, 10);
}

TEST_F(DiscoveryCheckTest, EveryFaultOfOneFileIsListed)
{
    std::string file = directory.Path() + "/status.xml";
    ASSERT_TRUE(WriteFile(file, "<status>\n<modelCode>x</modelCode>\n<outputs>\n<output number=\"1\"/>\n"
                                "</outputs>\n</status>\n"));
    ChildOutcome outcome = Check("status", file);
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.standardError, file + ":2:1: element modelCode: \"x\" is not an unsigned decimal number\n" +
                                         file + ":4:1: attribute kind of output is missing\n" + file +
                                         ":4:1: attribute rows of output is missing\n" + file +
                                         ":4:1: attribute columns of output is missing\n");
}

TEST_F(DiscoveryCheckTest, BadDescriptionFileIsReportedWithItsPosition)
{
    std::string file = directory.Path() + "/Management.xml";
    ASSERT_TRUE(WriteFile(file, "<service name=\"Management\">\n  <port>80</port>\n  <port>81</port>\n</service>\n"));
    for (const char* command : {"description", "summary"}) {
        ChildOutcome outcome = Check(command, file);
        EXPECT_EQ(outcome.exitStatus, 1) << command;
        EXPECT_EQ(outcome.standardOutput, "") << command;
        EXPECT_EQ(outcome.standardError, file + ":3:3: element port of service is given twice (first at 2:3)\n")
            << command;
    }
}

TEST_F(DiscoveryCheckTest, MissingFilesAreReported)
{
    ChildOutcome outcome = Check("config", directory.Path());
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.standardError,
              "cannot open " + directory.Path() + "/configuration.xml: No such file or directory\n");
    outcome = Check("status", directory.Path() + "/status.xml");
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.standardError,
              "cannot open " + directory.Path() + "/status.xml: No such file or directory\n");
    outcome = Check("description", directory.Path() + "/Management.xml");
    EXPECT_EQ(outcome.exitStatus, 1);
}

TEST_F(DiscoveryCheckTest, WrongCommandLinePrintsUsageAndExitsWithTwo)
{
    for (const char* arguments : {"", "config", "status a b", "describe x"}) {
        ChildOutcome outcome = Run(arguments);
        EXPECT_EQ(outcome.exitStatus, 2) << arguments;
        EXPECT_EQ(outcome.standardOutput, "");
        EXPECT_EQ(outcome.standardError.compare(0, 30, "usage: discovery-check config "), 0) << outcome.standardError;
    }
}

TEST_F(DiscoveryCheckTest, SummaryShowsThePortEveryInterfaceWithItsAddressesAndTheOutputs)
{
    std::string file = Publish(KivTest::PublishedText(
        KivTest::DeviceText("2", {"ifb0", "02:00:00:00:00:01", "", "", "", ""}) +
            KivTest::DeviceText("4", {"eth0", "02:00:00:00:00:02", "192.0.2.10", "2001:db8::10", "192.0.2.1",
                                      "255.255.255.0"}),
        KivTest::OutputText("1", "1", "1")));
    ChildOutcome outcome = Check("summary", file);
    EXPECT_EQ(outcome.exitStatus, 0) << KivTest::Describe(outcome);
    EXPECT_EQ(outcome.standardError, "");
    EXPECT_EQ(outcome.standardOutput,
              "summary of " + file + "\n"
              "  management port: 8080\n"
              "  description: \"Wall left\"\n"
              "  time zone: \"UTC\"\n"
              "  computer name: \"unit-1\"\n"
              "  product family: TRX-7250\n"
              "  interfaces: 2\n"
              "    ifb0 (number 2): MAC 02:00:00:00:00:01, IPv4 none, subnet none, gateway none, IPv6 none\n"
              "    eth0 (number 4): MAC 02:00:00:00:00:02, IPv4 192.0.2.10, subnet 255.255.255.0, gateway 192.0.2.1, "
              "IPv6 2001:db8::10\n"
              "  outputs: 1\n"
              "    output 1: rows 1, columns 1\n");
}

TEST_F(DiscoveryCheckTest, SummarySaysWhereAndWhyTheNetworkListWasCut)
{
    std::string file = Publish(KivTest::PublishedText(
        KivTest::DeviceText("4", {"eth0", "02:00:00:00:00:02", "192.0.2.10", "", "", "255.255.255.0"}) +
            KivTest::CutDeviceText("7", {"tun0", "", "", "", "", ""}, "IPv4"),
        "", true));
    ChildOutcome outcome = Check("summary", file);
    EXPECT_EQ(outcome.exitStatus, 0) << KivTest::Describe(outcome);
    EXPECT_EQ(outcome.standardOutput.substr(outcome.standardOutput.find("  interfaces:")),
              "  interfaces: 1\n"
              "    eth0 (number 4): MAC 02:00:00:00:00:02, IPv4 192.0.2.10, subnet 255.255.255.0, gateway none, "
              "IPv6 none\n"
              "  network list cut short: it stops in interface number 7 (tun0), right after <IPv4>\n"
              "    why: the status snapshot has no <ipv4> element for that interface (missing, not empty);\n"
              "    the list ends at the first missing value, so that interface and any after it are not published\n"
              "  outputs: 0\n");
}

TEST_F(DiscoveryCheckTest, SummaryQuotesOddValues)
{
    std::string file = Publish(KivTest::PublishedText(
        KivTest::DeviceText("3", {"my if", "", "a,b", "", "", ""}), ""));
    ChildOutcome outcome = Check("summary", file);
    EXPECT_EQ(outcome.exitStatus, 0) << KivTest::Describe(outcome);
    EXPECT_NE(outcome.standardOutput.find("    \"my if\" (number 3): MAC none, IPv4 \"a,b\", subnet none"),
              std::string::npos)
        << outcome.standardOutput;
}

TEST_F(DiscoveryCheckTest, SummaryOfMetadataOutsideThePublishersLayoutShowsWhatItReadAndFails)
{
    std::string file = Publish("<cpp:Config><Description>D</Description><Zone>");
    ChildOutcome outcome = Check("summary", file);
    EXPECT_EQ(outcome.exitStatus, 1) << KivTest::Describe(outcome);
    EXPECT_EQ(outcome.standardOutput.rfind("summary of " + file + "\n  management port: 8080\n", 0), 0u)
        << outcome.standardOutput;
    EXPECT_EQ(outcome.standardError,
              file + ": metadata not in the publisher's layout at byte 25: no </Description><TimeZone> after "
                     "<Description>\n");
}

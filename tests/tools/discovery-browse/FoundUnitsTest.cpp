// SPDX-License-Identifier: Apache-2.0
// What discovery-browse makes of the answers: one unit per endpoint
// address, the newest metadata version's description, every transport
// address, and the report text with the decoded metadata.

#include <KivBrowse/FoundUnits.h>
#include <KivWsd/WsdNamespaces.h>

#include "../discovery-check/PublishedMetadataText.h"

#include <gtest/gtest.h>

#include <string>

using KivBrowse::FoundUnits;
using KivWsd::TargetService;
using KivWsd::WsdMessage;
using KivWsd::WsdVersion;

namespace {

const char Endpoint[] = "urn:uuid:0b1c2d3e-4f50-4a6b-8c7d-8e9fa0b1c2d3";
const std::string Metadata =
    KivTest::PublishedText(KivTest::DeviceText("2", {"eth0", "02:00:00:00:00:01", "192.0.2.1", "", "", ""}),
                           KivTest::OutputText("1", "1", "1"));

WsdMessage Answer(WsdVersion version, std::uint32_t metadataVersion, const std::string& xaddr, bool withMetadata)
{
    TargetService target;
    target.endpointAddress = Endpoint;
    target.types = {{KivWsd::WsdNamespaces::ProjectTypes, "Management"}};
    target.scopes = {"http://standards.kivotrel.example/2011/videoprocessor/trx"};
    target.xaddrs = {xaddr};
    target.metadataVersion = metadataVersion;
    target.hasMetadata = withMetadata;
    target.metadata = withMetadata ? Metadata : "";
    WsdMessage message;
    message.version = version;
    message.action = KivWsd::WsdAction::ProbeMatches;
    message.targets = {target};
    return message;
}

} // namespace

TEST(FoundUnitsTest, AnswersNamingOneEndpointMakeOneUnitWithEveryAddress)
{
    FoundUnits units;
    units.Add(Answer(WsdVersion::Discovery2005, 3, "http://192.0.2.1:8080/", true));
    units.Add(Answer(WsdVersion::Discovery2009, 3, "http://[fe80::1]:8080/", true));
    units.Add(Answer(WsdVersion::Discovery2009, 3, "http://192.0.2.1:8080/", true));
    EXPECT_EQ(units.Count(), 1u);
    std::string report = units.Report();
    EXPECT_EQ((std::string(Endpoint) + "\n"
                                                   "  types: cpp:Management\n"
                                                   "  scopes: http://standards.kivotrel.example/2011/videoprocessor/trx\n"
                                                   "  addresses: http://192.0.2.1:8080/ http://[fe80::1]:8080/\n"
                                                   "  metadata version: 3\n"
                                                   "  answered in WS-Discovery: 2005/04 1.1\n"
                                                   "  description: \"Wall left\"\n"
                                                   "  time zone: \"UTC\"\n"
                                                   "  computer name: \"unit-1\"\n"
                                                   "  product family: TRX-7250\n"
                                                   "  interfaces: 1\n"
                                                   "    eth0 (number 2): MAC 02:00:00:00:00:01, IPv4 192.0.2.1, "
                                                   "subnet none, gateway none, IPv6 none\n"
                                                   "  outputs: 1\n"
                                                   "    output 1: rows 1, columns 1\n"),
              report)
        << report;
}

TEST(FoundUnitsTest, TheHighestMetadataVersionDecidesButKeepsMetadataSeenBefore)
{
    FoundUnits units;
    units.Add(Answer(WsdVersion::Discovery2005, 2, "http://192.0.2.1:8080/", true));
    WsdMessage newer = Answer(WsdVersion::Discovery2005, 5, "http://192.0.2.1:8081/", false);
    newer.targets[0].scopes = {"http://example.org/moved"};
    units.Add(newer);
    units.Add(Answer(WsdVersion::Discovery2005, 4, "http://192.0.2.1:8080/", false));
    std::string report = units.Report();
    EXPECT_NE(report.find("  scopes: http://example.org/moved\n"), std::string::npos) << report;
    EXPECT_NE(report.find("  addresses: http://192.0.2.1:8080/ http://192.0.2.1:8081/\n"), std::string::npos)
        << report;
    EXPECT_NE(report.find("  metadata version: 5\n"), std::string::npos) << report;
    EXPECT_NE(report.find("  answered in WS-Discovery: 2005/04\n"), std::string::npos) << report;
    EXPECT_NE(report.find("  computer name: \"unit-1\"\n"), std::string::npos) << report;
}

TEST(FoundUnitsTest, AUnitWithoutMetadataSaysSoAndAnUnreadableOneSaysWhere)
{
    FoundUnits units;
    units.Add(Answer(WsdVersion::Discovery2009, 1, "http://192.0.2.1:8080/", false));
    EXPECT_NE(units.Report().find("  answered in WS-Discovery: 1.1\n  metadata: none\n"), std::string::npos)
        << units.Report();
    FoundUnits odd;
    WsdMessage answer = Answer(WsdVersion::Discovery2009, 1, "http://192.0.2.1:8080/", true);
    answer.targets[0].metadata = "not ours";
    odd.Add(answer);
    EXPECT_NE(odd.Report().find("  metadata not in the publisher's layout at "), std::string::npos) << odd.Report();
}

TEST(FoundUnitsTest, TypesShowTheProjectPrefixNoPrefixOrTheirNamespace)
{
    EXPECT_EQ(FoundUnits::Shown({KivWsd::WsdNamespaces::ProjectTypes, "Management"}), "cpp:Management");
    EXPECT_EQ(FoundUnits::Shown({"", "Plain"}), "Plain");
    EXPECT_EQ(FoundUnits::Shown({"http://example.org/ns", "Device"}), "{http://example.org/ns}Device");
}

TEST(FoundUnitsTest, NothingAddedReportsNothing)
{
    FoundUnits units;
    EXPECT_TRUE(units.Empty());
    EXPECT_EQ(units.Report(), "");
}

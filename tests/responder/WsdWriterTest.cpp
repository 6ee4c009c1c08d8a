// SPDX-License-Identifier: Apache-2.0
// The datagram writer: exact bytes, every message kind of both versions read
// back by our reader and by python3's xml.etree, escaping, and the metadata
// size rule.
#include <KivWsd/WsdWriter.h>

#include <KivTest/ShellCommand.h>
#include <KivTest/TemporaryDirectory.h>
#include <KivWsd/WsdLimits.h>
#include <KivWsd/WsdNamespaces.h>
#include <KivWsd/WsdReader.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using KivWsd::AppSequence;
using KivWsd::QualifiedName;
using KivWsd::TargetService;
using KivWsd::WsdAction;
using KivWsd::WsdLimits;
using KivWsd::WsdMessage;
using KivWsd::WsdNamespaces;
using KivWsd::WsdReader;
using KivWsd::WsdVersion;
using KivWsd::WsdWriter;

const std::string ProjectTypes = WsdNamespaces::ProjectTypes;
const std::string MessageId = "urn:uuid:0f0e0d0c-0b0a-4908-8706-050403020100";
const std::string ProbeId = "urn:uuid:11111111-2222-4333-8444-555555555555";
const AppSequence Sequence{42, 7};

TargetService SampleTarget()
{
    TargetService target;
    target.endpointAddress = "urn:uuid:7d2f4a6c-8e0b-4c1d-9f3a-5b7d9e1f3a5c";
    target.types = {{ProjectTypes, "Management"}, {"urn:other:types", "Thing"}, {"", "Bare"}};
    target.scopes = {"http://standards.kivotrel.example/2011/videoprocessor/trx", "urn:a&b"};
    target.xaddrs = {"http://192.0.2.7:8080/", "http://[2001:db8::7]:8080/"};
    target.metadataVersion = 3;
    target.hasMetadata = true;
    target.metadata = "<cpp:Config>\n\t<Name>R&D \"lab\" ]]> 'x'</Name>\r\n</cpp:Config>";
    return target;
}

WsdMessage ReadBack(const std::string& datagram)
{
    WsdMessage message;
    std::string error;
    EXPECT_TRUE(WsdReader::Read(datagram.data(), datagram.size(), WsdLimits::MaximumOutgoingDatagram, message, error))
        << error << "\n" << datagram;
    return message;
}

void ExpectSameTarget(const TargetService& read, const TargetService& written)
{
    EXPECT_EQ(read.endpointAddress, written.endpointAddress);
    EXPECT_EQ(read.types, written.types);
    EXPECT_EQ(read.scopes, written.scopes);
    EXPECT_EQ(read.xaddrs, written.xaddrs);
    EXPECT_EQ(read.metadataVersion, written.metadataVersion);
    EXPECT_EQ(read.hasMetadata, written.hasMetadata);
    EXPECT_EQ(read.metadata, written.metadata);
}

class WsdWriterRoundTripTest : public testing::TestWithParam<WsdVersion>
{
};

INSTANTIATE_TEST_SUITE_P(BothVersions, WsdWriterRoundTripTest,
                         testing::Values(WsdVersion::Discovery2005, WsdVersion::Discovery2009),
                         [](const testing::TestParamInfo<WsdVersion>& parameter) {
                             return parameter.param == WsdVersion::Discovery2005 ? "Discovery2005" : "Discovery2009";
                         });

TEST_P(WsdWriterRoundTripTest, ProbeReadsBackWithTypesScopesAndMatchBy)
{
    std::vector<QualifiedName> types = {{ProjectTypes, "Management"}, {"urn:x", "Y"}};
    std::vector<std::string> scopes = {"http://a.example/b", "urn:c"};
    std::string matchBy = WsdNamespaces::Of(GetParam()).matchByStrcmp0;
    WsdMessage message = ReadBack(WsdWriter::Probe(GetParam(), MessageId, types, scopes, matchBy));
    EXPECT_EQ(message.version, GetParam());
    EXPECT_EQ(message.action, WsdAction::Probe);
    EXPECT_EQ(message.messageId, MessageId);
    EXPECT_EQ(message.to, WsdNamespaces::Of(GetParam()).multicastTo);
    EXPECT_FALSE(message.hasAppSequence);
    EXPECT_EQ(message.types, types);
    EXPECT_EQ(message.scopes, scopes);
    EXPECT_EQ(message.matchBy, matchBy);
}

TEST_P(WsdWriterRoundTripTest, ProbeWithoutTypesOrScopesReadsBackEmpty)
{
    WsdMessage message = ReadBack(WsdWriter::Probe(GetParam(), MessageId, {}, {}, ""));
    EXPECT_EQ(message.action, WsdAction::Probe);
    EXPECT_TRUE(message.types.empty());
    EXPECT_TRUE(message.scopes.empty());
    EXPECT_TRUE(message.matchBy.empty());
}

TEST_P(WsdWriterRoundTripTest, ResolveReadsBackWithItsEndpointAddress)
{
    WsdMessage message = ReadBack(WsdWriter::Resolve(GetParam(), MessageId, "urn:uuid:abc"));
    EXPECT_EQ(message.version, GetParam());
    EXPECT_EQ(message.action, WsdAction::Resolve);
    EXPECT_EQ(message.endpointAddress, "urn:uuid:abc");
}

TEST_P(WsdWriterRoundTripTest, HelloReadsBackWithEveryFieldOfItsTarget)
{
    TargetService target = SampleTarget();
    WsdMessage message = ReadBack(WsdWriter::Hello(GetParam(), MessageId, Sequence, target));
    EXPECT_EQ(message.version, GetParam());
    EXPECT_EQ(message.action, WsdAction::Hello);
    EXPECT_EQ(message.to, WsdNamespaces::Of(GetParam()).multicastTo);
    EXPECT_TRUE(message.hasAppSequence);
    EXPECT_EQ(message.appSequence.instanceId, 42u);
    EXPECT_EQ(message.appSequence.messageNumber, 7u);
    ASSERT_EQ(message.targets.size(), 1u);
    ExpectSameTarget(message.targets[0], target);
}

TEST_P(WsdWriterRoundTripTest, ByeReadsBackWithItsEndpointAddressOnly)
{
    WsdMessage message = ReadBack(WsdWriter::Bye(GetParam(), MessageId, Sequence, SampleTarget()));
    EXPECT_EQ(message.action, WsdAction::Bye);
    ASSERT_EQ(message.targets.size(), 1u);
    EXPECT_EQ(message.targets[0].endpointAddress, SampleTarget().endpointAddress);
    EXPECT_TRUE(message.targets[0].types.empty());
    EXPECT_FALSE(message.targets[0].hasMetadata);
}

TEST_P(WsdWriterRoundTripTest, ProbeMatchesReadsBackWithEveryTarget)
{
    TargetService second = SampleTarget();
    second.endpointAddress = "urn:uuid:second";
    second.types = {{"urn:third:types", "Other"}};
    second.hasMetadata = false;
    second.metadata.clear();
    WsdMessage message =
        ReadBack(WsdWriter::ProbeMatches(GetParam(), MessageId, ProbeId, Sequence, {SampleTarget(), second}));
    EXPECT_EQ(message.action, WsdAction::ProbeMatches);
    EXPECT_EQ(message.relatesTo, ProbeId);
    EXPECT_EQ(message.to, WsdNamespaces::Of(GetParam()).anonymousTo);
    ASSERT_EQ(message.targets.size(), 2u);
    ExpectSameTarget(message.targets[0], SampleTarget());
    ExpectSameTarget(message.targets[1], second);
}

TEST_P(WsdWriterRoundTripTest, EmptyProbeMatchesReadsBackWithoutTargets)
{
    WsdMessage message = ReadBack(WsdWriter::ProbeMatches(GetParam(), MessageId, ProbeId, Sequence, {}));
    EXPECT_EQ(message.action, WsdAction::ProbeMatches);
    EXPECT_TRUE(message.targets.empty());
}

TEST_P(WsdWriterRoundTripTest, ResolveMatchesReadsBackWithItsTarget)
{
    WsdMessage message = ReadBack(WsdWriter::ResolveMatches(GetParam(), MessageId, ProbeId, Sequence, SampleTarget()));
    EXPECT_EQ(message.action, WsdAction::ResolveMatches);
    EXPECT_EQ(message.relatesTo, ProbeId);
    ASSERT_EQ(message.targets.size(), 1u);
    ExpectSameTarget(message.targets[0], SampleTarget());
}

TEST_P(WsdWriterRoundTripTest, MetadataThatWouldPassTheLimitIsLeftOutAndTheMatchStillGoes)
{
    TargetService target = SampleTarget();
    target.metadata = std::string(WsdLimits::MaximumOutgoingDatagram, 'm');
    std::string datagram = WsdWriter::ProbeMatches(GetParam(), MessageId, ProbeId, Sequence, {target});
    EXPECT_LE(datagram.size(), WsdLimits::MaximumOutgoingDatagram);
    WsdMessage message = ReadBack(datagram);
    ASSERT_EQ(message.targets.size(), 1u);
    EXPECT_EQ(message.targets[0].endpointAddress, target.endpointAddress);
    EXPECT_EQ(message.targets[0].types, target.types);
    EXPECT_FALSE(message.targets[0].hasMetadata);
}

TEST_P(WsdWriterRoundTripTest, HelloLeavesOutMetadataThatWouldPassTheLimit)
{
    TargetService target = SampleTarget();
    target.metadata = std::string(WsdLimits::MaximumOutgoingDatagram, '&');
    std::string datagram = WsdWriter::Hello(GetParam(), MessageId, Sequence, target);
    EXPECT_LE(datagram.size(), WsdLimits::MaximumOutgoingDatagram);
    EXPECT_FALSE(ReadBack(datagram).targets.at(0).hasMetadata);
}

TEST_P(WsdWriterRoundTripTest, ResolveMatchesLeavesOutMetadataThatWouldPassTheLimit)
{
    TargetService target = SampleTarget();
    target.metadata = std::string(WsdLimits::MaximumOutgoingDatagram, 'm');
    std::string datagram = WsdWriter::ResolveMatches(GetParam(), MessageId, ProbeId, Sequence, target);
    EXPECT_LE(datagram.size(), WsdLimits::MaximumOutgoingDatagram);
    EXPECT_FALSE(ReadBack(datagram).targets.at(0).hasMetadata);
}

TEST_P(WsdWriterRoundTripTest, MetadataThatFitsExactlyIsKept)
{
    TargetService target = SampleTarget();
    target.metadata.clear();
    std::size_t without = WsdWriter::Hello(GetParam(), MessageId, Sequence, target).size();
    target.metadata = std::string(WsdLimits::MaximumOutgoingDatagram - without, 'm');
    std::string datagram = WsdWriter::Hello(GetParam(), MessageId, Sequence, target);
    EXPECT_EQ(datagram.size(), WsdLimits::MaximumOutgoingDatagram);
    EXPECT_EQ(ReadBack(datagram).targets.at(0).metadata, target.metadata);
}

TEST_P(WsdWriterRoundTripTest, ProbeMatchesLeavesOutTheLargestMetadataFirst)
{
    TargetService small = SampleTarget();
    small.metadata = std::string(1000, 's');
    TargetService large = SampleTarget();
    large.endpointAddress = "urn:uuid:large";
    large.metadata = std::string(7000, 'l');
    WsdMessage message = ReadBack(WsdWriter::ProbeMatches(GetParam(), MessageId, ProbeId, Sequence, {small, large}));
    ASSERT_EQ(message.targets.size(), 2u);
    EXPECT_TRUE(message.targets[0].hasMetadata);
    EXPECT_EQ(message.targets[0].metadata, small.metadata);
    EXPECT_FALSE(message.targets[1].hasMetadata);
}

TEST_P(WsdWriterRoundTripTest, TextThatXmlCannotCarryReadsBackAsReplacementCharacters)
{
    TargetService target = SampleTarget();
    target.metadata = std::string("a\x01") + "b\xFF" + "c";
    WsdMessage message = ReadBack(WsdWriter::Hello(GetParam(), MessageId, Sequence, target));
    EXPECT_EQ(message.targets.at(0).metadata, "a\xEF\xBF\xBD" "b\xEF\xBF\xBD" "c");
}

TEST_P(WsdWriterRoundTripTest, TypesAndListEntriesThatCannotBeWrittenAreLeftOut)
{
    TargetService target = SampleTarget();
    target.types = {{ProjectTypes, "Management"}, {ProjectTypes, "two words"}, {"urn:x", "1digit"},
                    {"http://www.w3.org/2000/xmlns/", "Reserved"}};
    target.scopes = {"urn:a", "urn:with space", ""};
    WsdMessage message = ReadBack(WsdWriter::Hello(GetParam(), MessageId, Sequence, target));
    EXPECT_EQ(message.targets.at(0).types, (std::vector<QualifiedName>{{ProjectTypes, "Management"}}));
    EXPECT_EQ(message.targets.at(0).scopes, std::vector<std::string>{"urn:a"});
}

TEST_P(WsdWriterRoundTripTest, TypeInTheXmlNamespaceUsesThePredeclaredPrefix)
{
    std::vector<QualifiedName> types = {{"http://www.w3.org/XML/1998/namespace", "Management"}};
    std::string datagram = WsdWriter::Probe(GetParam(), MessageId, types, {}, "");
    EXPECT_NE(datagram.find("<wsd:Types>xml:Management</wsd:Types>"), std::string::npos) << datagram;
    EXPECT_EQ(ReadBack(datagram).types, types);
}

TEST(WsdWriterTest, ProbeOf2005IsExactlyTheseBytes)
{
    std::string datagram = WsdWriter::Probe(WsdVersion::Discovery2005, MessageId, {{ProjectTypes, "Management"}},
                                            {"http://a.example/b"}, "");
    EXPECT_EQ(datagram,
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
              "<soap:Envelope xmlns:soap=\"http://www.w3.org/2003/05/soap-envelope\" "
              "xmlns:wsa=\"http://schemas.xmlsoap.org/ws/2004/08/addressing\" "
              "xmlns:wsd=\"http://schemas.xmlsoap.org/ws/2005/04/discovery\" "
              "xmlns:cpp=\"http://standards.kivotrel.example/2011/videoprocessor\">"
              "<soap:Header><wsa:Action>http://schemas.xmlsoap.org/ws/2005/04/discovery/Probe</wsa:Action>"
              "<wsa:MessageID>urn:uuid:0f0e0d0c-0b0a-4908-8706-050403020100</wsa:MessageID>"
              "<wsa:To>urn:schemas-xmlsoap-org:ws:2005:04:discovery</wsa:To></soap:Header>"
              "<soap:Body><wsd:Probe><wsd:Types>cpp:Management</wsd:Types>"
              "<wsd:Scopes>http://a.example/b</wsd:Scopes></wsd:Probe></soap:Body></soap:Envelope>");
}

TEST(WsdWriterTest, ResolveMatchesOf2009IsExactlyTheseBytes)
{
    TargetService target;
    target.endpointAddress = "urn:uuid:e";
    target.types = {{ProjectTypes, "Management"}, {"urn:x", "Y"}};
    target.xaddrs = {"http://192.0.2.7:8080/"};
    target.metadataVersion = 2;
    target.hasMetadata = true;
    target.metadata = "<a>&";
    std::string datagram = WsdWriter::ResolveMatches(WsdVersion::Discovery2009, MessageId, ProbeId, Sequence, target);
    EXPECT_EQ(datagram,
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
              "<soap:Envelope xmlns:soap=\"http://www.w3.org/2003/05/soap-envelope\" "
              "xmlns:wsa=\"http://www.w3.org/2005/08/addressing\" "
              "xmlns:wsd=\"http://docs.oasis-open.org/ws-dd/ns/discovery/2009/01\" "
              "xmlns:cpp=\"http://standards.kivotrel.example/2011/videoprocessor\" xmlns:t1=\"urn:x\">"
              "<soap:Header><wsa:Action>http://docs.oasis-open.org/ws-dd/ns/discovery/2009/01/ResolveMatches"
              "</wsa:Action><wsa:MessageID>urn:uuid:0f0e0d0c-0b0a-4908-8706-050403020100</wsa:MessageID>"
              "<wsa:RelatesTo>urn:uuid:11111111-2222-4333-8444-555555555555</wsa:RelatesTo>"
              "<wsa:To>http://www.w3.org/2005/08/addressing/anonymous</wsa:To>"
              "<wsd:AppSequence InstanceId=\"42\" MessageNumber=\"7\"/></soap:Header>"
              "<soap:Body><wsd:ResolveMatches><wsd:ResolveMatch><wsa:EndpointReference>"
              "<wsa:Address>urn:uuid:e</wsa:Address></wsa:EndpointReference>"
              "<wsd:Types>cpp:Management t1:Y</wsd:Types><wsd:XAddrs>http://192.0.2.7:8080/</wsd:XAddrs>"
              "<wsd:MetadataVersion>2</wsd:MetadataVersion>"
              "<kd:Metadata xmlns:kd=\"http://standards.kivotrel.example/2026/discovery\">&lt;a&gt;&amp;</kd:Metadata>"
              "</wsd:ResolveMatch></wsd:ResolveMatches></soap:Body></soap:Envelope>");
}

TEST(WsdWriterTest, EveryMessageOfBothVersionsReadsBackThroughPythonElementTree)
{
    // python3's own parser, with its own namespace handling: the Types text
    // is resolved against the declarations in scope as a client would.
    const std::string checker = R"PY(
import sys
import xml.etree.ElementTree as ElementTree
SOAP = '{http://www.w3.org/2003/05/soap-envelope}'
KD = '{http://standards.kivotrel.example/2026/discovery}Metadata'
checked = 0
for path in sys.argv[1:]:
    names = {}
    for event, item in ElementTree.iterparse(path, events=['start-ns']):
        names[item[0]] = item[1]
    root = ElementTree.parse(path).getroot()
    assert root.tag == SOAP + 'Envelope', root.tag
    body = root.find(SOAP + 'Body')
    message = list(body)[0]
    for types in message.iter():
        if types.tag.endswith('}Types'):
            for word in types.text.split():
                prefix, local = word.split(':') if ':' in word else ('', word)
                print('type {%s}%s' % (names.get(prefix, ''), local))
    for metadata in message.iter(KD):
        print('metadata ' + metadata.text.encode('utf-8').hex())
    checked += 1
print('checked %d' % checked)
)PY";
    KivTest::TemporaryDirectory directory;
    ASSERT_TRUE(KivTest::WriteFile(directory.Path() + "/check.py", checker));
    TargetService target = SampleTarget();
    target.types = {{ProjectTypes, "Management"}};
    std::string files;
    int count = 0;
    for (WsdVersion version : {WsdVersion::Discovery2005, WsdVersion::Discovery2009}) {
        const std::string datagrams[] = {
            WsdWriter::Probe(version, MessageId, target.types, target.scopes, ""),
            WsdWriter::Resolve(version, MessageId, target.endpointAddress),
            WsdWriter::Hello(version, MessageId, Sequence, target),
            WsdWriter::Bye(version, MessageId, Sequence, target),
            WsdWriter::ProbeMatches(version, MessageId, ProbeId, Sequence, {target}),
            WsdWriter::ResolveMatches(version, MessageId, ProbeId, Sequence, target),
        };
        for (const std::string& datagram : datagrams) {
            std::string file = directory.Path() + "/" + std::to_string(++count) + ".xml";
            ASSERT_TRUE(KivTest::WriteFile(file, datagram));
            files += " " + KivTest::ShellQuote(file);
        }
    }
    KivTest::ChildOutcome outcome =
        KivTest::RunShellCommand("python3 " + KivTest::ShellQuote(directory.Path() + "/check.py") + files + " 2>&1");
    ASSERT_EQ(outcome.exitStatus, 0) << KivTest::Describe(outcome);
    std::string hex;
    for (unsigned char character : target.metadata) {
        static const char digits[] = "0123456789abcdef";
        hex += digits[character >> 4];
        hex += digits[character & 15];
    }
    std::string output = outcome.standardOutput;
    auto occurrences = [&](const std::string& needle) {
        std::size_t found = 0;
        for (std::size_t at = output.find(needle); at != std::string::npos; at = output.find(needle, at + 1))
            ++found;
        return found;
    };
    EXPECT_NE(output.find("checked 12\n"), std::string::npos) << output;
    // Probe, Hello, ProbeMatches and ResolveMatches of each version carry the type.
    EXPECT_EQ(occurrences("type {" + ProjectTypes + "}Management\n"), 8u) << output;
    // Hello, ProbeMatches and ResolveMatches of each version carry the metadata exactly.
    EXPECT_EQ(occurrences("metadata " + hex + "\n"), 6u) << output;
}

} // namespace

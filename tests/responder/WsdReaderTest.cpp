// SPDX-License-Identifier: Apache-2.0
// The datagram reader on probes shaped like those that Windows, video
// management software and 1.1 clients send (tests/responder/samples), and
// on everything it must refuse.
#include <KivWsd/WsdReader.h>

#include <KivTest/TemporaryDirectory.h>
#include <KivWsd/WsdLimits.h>
#include <KivWsd/WsdNamespaces.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using KivWsd::QualifiedName;
using KivWsd::WsdAction;
using KivWsd::WsdLimits;
using KivWsd::WsdMessage;
using KivWsd::WsdNamespaces;
using KivWsd::WsdReader;
using KivWsd::WsdVersion;

const std::string ProjectTypes = WsdNamespaces::ProjectTypes;

std::string Sample(const std::string& name)
{
    return KivTest::ReadFile(std::string(KIV_SOURCE_DIR) + "/tests/responder/samples/" + name);
}

// A 2005/04 envelope around \p body, with \p header added to the usual
// Action and MessageID.
std::string Envelope2005(const std::string& action, const std::string& body, const std::string& header = "")
{
    return "<s:Envelope xmlns:s=\"http://www.w3.org/2003/05/soap-envelope\" "
           "xmlns:a=\"http://schemas.xmlsoap.org/ws/2004/08/addressing\" "
           "xmlns:d=\"http://schemas.xmlsoap.org/ws/2005/04/discovery\"><s:Header>"
           "<a:Action>http://schemas.xmlsoap.org/ws/2005/04/discovery/" + action + "</a:Action>"
           "<a:MessageID>urn:uuid:11111111-2222-4333-8444-555555555555</a:MessageID>" + header +
           "</s:Header><s:Body>" + body + "</s:Body></s:Envelope>";
}

// The 2005/04 envelope of \p action around \p body with its first \p from
// (a namespace it declares) turned into \p to.
std::string Envelope2005With(const std::string& action, const std::string& body, const std::string& from,
                             const std::string& to)
{
    std::string datagram = Envelope2005(action, body);
    datagram.replace(datagram.find(from), from.size(), to);
    return datagram;
}

struct Outcome
{
    bool accepted;
    WsdMessage message;
    std::string error;
};

Outcome Read(const std::string& datagram)
{
    Outcome outcome;
    outcome.accepted = WsdReader::Read(datagram.data(), datagram.size(), outcome.message, outcome.error);
    return outcome;
}

std::string TypesProbe(std::size_t count)
{
    std::string types;
    for (std::size_t index = 0; index < count; ++index)
        types += (index ? " cpp:T" : "cpp:T") + std::to_string(index);
    return Envelope2005("Probe", "<d:Probe><d:Types xmlns:cpp=\"" + ProjectTypes + "\">" + types + "</d:Types></d:Probe>");
}

TEST(WsdReaderTest, ReadsWindowsStyleProbeOf2005)
{
    Outcome outcome = Read(Sample("windows-probe-2005.xml"));
    ASSERT_TRUE(outcome.accepted) << outcome.error;
    EXPECT_EQ(outcome.message.version, WsdVersion::Discovery2005);
    EXPECT_EQ(outcome.message.action, WsdAction::Probe);
    EXPECT_EQ(outcome.message.messageId, "urn:uuid:6a3f0e52-8d1b-4c7a-9e24-1b5f7c0d9a31");
    EXPECT_EQ(outcome.message.to, "urn:schemas-xmlsoap-org:ws:2005:04:discovery");
    ASSERT_EQ(outcome.message.types.size(), 1u);
    EXPECT_EQ(outcome.message.types[0], (QualifiedName{"http://schemas.xmlsoap.org/ws/2006/02/devprof", "Device"}));
    EXPECT_TRUE(outcome.message.scopes.empty());
}

TEST(WsdReaderTest, ResolvesTypePrefixDeclaredOnTheTypesElementOfAnOnvifStyleProbe)
{
    Outcome outcome = Read(Sample("onvif-probe-2005.xml"));
    ASSERT_TRUE(outcome.accepted) << outcome.error;
    EXPECT_EQ(outcome.message.version, WsdVersion::Discovery2005);
    EXPECT_EQ(outcome.message.messageId, "uuid:0f3c6e1a-2b4d-4e8f-a1c3-5d7e9f0b2c4d");
    ASSERT_EQ(outcome.message.types.size(), 1u);
    EXPECT_EQ(outcome.message.types[0],
              (QualifiedName{"http://www.onvif.org/ver10/network/wsdl", "NetworkVideoTransmitter"}));
}

TEST(WsdReaderTest, ReadsProbeOf2009WithTypeScopeAndMatchBy)
{
    Outcome outcome = Read(Sample("probe-2009.xml"));
    ASSERT_TRUE(outcome.accepted) << outcome.error;
    EXPECT_EQ(outcome.message.version, WsdVersion::Discovery2009);
    EXPECT_EQ(outcome.message.action, WsdAction::Probe);
    ASSERT_EQ(outcome.message.types.size(), 1u);
    EXPECT_EQ(outcome.message.types[0], (QualifiedName{ProjectTypes, "Management"}));
    EXPECT_EQ(outcome.message.scopes, std::vector<std::string>{"http://standards.kivotrel.example/2011/videoprocessor"});
    EXPECT_EQ(outcome.message.matchBy, "http://docs.oasis-open.org/ws-dd/ns/discovery/2009/01/rfc3986");
}

TEST(WsdReaderTest, ReadsProbeWithoutTypesAsEmptyLists)
{
    Outcome outcome = Read(Sample("probe-without-types-2005.xml"));
    ASSERT_TRUE(outcome.accepted) << outcome.error;
    EXPECT_EQ(outcome.message.action, WsdAction::Probe);
    EXPECT_TRUE(outcome.message.types.empty());
    EXPECT_TRUE(outcome.message.scopes.empty());
    EXPECT_TRUE(outcome.message.matchBy.empty());
}

TEST(WsdReaderTest, ReadsResolveOf2009WithItsEndpointAddress)
{
    Outcome outcome = Read(Sample("resolve-2009.xml"));
    ASSERT_TRUE(outcome.accepted) << outcome.error;
    EXPECT_EQ(outcome.message.version, WsdVersion::Discovery2009);
    EXPECT_EQ(outcome.message.action, WsdAction::Resolve);
    EXPECT_EQ(outcome.message.endpointAddress, "urn:uuid:7d2f4a6c-8e0b-4c1d-9f3a-5b7d9e1f3a5c");
}

TEST(WsdReaderTest, ResolvesUnprefixedTypeAgainstTheDefaultNamespace)
{
    Outcome outcome = Read(Envelope2005("Probe", "<d:Probe><d:Types xmlns=\"" + ProjectTypes +
                                                     "\">Management</d:Types></d:Probe>"));
    ASSERT_TRUE(outcome.accepted) << outcome.error;
    ASSERT_EQ(outcome.message.types.size(), 1u);
    EXPECT_EQ(outcome.message.types[0], (QualifiedName{ProjectTypes, "Management"}));
}

TEST(WsdReaderTest, ResolvesTypePrefixAgainstTheInnermostDeclaration)
{
    Outcome outcome = Read(Envelope2005("Probe", "<d:Probe xmlns:x=\"urn:outer\"><d:Types xmlns:x=\"urn:inner\">"
                                                 "x:A</d:Types></d:Probe>"));
    ASSERT_TRUE(outcome.accepted) << outcome.error;
    ASSERT_EQ(outcome.message.types.size(), 1u);
    EXPECT_EQ(outcome.message.types[0], (QualifiedName{"urn:inner", "A"}));
}

TEST(WsdReaderTest, ForgetsTypePrefixDeclaredOnAnEarlierSibling)
{
    Outcome outcome = Read(Envelope2005("Probe", "<d:Probe><x:Other xmlns:x=\"urn:gone\"/><d:Types>x:A</d:Types>"
                                                 "</d:Probe>"));
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "not a WS-Discovery message: type prefix 'x' is not declared");
}

TEST(WsdReaderTest, ReadsAppSequenceAttributes)
{
    Outcome outcome = Read(Envelope2005("Bye", "<d:Bye><a:EndpointReference><a:Address>urn:uuid:1</a:Address>"
                                               "</a:EndpointReference></d:Bye>",
                                        "<d:AppSequence InstanceId=\"7\" MessageNumber=\"18446744073709551615\"/>"));
    ASSERT_TRUE(outcome.accepted) << outcome.error;
    EXPECT_TRUE(outcome.message.hasAppSequence);
    EXPECT_EQ(outcome.message.appSequence.instanceId, 7u);
    EXPECT_EQ(outcome.message.appSequence.messageNumber, 18446744073709551615u);
    ASSERT_EQ(outcome.message.targets.size(), 1u);
    EXPECT_EQ(outcome.message.targets[0].endpointAddress, "urn:uuid:1");
}

TEST(WsdReaderTest, RefusesAppSequenceWithANumberThatIsNoNumber)
{
    Outcome outcome = Read(Envelope2005("Bye", "<d:Bye><a:EndpointReference><a:Address>urn:uuid:1</a:Address>"
                                               "</a:EndpointReference></d:Bye>",
                                        "<d:AppSequence InstanceId=\"-7\" MessageNumber=\"1\"/>"));
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "not a WS-Discovery message: AppSequence without a valid InstanceId and MessageNumber");
}

TEST(WsdReaderTest, RefusesDocumentTypeDeclaration)
{
    Outcome outcome = Read("<!DOCTYPE s:Envelope>" + Sample("windows-probe-2005.xml").substr(38));
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "document type declarations are refused");
}

TEST(WsdReaderTest, RefusesBillionLaughsBeforeExpandingAnything)
{
    std::string datagram = "<?xml version=\"1.0\"?><!DOCTYPE lolz [<!ENTITY lol \"lol\">"
                           "<!ENTITY lol1 \"&lol;&lol;&lol;&lol;&lol;&lol;&lol;&lol;&lol;&lol;\">"
                           "<!ENTITY lol2 \"&lol1;&lol1;&lol1;&lol1;&lol1;&lol1;&lol1;&lol1;&lol1;&lol1;\">"
                           "<!ENTITY lol3 \"&lol2;&lol2;&lol2;&lol2;&lol2;&lol2;&lol2;&lol2;&lol2;&lol2;\">]>" +
                           Envelope2005("Probe", "<d:Probe><d:Scopes>&lol3;</d:Scopes></d:Probe>");
    Outcome outcome = Read(datagram);
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "document type declarations are refused");
}

TEST(WsdReaderTest, RefusesEntityThatIsNotPredefined)
{
    Outcome outcome = Read(Envelope2005("Probe", "<d:Probe><d:Scopes>&nbsp;</d:Scopes></d:Probe>"));
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error.rfind("malformed XML at 1:", 0), 0u) << outcome.error;
    EXPECT_NE(outcome.error.find("undefined entity"), std::string::npos) << outcome.error;
}

TEST(WsdReaderTest, ExpandsPredefinedEntitiesAndCharacterReferences)
{
    Outcome outcome = Read(Envelope2005("Probe", "<d:Probe><d:Scopes>urn:a&amp;b&#x3D;c</d:Scopes></d:Probe>"));
    ASSERT_TRUE(outcome.accepted) << outcome.error;
    EXPECT_EQ(outcome.message.scopes, std::vector<std::string>{"urn:a&b=c"});
}

TEST(WsdReaderTest, RefusesDatagramAboveTheIncomingLimitWithoutReadingIt)
{
    std::string datagram(WsdLimits::MaximumIncomingDatagram + 1, '<');
    Outcome outcome = Read(datagram);
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "datagram of 4097 bytes is above the limit of 4096 bytes");
}

TEST(WsdReaderTest, ReadsDatagramOfExactlyTheIncomingLimit)
{
    std::string datagram = Sample("windows-probe-2005.xml");
    datagram += std::string(WsdLimits::MaximumIncomingDatagram - datagram.size(), ' ');
    ASSERT_EQ(datagram.size(), WsdLimits::MaximumIncomingDatagram);
    Outcome outcome = Read(datagram);
    EXPECT_TRUE(outcome.accepted) << outcome.error;
}

TEST(WsdReaderTest, ReadsBiggerDatagramWhenTheCallerGivesABiggerLimit)
{
    std::string datagram = Sample("windows-probe-2005.xml");
    datagram += std::string(6000, ' ');
    WsdMessage message;
    std::string error;
    EXPECT_FALSE(WsdReader::Read(datagram.data(), datagram.size(), message, error));
    EXPECT_TRUE(WsdReader::Read(datagram.data(), datagram.size(), WsdLimits::MaximumOutgoingDatagram, message, error))
        << error;
}

TEST(WsdReaderTest, RefusesMalformedXmlWithItsPosition)
{
    Outcome outcome = Read("<s:Envelope xmlns:s=\"http://www.w3.org/2003/05/soap-envelope\"><s:Header></s:Body>");
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "malformed XML at 1:75: mismatched tag");
}

TEST(WsdReaderTest, RefusesTruncatedDatagram)
{
    std::string datagram = Sample("windows-probe-2005.xml");
    Outcome outcome = Read(datagram.substr(0, datagram.size() - 10));
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error.rfind("malformed XML at ", 0), 0u) << outcome.error;
}

TEST(WsdReaderTest, RefusesEmptyDatagram)
{
    Outcome outcome = Read("");
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error.rfind("malformed XML at ", 0), 0u) << outcome.error;
}

TEST(WsdReaderTest, RefusesSoap11Envelope)
{
    Outcome outcome = Read(Envelope2005With("Probe", "<d:Probe/>", "http://www.w3.org/2003/05/soap-envelope",
                                            "http://schemas.xmlsoap.org/soap/envelope/"));
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "not a WS-Discovery message: the root element is not a SOAP 1.2 Envelope");
}

TEST(WsdReaderTest, RefusesMessageThatMixesTheNamespacesOfBothVersions)
{
    Outcome outcome = Read(Envelope2005With("Probe", "<d:Probe/>", "http://schemas.xmlsoap.org/ws/2004/08/addressing",
                                            "http://www.w3.org/2005/08/addressing"));
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "not a WS-Discovery message: it mixes the namespaces of both versions");
}

TEST(WsdReaderTest, RefusesActionThatDoesNotNameTheBodyElement)
{
    Outcome outcome = Read(Envelope2005("Resolve", "<d:Probe/>"));
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "not a WS-Discovery message: Action 'http://schemas.xmlsoap.org/ws/2005/04/discovery/"
                             "Resolve' does not name the body element Probe");
}

TEST(WsdReaderTest, QuotesAReceivedTextInAnErrorOnOneShortLine)
{
    std::string datagram = Envelope2005("Probe", "<d:Probe/>");
    datagram.insert(datagram.find("</a:Action>"), "\nx" + std::string(200, 'y'));
    Outcome outcome = Read(datagram);
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error.find('\n'), std::string::npos) << outcome.error;
    EXPECT_LT(outcome.error.size(), 200u) << outcome.error;
}

TEST(WsdReaderTest, RefusesBodyWithoutADiscoveryMessage)
{
    Outcome outcome = Read(Envelope2005("Probe", ""));
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "not a WS-Discovery message: the Body holds no message");
}

TEST(WsdReaderTest, RefusesTwoMessagesInOneBody)
{
    Outcome outcome = Read(Envelope2005("Probe", "<d:Probe/><d:Probe/>"));
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "not a WS-Discovery message: more than one message in the Body");
}

TEST(WsdReaderTest, RefusesMessageWithoutMessageId)
{
    std::string datagram = Envelope2005("Probe", "<d:Probe/>");
    std::size_t start = datagram.find("<a:MessageID>");
    datagram.erase(start, datagram.find("</s:Header>") - start);
    Outcome outcome = Read(datagram);
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "not a WS-Discovery message: no MessageID header");
}

TEST(WsdReaderTest, RefusesMessageIdLongerThanTheLimit)
{
    std::string datagram = Envelope2005("Probe", "<d:Probe/>");
    datagram.insert(datagram.find("</a:MessageID>"), std::string(WsdLimits::MaximumUriLength, 'x'));
    Outcome outcome = Read(datagram);
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "not a WS-Discovery message: MessageID longer than 1024 bytes");
}

TEST(WsdReaderTest, ReadsProbeWithAsManyTypesAsTheLimit)
{
    Outcome outcome = Read(TypesProbe(WsdLimits::MaximumListEntries));
    ASSERT_TRUE(outcome.accepted) << outcome.error;
    EXPECT_EQ(outcome.message.types.size(), WsdLimits::MaximumListEntries);
}

TEST(WsdReaderTest, RefusesProbeWithMoreTypesThanTheLimit)
{
    Outcome outcome = Read(TypesProbe(WsdLimits::MaximumListEntries + 1));
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "not a WS-Discovery message: more than 32 types");
}

TEST(WsdReaderTest, RefusesTypesSpreadOverSeveralElementsBeyondTheLimit)
{
    std::string types;
    for (int index = 0; index < 20; ++index)
        types += "cpp:A" + std::to_string(index) + " ";
    Outcome outcome = Read(Envelope2005("Probe", "<d:Probe xmlns:cpp=\"urn:x\"><d:Types>" + types + "</d:Types><d:Types>" +
                                                     types + "</d:Types></d:Probe>"));
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "not a WS-Discovery message: more than 32 types");
}

TEST(WsdReaderTest, RefusesProbeWithMoreScopesThanTheLimit)
{
    std::string scopes;
    for (std::size_t index = 0; index <= WsdLimits::MaximumListEntries; ++index)
        scopes += "urn:s" + std::to_string(index) + " ";
    Outcome outcome = Read(Envelope2005("Probe", "<d:Probe><d:Scopes>" + scopes + "</d:Scopes></d:Probe>"));
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "not a WS-Discovery message: more than 32 scopes");
}

TEST(WsdReaderTest, RefusesTypeWithUndeclaredPrefix)
{
    Outcome outcome = Read(Envelope2005("Probe", "<d:Probe><d:Types>dn:NetworkVideoTransmitter</d:Types></d:Probe>"));
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "not a WS-Discovery message: type prefix 'dn' is not declared");
}

TEST(WsdReaderTest, RefusesElementInsideATextField)
{
    Outcome outcome = Read(Envelope2005("Probe", "<d:Probe><d:Scopes>urn:a<b/></d:Scopes></d:Probe>"));
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "not a WS-Discovery message: element b inside a text field");
}

TEST(WsdReaderTest, RefusesNestingDeeperThanTheLimit)
{
    std::string open, close;
    for (std::size_t level = 0; level < WsdLimits::MaximumDepth; ++level) {
        open += "<x>";
        close += "</x>";
    }
    Outcome outcome = Read(Envelope2005("Probe", "<d:Probe>" + open + close + "</d:Probe>"));
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "not a WS-Discovery message: elements nested deeper than 32");
}

TEST(WsdReaderTest, RefusesHelloWithoutEndpointAddress)
{
    Outcome outcome = Read(Envelope2005("Hello", "<d:Hello><d:MetadataVersion>1</d:MetadataVersion></d:Hello>"));
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "not a WS-Discovery message: a target without an endpoint address");
}

TEST(WsdReaderTest, RefusesMetadataVersionBeyond32Bits)
{
    Outcome outcome = Read(Envelope2005("Hello", "<d:Hello><a:EndpointReference><a:Address>urn:uuid:1</a:Address>"
                                                 "</a:EndpointReference><d:MetadataVersion>4294967296"
                                                 "</d:MetadataVersion></d:Hello>"));
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "not a WS-Discovery message: MetadataVersion is not an unsigned 32-bit number");
}

TEST(WsdReaderTest, RefusesProbeMatchesWithoutRelatesTo)
{
    Outcome outcome = Read(Envelope2005("ProbeMatches", "<d:ProbeMatches/>"));
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "not a WS-Discovery message: an answer without a RelatesTo header");
}

TEST(WsdReaderTest, RefusesProbeMatchesWithMoreTargetsThanTheLimit)
{
    std::string matches;
    for (std::size_t index = 0; index <= WsdLimits::MaximumTargets; ++index)
        matches += "<d:ProbeMatch><a:EndpointReference><a:Address>urn:uuid:" + std::to_string(index) +
                   "</a:Address></a:EndpointReference></d:ProbeMatch>";
    Outcome outcome = Read(Envelope2005("ProbeMatches", "<d:ProbeMatches>" + matches + "</d:ProbeMatches>",
                                        "<a:RelatesTo>urn:uuid:9</a:RelatesTo>"));
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.error, "not a WS-Discovery message: more than 16 targets");
}

TEST(WsdReaderTest, SkipsUnknownHeaderBlocksAndExtensionElements)
{
    Outcome outcome = Read(Envelope2005("Hello",
                                        "<d:Hello><a:EndpointReference><a:Address>urn:uuid:1</a:Address>"
                                        "<a:ReferenceParameters><x:P xmlns:x=\"urn:x\">v</x:P></a:ReferenceParameters>"
                                        "</a:EndpointReference><x:Extra xmlns:x=\"urn:x\"><x:More/></x:Extra>"
                                        "<d:MetadataVersion>3</d:MetadataVersion></d:Hello>",
                                        "<x:Block xmlns:x=\"urn:x\"><x:Inner>1</x:Inner></x:Block>"));
    ASSERT_TRUE(outcome.accepted) << outcome.error;
    ASSERT_EQ(outcome.message.targets.size(), 1u);
    EXPECT_EQ(outcome.message.targets[0].endpointAddress, "urn:uuid:1");
    EXPECT_EQ(outcome.message.targets[0].metadataVersion, 3u);
    EXPECT_FALSE(outcome.message.targets[0].hasMetadata);
}

TEST(WsdReaderTest, RefusesNullDataOfNonZeroSizeAboveTheLimitByItsSizeAlone)
{
    WsdMessage message;
    std::string error;
    EXPECT_FALSE(WsdReader::Read(nullptr, 1u << 20, message, error));
    EXPECT_EQ(error, "datagram of 1048576 bytes is above the limit of 4096 bytes");
}

} // namespace

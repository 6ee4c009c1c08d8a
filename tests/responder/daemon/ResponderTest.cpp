// SPDX-License-Identifier: Apache-2.0
#include <KivResponder/Responder.h>

#include <KivPlr/core/UuidGenerator.h>
#include <KivTest/TemporaryDirectory.h>
#include <KivWsd/WsdLimits.h>
#include <KivWsd/WsdReader.h>
#include <KivWsd/WsdWriter.h>

#include <gtest/gtest.h>

#include <memory>
#include <net/if.h>
#include <string>
#include <unistd.h>
#include <vector>

using KivResponder::Datagram;
using KivResponder::IDatagramSender;
using KivResponder::InterfaceTable;
using KivResponder::IpAddress;
using KivResponder::Responder;
using KivResponder::ResponderState;
using KivTest::TemporaryDirectory;
using KivTest::WriteFile;
using KivWsd::QualifiedName;
using KivWsd::WsdAction;
using KivWsd::WsdMessage;
using KivWsd::WsdVersion;

namespace {

const std::uint64_t Second = 1000ull * 1000 * 1000;
const char ProjectNamespace[] = "http://standards.kivotrel.example/2011/videoprocessor";
const char Scope[] = "http://standards.kivotrel.example/2011/videoprocessor/trx";

struct Sent
{
    IpAddress destination;
    std::uint16_t port = 0;
    int interfaceIndex = 0;
    IpAddress source;
    WsdMessage message;
};

class RecordingSender : public IDatagramSender
{
public:
    bool Send(const IpAddress& destination, std::uint16_t port, int interfaceIndex, const IpAddress& source,
              const std::string& data) override
    {
        Sent sent{destination, port, interfaceIndex, source, WsdMessage()};
        std::string error;
        EXPECT_TRUE(KivWsd::WsdReader::Read(data.data(), data.size(), KivWsd::WsdLimits::MaximumOutgoingDatagram,
                                            sent.message, error))
            << error;
        datagrams.push_back(sent);
        return true;
    }
    std::vector<Sent> datagrams;
};

std::string Description(const std::string& type, std::uint16_t port, const std::string& metadata)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<service name=\"Management\">\n  <type>" + type +
           "</type>\n  <scope>" + Scope + "</scope>\n  <port>" + std::to_string(port) + "</port>\n  <metadata>" +
           metadata + "</metadata>\n</service>\n";
}

class ResponderTest : public ::testing::Test
{
protected:
    ResponderTest()
    {
        table.SetLink(1, "lo", IFF_UP | IFF_LOOPBACK);
        table.AddAddress(1, {IpAddress::FromText("127.0.0.1"), 8});
        table.SetLink(2, "eth0", IFF_UP | IFF_MULTICAST);
        table.AddAddress(2, {IpAddress::FromText("192.0.2.2"), 24});
        table.AddAddress(2, {IpAddress::FromText("fe80::2"), 64});
        WriteDescription("cpp:Management", 8080, "&lt;cpp:Config/&gt;");
        Restart();
    }

    void WriteDescription(const std::string& type, std::uint16_t port, const std::string& metadata)
    {
        ASSERT_TRUE(WriteFile(descriptions.Path() + "/Management.xml", Description(type, port, metadata)));
    }

    /// A new responder over the same directories, as after a restart; its
    /// start-up Hellos are sent and forgotten.
    void Restart()
    {
        responder.reset();
        state.reset(new ResponderState(stateDirectory.Path(), new KivPlr::UuidGenerator));
        std::vector<std::string> warnings;
        state->Load(warnings);
        std::string error;
        ASSERT_TRUE(state->Start(error)) << error;
        responder.reset(new Responder(*state, table, sender,
                                      [this](std::uint32_t, const std::string& line) { log.push_back(line); }, 7));
        responder->Rescan(descriptions.Path(), now, true);
        Flush();
    }

    /// Sends everything due within the longest delay and moves the clock there.
    void Flush()
    {
        now += Responder::MaximumDelayNanoseconds;
        responder->SendDue(now);
        startup = sender.datagrams;
        sender.datagrams.clear();
    }

    Datagram Probe(WsdVersion version, const std::string& messageId, const std::string& source,
                   const std::string& destination, const std::vector<QualifiedName>& types = {})
    {
        Datagram datagram;
        datagram.source = IpAddress::FromText(source);
        datagram.sourcePort = 51000;
        datagram.destination = IpAddress::FromText(destination);
        datagram.interfaceIndex = 2;
        datagram.data = KivWsd::WsdWriter::Probe(version, messageId, types, {}, "");
        return datagram;
    }

    std::string EndpointAddress() const { return responder->Targets().at("Management").endpointAddress; }

    TemporaryDirectory descriptions;
    TemporaryDirectory stateDirectory;
    InterfaceTable table;
    RecordingSender sender;
    std::vector<std::string> log;
    std::unique_ptr<ResponderState> state;
    std::unique_ptr<Responder> responder;
    std::vector<Sent> startup;
    std::uint64_t now = 1000 * Second;
};

} // namespace

TEST_F(ResponderTest, StartAnnouncesHelloInBothVersionsOnBothFamiliesWithinTheDelay)
{
    ASSERT_EQ(startup.size(), 4u);
    int v4 = 0;
    for (const Sent& sent : startup) {
        EXPECT_EQ(sent.message.action, WsdAction::Hello);
        EXPECT_EQ(sent.interfaceIndex, 2);
        EXPECT_EQ(sent.port, 3702);
        EXPECT_TRUE(sent.destination.IsMulticast());
        v4 += sent.destination == IpAddress::FromText("239.255.255.250");
        ASSERT_EQ(sent.message.targets.size(), 1u);
        EXPECT_EQ(sent.message.targets[0].xaddrs,
                  (std::vector<std::string>{"http://192.0.2.2:8080/", "http://[fe80::2]:8080/"}));
        EXPECT_EQ(sent.message.targets[0].metadataVersion, 1u);
        EXPECT_EQ(sent.message.targets[0].metadata, "<cpp:Config/>");
    }
    EXPECT_EQ(v4, 2);
    EXPECT_EQ(startup[0].message.version == WsdVersion::Discovery2005, startup[1].message.version != WsdVersion::Discovery2005);
}

TEST_F(ResponderTest, MulticastProbeIsAnsweredToTheSenderAfterARandomDelay)
{
    responder->HandleDatagram(Probe(WsdVersion::Discovery2005, "urn:uuid:1", "192.0.2.20", "239.255.255.250"), now);
    EXPECT_GE(responder->NextDue(), now);
    EXPECT_LE(responder->NextDue(), now + Responder::MaximumDelayNanoseconds);
    responder->SendDue(now + Responder::MaximumDelayNanoseconds);
    ASSERT_EQ(sender.datagrams.size(), 1u);
    const Sent& answer = sender.datagrams[0];
    EXPECT_EQ(answer.destination.Text(), "192.0.2.20");
    EXPECT_EQ(answer.port, 51000);
    EXPECT_EQ(answer.interfaceIndex, 2);
    EXPECT_TRUE(answer.source.IsEmpty());
    EXPECT_EQ(answer.message.action, WsdAction::ProbeMatches);
    EXPECT_EQ(answer.message.relatesTo, "urn:uuid:1");
    ASSERT_EQ(answer.message.targets.size(), 1u);
    EXPECT_EQ(answer.message.targets[0].endpointAddress, EndpointAddress());
    EXPECT_EQ(answer.message.targets[0].types, (std::vector<QualifiedName>{{ProjectNamespace, "Management"}}));
    EXPECT_EQ(answer.message.targets[0].scopes, std::vector<std::string>{Scope});
}

TEST_F(ResponderTest, UnicastProbeIsAnsweredAtOnceFromTheAddressItWasSentTo)
{
    responder->HandleDatagram(Probe(WsdVersion::Discovery2005, "urn:uuid:1", "192.0.2.20", "192.0.2.2"), now);
    EXPECT_EQ(responder->NextDue(), now);
    responder->SendDue(now);
    ASSERT_EQ(sender.datagrams.size(), 1u);
    EXPECT_EQ(sender.datagrams[0].source.Text(), "192.0.2.2");
}

TEST_F(ResponderTest, ProbeIsAnsweredInItsOwnVersion)
{
    responder->HandleDatagram(Probe(WsdVersion::Discovery2009, "urn:uuid:1", "fe80::99", "ff02::c"), now);
    responder->SendDue(now + Responder::MaximumDelayNanoseconds);
    ASSERT_EQ(sender.datagrams.size(), 1u);
    EXPECT_EQ(sender.datagrams[0].message.version, WsdVersion::Discovery2009);
    EXPECT_EQ(sender.datagrams[0].destination.Text(), "fe80::99");
}

TEST_F(ResponderTest, OffLinkProbeGetsNoAnswerAndIsCounted)
{
    responder->HandleDatagram(Probe(WsdVersion::Discovery2005, "urn:uuid:1", "203.0.113.5", "192.0.2.2"), now);
    responder->SendDue(now + Responder::MaximumDelayNanoseconds);
    EXPECT_TRUE(sender.datagrams.empty());
    EXPECT_EQ(responder->Drops().offLink, 0u) << "reported and reset";
    ASSERT_FALSE(log.empty());
    EXPECT_NE(log.back().find("1 from off-link sources (last 203.0.113.5 on eth0)"), std::string::npos) << log.back();
}

TEST_F(ResponderTest, DropReportsComeAtMostOncePerInterval)
{
    responder->HandleDatagram(Probe(WsdVersion::Discovery2005, "urn:uuid:1", "203.0.113.5", "192.0.2.2"), now);
    responder->SendDue(now);
    std::size_t lines = log.size();
    responder->HandleDatagram(Probe(WsdVersion::Discovery2005, "urn:uuid:2", "203.0.113.5", "192.0.2.2"), now);
    responder->SendDue(now + Second);
    EXPECT_EQ(log.size(), lines);
    EXPECT_EQ(responder->NextDue(), now + Responder::DropReportIntervalNanoseconds);
    responder->SendDue(now + Responder::DropReportIntervalNanoseconds);
    EXPECT_EQ(log.size(), lines + 1);
}

TEST_F(ResponderTest, ARepeatedMessageIdIsAnsweredOnce)
{
    for (int copy = 0; copy < 3; ++copy)
        responder->HandleDatagram(Probe(WsdVersion::Discovery2005, "urn:uuid:1", "192.0.2.20", "192.0.2.2"), now);
    responder->SendDue(now);
    EXPECT_EQ(sender.datagrams.size(), 1u);
}

TEST_F(ResponderTest, ProbeForAnotherTypeGetsNoAnswer)
{
    responder->HandleDatagram(Probe(WsdVersion::Discovery2005, "urn:uuid:1", "192.0.2.20", "192.0.2.2",
                                    {{ProjectNamespace, "Printer"}}),
                              now);
    responder->HandleDatagram(Probe(WsdVersion::Discovery2005, "urn:uuid:2", "192.0.2.20", "192.0.2.2",
                                    {{ProjectNamespace, "Management"}}),
                              now);
    responder->SendDue(now);
    ASSERT_EQ(sender.datagrams.size(), 1u);
    EXPECT_EQ(sender.datagrams[0].message.relatesTo, "urn:uuid:2");
}

TEST_F(ResponderTest, AnswersToOneSourceStopAtItsLimit)
{
    for (int probe = 0; probe < 10; ++probe) {
        responder->HandleDatagram(
            Probe(WsdVersion::Discovery2005, "urn:uuid:" + std::to_string(probe), "192.0.2.20", "192.0.2.2"), now);
    }
    responder->SendDue(now);
    EXPECT_EQ(sender.datagrams.size(), KivWsd::WsdLimits::PerSourceBurst);
}

TEST_F(ResponderTest, AnswersWaitingAreBoundedWhateverArrives)
{
    for (int probe = 0; probe < 1000; ++probe) {
        std::string source = "192.0.2." + std::to_string(10 + probe % 200);
        responder->HandleDatagram(
            Probe(WsdVersion::Discovery2005, "urn:uuid:" + std::to_string(probe), source, "239.255.255.250"),
            now + static_cast<std::uint64_t>(probe) * Second / 100);
        EXPECT_LE(responder->PendingAnswers(), Responder::MaximumPendingAnswers);
    }
}

TEST_F(ResponderTest, ResolveForOurEndpointIsAnswered)
{
    Datagram datagram = Probe(WsdVersion::Discovery2009, "urn:uuid:1", "192.0.2.20", "192.0.2.2");
    datagram.data = KivWsd::WsdWriter::Resolve(WsdVersion::Discovery2009, "urn:uuid:1", EndpointAddress());
    responder->HandleDatagram(datagram, now);
    datagram.data = KivWsd::WsdWriter::Resolve(WsdVersion::Discovery2009, "urn:uuid:2",
                                               "urn:uuid:00000000-0000-4000-8000-000000000000");
    responder->HandleDatagram(datagram, now);
    responder->SendDue(now);
    ASSERT_EQ(sender.datagrams.size(), 1u);
    EXPECT_EQ(sender.datagrams[0].message.action, WsdAction::ResolveMatches);
    EXPECT_EQ(sender.datagrams[0].message.relatesTo, "urn:uuid:1");
}

TEST_F(ResponderTest, AChangedDescriptionRaisesTheVersionAndSaysHello)
{
    WriteDescription("cpp:Management", 8081, "&lt;cpp:Config/&gt;");
    responder->Refresh(descriptions.Path(), "Management.xml", now);
    responder->SendDue(now + Responder::MaximumDelayNanoseconds);
    ASSERT_EQ(sender.datagrams.size(), 4u);
    EXPECT_EQ(sender.datagrams[0].message.action, WsdAction::Hello);
    EXPECT_EQ(sender.datagrams[0].message.targets[0].metadataVersion, 2u);
    EXPECT_EQ(sender.datagrams[0].message.targets[0].xaddrs[0], "http://192.0.2.2:8081/");
    EXPECT_EQ(state->Find("Management")->metadataVersion, 2u);
}

TEST_F(ResponderTest, AnUnchangedDescriptionSaysNothing)
{
    responder->Refresh(descriptions.Path(), "Management.xml", now);
    responder->SendDue(now + Responder::MaximumDelayNanoseconds);
    EXPECT_TRUE(sender.datagrams.empty());
}

TEST_F(ResponderTest, ARemovedDescriptionSaysByeAndIsNoLongerAnswered)
{
    ASSERT_EQ(::unlink((descriptions.Path() + "/Management.xml").c_str()), 0);
    responder->Refresh(descriptions.Path(), "Management.xml", now);
    ASSERT_EQ(sender.datagrams.size(), 4u);
    EXPECT_EQ(sender.datagrams[0].message.action, WsdAction::Bye);
    sender.datagrams.clear();
    responder->HandleDatagram(Probe(WsdVersion::Discovery2005, "urn:uuid:1", "192.0.2.20", "192.0.2.2"), now);
    responder->SendDue(now);
    EXPECT_TRUE(sender.datagrams.empty());
}

TEST_F(ResponderTest, AnUnreadableDescriptionKeepsTheLastGoodTarget)
{
    ASSERT_TRUE(WriteFile(descriptions.Path() + "/Management.xml", "<service name=\"Management\"><type>"));
    responder->Refresh(descriptions.Path(), "Management.xml", now);
    EXPECT_EQ(responder->Targets().count("Management"), 1u);
    ASSERT_FALSE(log.empty());
    EXPECT_NE(log.back().find("its last good content stays served"), std::string::npos) << log.back();
    responder->HandleDatagram(Probe(WsdVersion::Discovery2005, "urn:uuid:1", "192.0.2.20", "192.0.2.2"), now);
    responder->SendDue(now);
    EXPECT_EQ(sender.datagrams.size(), 1u);
}

TEST_F(ResponderTest, ByeAllSaysByeForEveryTarget)
{
    responder->ByeAll();
    ASSERT_EQ(sender.datagrams.size(), 4u);
    for (const Sent& sent : sender.datagrams) {
        EXPECT_EQ(sent.message.action, WsdAction::Bye);
        EXPECT_EQ(sent.message.targets[0].endpointAddress, EndpointAddress());
    }
}

TEST_F(ResponderTest, MessageNumbersRiseWithEveryMessageUnderTheStatesInstance)
{
    responder->ByeAll();
    std::uint64_t expected = startup.size();
    for (const Sent& sent : sender.datagrams) {
        EXPECT_EQ(sent.message.appSequence.instanceId, state->InstanceId());
        EXPECT_EQ(sent.message.appSequence.messageNumber, ++expected);
    }
}

TEST_F(ResponderTest, EndpointAndVersionStayAcrossARestartAndTheInstanceRises)
{
    std::string endpoint = EndpointAddress();
    std::uint64_t instance = state->InstanceId();
    Restart();
    EXPECT_EQ(EndpointAddress(), endpoint);
    EXPECT_EQ(state->InstanceId(), instance + 1);
    ASSERT_FALSE(startup.empty());
    EXPECT_EQ(startup[0].message.targets[0].metadataVersion, 1u);
    EXPECT_EQ(startup[0].message.appSequence.messageNumber, 1u);
}

TEST_F(ResponderTest, AChangeWhileStoppedRaisesTheVersionAtTheNextStart)
{
    WriteDescription("cpp:Management", 8080, "&lt;cpp:Config&gt;renamed&lt;/cpp:Config&gt;");
    Restart();
    ASSERT_FALSE(startup.empty());
    EXPECT_EQ(startup[0].message.targets[0].metadataVersion, 2u);
}

TEST_F(ResponderTest, ADatagramOnAnInterfaceNotServedIsIgnored)
{
    table.RestrictTo({"eth1"});
    responder->HandleDatagram(Probe(WsdVersion::Discovery2005, "urn:uuid:1", "192.0.2.20", "192.0.2.2"), now);
    responder->SendDue(now);
    EXPECT_TRUE(sender.datagrams.empty());
}

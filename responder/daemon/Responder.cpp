// SPDX-License-Identifier: Apache-2.0
#include <KivResponder/Responder.h>

#include <KivResponder/DescriptionWatcher.h>
#include <KivPlr/io/ILog.h>
#include <KivWsd/DescriptionTarget.h>
#include <KivWsd/ProbeMatcher.h>
#include <KivWsd/WsdLimits.h>
#include <KivWsd/WsdReader.h>
#include <KivWsd/WsdWriter.h>

#include <algorithm>
#include <cerrno>
#include <set>
#include <sys/stat.h>
#include <utility>

using KivPlr::LogLevelError;
using KivPlr::LogLevelInformation;
using KivPlr::LogLevelWarning;
using KivWsd::TargetService;
using KivWsd::WsdAction;
using KivWsd::WsdLimits;
using KivWsd::WsdVersion;
using KivWsd::WsdWriter;

namespace KivResponder {

namespace {

const WsdVersion BothVersions[] = {WsdVersion::Discovery2005, WsdVersion::Discovery2009};

std::string DescriptionName(const std::string& fileName)
{
    return fileName.substr(0, fileName.size() - 4);
}

/// FNV-1a over length-prefixed fields, so that no two different field lists
/// give the same byte stream.
class FingerprintHash
{
public:
    void Add(const std::string& field)
    {
        std::string length = std::to_string(field.size()) + ":";
        Bytes(length);
        Bytes(field);
    }
    std::string Text() const
    {
        static const char digits[] = "0123456789abcdef";
        std::string text;
        for (int shift = 60; shift >= 0; shift -= 4)
            text += digits[(value >> shift) & 0x0f];
        return text;
    }

private:
    void Bytes(const std::string& bytes)
    {
        for (unsigned char byte : bytes) {
            value ^= byte;
            value *= 0x100000001b3ull;
        }
    }
    std::uint64_t value = 0xcbf29ce484222325ull;
};

} // namespace

Responder::Responder(ResponderState& responderState, const InterfaceTable& interfaceTable, IDatagramSender& datagramSender,
                     LogFunction logFunction, std::uint64_t seed)
    : state(responderState), interfaces(interfaceTable), sender(datagramSender), log(std::move(logFunction)),
      random(seed)
{
}

std::string Responder::Fingerprint(const TargetService& target, std::uint16_t port)
{
    FingerprintHash hash;
    hash.Add("types " + std::to_string(target.types.size()));
    for (const auto& type : target.types) {
        hash.Add(type.namespaceUri);
        hash.Add(type.localName);
    }
    hash.Add("scopes " + std::to_string(target.scopes.size()));
    for (const auto& scope : target.scopes)
        hash.Add(scope);
    hash.Add("port " + std::to_string(port));
    hash.Add(target.hasMetadata ? "metadata" : "no metadata");
    hash.Add(target.metadata);
    return hash.Text();
}

void Responder::Rescan(const std::string& directory, std::uint64_t now, bool announceAll)
{
    std::vector<std::string> files = DescriptionWatcher::List(directory);
    std::set<std::string> present;
    for (const std::string& file : files)
        present.insert(DescriptionName(file));
    std::vector<std::string> gone;
    for (const auto& target : targets) {
        if (present.count(target.first) == 0)
            gone.push_back(target.first);
    }
    for (const std::string& name : gone)
        Remove(name);
    for (const std::string& file : files)
        Refresh(directory, file, now);
    if (announceAll)
        AnnounceAll(now);
    std::set<std::string> inUse;
    for (const auto& target : targets)
        inUse.insert(target.first);
    state.Prune(inUse);
}

void Responder::Refresh(const std::string& directory, const std::string& fileName, std::uint64_t now)
{
    if (!DescriptionWatcher::IsDescriptionName(fileName))
        return;
    std::string name = DescriptionName(fileName);
    std::string path = directory + "/" + fileName;
    struct stat status;
    if (::stat(path.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR)) {
        Remove(name);
        return;
    }
    TargetService loaded;
    std::uint16_t port = 0;
    std::string error;
    if (!KivWsd::DescriptionTarget::Load(path, loaded, port, error)) {
        log(LogLevelWarning, "cannot load the description " + path + (targets.count(name) != 0 ? " (its last good content stays served): " : ": ") + error);
        return;
    }
    if (targets.count(name) == 0 && targets.size() >= MaximumTargets) {
        log(LogLevelWarning, "more than " + std::to_string(MaximumTargets) + " descriptions; " + path + " is not served");
        return;
    }
    bool changed = false;
    const ResponderState::Entry& entry = state.Record(name, Fingerprint(loaded, port), changed);
    if (changed) {
        std::string saveError;
        if (!state.Save(saveError))
            log(LogLevelError, saveError + "; the metadata version may repeat after a restart");
    }
    loaded.endpointAddress = "urn:uuid:" + entry.endpointUuid;
    loaded.metadataVersion = entry.metadataVersion;
    bool isNew = targets.count(name) == 0;
    targets[name] = loaded;
    ports[name] = port;
    if (changed || isNew)
        announcements[name] = now + RandomDelay();
}

void Responder::AnnounceAll(std::uint64_t now)
{
    for (const auto& target : targets)
        announcements[target.first] = now + RandomDelay();
}

void Responder::Remove(const std::string& name)
{
    if (targets.count(name) == 0)
        return;
    SayBye(name);
    targets.erase(name);
    ports.erase(name);
    announcements.erase(name);
}

bool Responder::IsOwnAddress(const IpAddress& address) const
{
    for (const auto& interface : interfaces.Interfaces()) {
        for (const auto& entry : interface.second.addresses) {
            if (entry.address == address)
                return true;
        }
    }
    return false;
}

void Responder::HandleDatagram(const Datagram& datagram, std::uint64_t now)
{
    const InterfaceTable::Interface* arrival = interfaces.Find(datagram.interfaceIndex);
    if (arrival == nullptr || !interfaces.IsAllowed(*arrival))
        return;
    KivWsd::WsdMessage message;
    std::string error;
    if (!KivWsd::WsdReader::Read(datagram.data.data(), datagram.data.size(), message, error)) {
        ++drops.unreadable;
        return;
    }
    if (message.action != WsdAction::Probe && message.action != WsdAction::Resolve)
        return;
    if (!interfaces.IsOnLink(datagram.interfaceIndex, datagram.source)) {
        ++drops.offLink;
        drops.lastOffLinkSource = datagram.source.Text() + " on " + arrival->name;
        return;
    }
    if (!answered.FirstTime(message.messageId, now)) {
        ++drops.repeated;
        return;
    }
    PendingAnswer answer;
    answer.version = message.version;
    answer.resolve = message.action == WsdAction::Resolve;
    answer.relatesTo = message.messageId;
    for (const auto& target : targets) {
        bool matches = answer.resolve ? target.second.endpointAddress == message.endpointAddress
                                      : KivWsd::ProbeMatcher::Matches(message, target.second);
        if (matches)
            answer.names.push_back(target.first);
    }
    if (answer.names.empty())
        return;
    if (!limiter.Allow(datagram.source.Text(), now)) {
        ++drops.overLimit;
        return;
    }
    if (answers.size() >= MaximumPendingAnswers) {
        ++drops.queueFull;
        return;
    }
    // An answer leaves from the address the question was sent to, so that a
    // client with a connected socket takes it; to a group, the kernel picks.
    bool unicast = IsOwnAddress(datagram.destination);
    answer.due = unicast ? now : now + RandomDelay();
    answer.destination = datagram.source;
    answer.port = datagram.sourcePort;
    answer.interfaceIndex = datagram.interfaceIndex;
    if (unicast)
        answer.source = datagram.destination;
    answers.push_back(std::move(answer));
}

std::uint64_t Responder::NextDue() const
{
    std::uint64_t due = Never;
    for (const auto& answer : answers)
        due = std::min(due, answer.due);
    for (const auto& announcement : announcements)
        due = std::min(due, announcement.second);
    if (drops.Any())
        due = std::min(due, dropReportStarted ? lastDropReport + DropReportIntervalNanoseconds : 0);
    return due;
}

void Responder::SendDue(std::uint64_t now)
{
    std::vector<PendingAnswer> due;
    auto firstLater = std::stable_partition(answers.begin(), answers.end(),
                                            [now](const PendingAnswer& answer) { return answer.due <= now; });
    due.assign(std::make_move_iterator(answers.begin()), std::make_move_iterator(firstLater));
    answers.erase(answers.begin(), firstLater);
    for (const PendingAnswer& answer : due)
        Answer(answer);

    std::vector<std::string> announce;
    for (const auto& announcement : announcements) {
        if (announcement.second <= now)
            announce.push_back(announcement.first);
    }
    for (const std::string& name : announce) {
        announcements.erase(name);
        Announce(name);
    }
    if (drops.Any() && (!dropReportStarted || now >= lastDropReport + DropReportIntervalNanoseconds))
        ReportDrops(now);
}

void Responder::ByeAll()
{
    for (const auto& target : targets)
        SayBye(target.first);
    announcements.clear();
    answers.clear();
}

TargetService Responder::WithAddresses(const std::string& name, int interfaceIndex) const
{
    TargetService target = targets.at(name);
    std::string port = std::to_string(ports.at(name));
    target.xaddrs.clear();
    const InterfaceTable::Interface* interface = interfaces.Find(interfaceIndex);
    if (interface != nullptr) {
        for (const auto& entry : interface->addresses)
            target.xaddrs.push_back("http://" + entry.address.UrlHost() + ":" + port + "/");
    }
    return target;
}

KivWsd::AppSequence Responder::NextSequence()
{
    KivWsd::AppSequence sequence;
    sequence.instanceId = state.InstanceId();
    sequence.messageNumber = ++messageNumber;
    return sequence;
}

std::string Responder::NewMessageId()
{
    static const char digits[] = "0123456789abcdef";
    std::uint64_t high = random();
    std::uint64_t low = random();
    // Version 4, RFC 4122 variant.
    high = (high & ~0xf000ull) | 0x4000ull;
    low = (low & ~(3ull << 62)) | (2ull << 62);
    std::string text = "urn:uuid:";
    for (int nibble = 0; nibble < 32; ++nibble) {
        if (nibble == 8 || nibble == 12 || nibble == 16 || nibble == 20)
            text += '-';
        std::uint64_t word = nibble < 16 ? high : low;
        text += digits[(word >> (60 - 4 * (nibble % 16))) & 0x0f];
    }
    return text;
}

std::uint64_t Responder::RandomDelay()
{
    return std::uniform_int_distribution<std::uint64_t>(0, MaximumDelayNanoseconds)(random);
}

std::string Responder::InterfaceName(int index) const
{
    const InterfaceTable::Interface* interface = interfaces.Find(index);
    return interface != nullptr && !interface->name.empty() ? interface->name : "interface " + std::to_string(index);
}

void Responder::Answer(const PendingAnswer& answer)
{
    std::vector<TargetService> matches;
    for (const std::string& name : answer.names) {
        if (targets.count(name) != 0)
            matches.push_back(WithAddresses(name, answer.interfaceIndex));
    }
    if (matches.empty())
        return;
    std::string datagram = answer.resolve
                               ? WsdWriter::ResolveMatches(answer.version, NewMessageId(), answer.relatesTo,
                                                           NextSequence(), matches.front())
                               : WsdWriter::ProbeMatches(answer.version, NewMessageId(), answer.relatesTo,
                                                         NextSequence(), matches);
    sender.Send(answer.destination, answer.port, answer.interfaceIndex, answer.source, datagram);
}

void Responder::Multicast(const std::string& name, bool hello)
{
    std::vector<std::string> sentOn;
    for (const auto& entry : interfaces.Interfaces()) {
        const InterfaceTable::Interface& interface = entry.second;
        if (!interfaces.IsServed(interface))
            continue;
        TargetService target = WithAddresses(name, interface.index);
        bool sent = false;
        for (const char* group : {WsdLimits::MulticastGroupIPv4, WsdLimits::MulticastGroupIPv6}) {
            IpAddress groupAddress = IpAddress::FromText(group);
            bool hasFamily = std::any_of(interface.addresses.begin(), interface.addresses.end(),
                                         [&](const InterfaceTable::Address& address) {
                                             return address.address.GetFamily() == groupAddress.GetFamily();
                                         });
            if (!hasFamily)
                continue;
            for (WsdVersion version : BothVersions) {
                std::string datagram = hello ? WsdWriter::Hello(version, NewMessageId(), NextSequence(), target)
                                             : WsdWriter::Bye(version, NewMessageId(), NextSequence(), target);
                sent |= sender.Send(groupAddress, WsdLimits::Port, interface.index, IpAddress(), datagram);
            }
        }
        if (sent)
            sentOn.push_back(interface.name);
    }
    const TargetService& target = targets.at(name);
    std::string where;
    for (const std::string& interfaceName : sentOn)
        where += (where.empty() ? "" : ", ") + interfaceName;
    log(LogLevelInformation, std::string(hello ? "Hello" : "Bye") + " sent for " + name + " (" +
                                 target.endpointAddress + ", metadata version " +
                                 std::to_string(target.metadataVersion) + ") on " +
                                 (where.empty() ? "no interface" : where));
}

void Responder::Announce(const std::string& name)
{
    Multicast(name, true);
}

void Responder::SayBye(const std::string& name)
{
    Multicast(name, false);
}

void Responder::ReportDrops(std::uint64_t now)
{
    std::string line = "dropped since the last report:";
    auto add = [&line](std::uint64_t count, const std::string& what) {
        if (count != 0)
            line += " " + std::to_string(count) + " " + what + ",";
    };
    add(drops.offLink, "from off-link sources (last " + drops.lastOffLinkSource + ")");
    add(drops.unreadable, "unreadable or not WS-Discovery");
    add(drops.oversized, "above " + std::to_string(WsdLimits::MaximumIncomingDatagram) + " bytes");
    add(drops.repeated, "repeated message IDs");
    add(drops.overLimit, "over the answer limits");
    add(drops.queueFull, "with too many answers waiting");
    line.pop_back();
    log(LogLevelInformation, line);
    drops = DropCounts();
    lastDropReport = now;
    dropReportStarted = true;
}

} // namespace KivResponder

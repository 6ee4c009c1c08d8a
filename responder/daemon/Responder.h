// SPDX-License-Identifier: Apache-2.0
// Responder.h - the WS-Discovery target side of the daemon, without its
// sockets: serves one target per description file, answers probes and
// resolves under the on-link rule and the answer limits, and announces
// targets with Hello and Bye on every served interface.
//
// The daemon's loop owns it and feeds it datagrams, description changes and
// the time (a steady clock in nanoseconds); what it sends goes to an
// IDatagramSender, what it reports to a log function. One thread.
//
// Example:
//   #include <cstdio>
//   auto serve = [](ResponderState& state, const InterfaceTable& table, IDatagramSender& sender,
//                   const Datagram& datagram, std::uint64_t now) {
//       Responder responder(state, table, sender,
//                           [](std::uint32_t, const std::string& line) { std::puts(line.c_str()); }, 7);
//       responder.Rescan("/var/lib/discovery", now, true);   // Hello for each, after a random delay
//       responder.HandleDatagram(datagram, now);              // a probe: answer scheduled
//       responder.SendDue(now + Responder::MaximumDelayNanoseconds);
//       responder.ByeAll();                                   // on SIGTERM
//   };
#ifndef KIV_RESPONDER_RESPONDER_H
#define KIV_RESPONDER_RESPONDER_H

#include <KivResponder/Datagram.h>
#include <KivResponder/IDatagramSender.h>
#include <KivResponder/InterfaceTable.h>
#include <KivResponder/ResponderState.h>
#include <KivWsd/MessageIdCache.h>
#include <KivWsd/ReplyLimiter.h>
#include <KivWsd/TargetService.h>
#include <KivWsd/WsdMessage.h>
#include <KivWsd/WsdVersion.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace KivResponder {

class Responder
{
public:
    /// Receives each log line with a level of ILog (LogLevelInformation ...).
    using LogFunction = std::function<void(std::uint32_t level, const std::string& line)>;

    /// Answers waiting for their delay at most; a probe beyond them is dropped.
    static constexpr std::size_t MaximumPendingAnswers = 64;
    /// Descriptions served at most; further ones are ignored (and logged).
    static constexpr std::size_t MaximumTargets = 64;
    /// The longest random delay of a multicast answer or a Hello.
    static constexpr std::uint64_t MaximumDelayNanoseconds = 500ull * 1000 * 1000;
    /// Dropped datagrams are summed up in the log at most this often.
    static constexpr std::uint64_t DropReportIntervalNanoseconds = 60ull * 1000 * 1000 * 1000;
    /// "Nothing due" for NextDue.
    static constexpr std::uint64_t Never = UINT64_MAX;

    /// What was dropped since the last report.
    struct DropCounts
    {
        std::uint64_t offLink = 0;
        std::uint64_t unreadable = 0;
        std::uint64_t repeated = 0;
        std::uint64_t overLimit = 0;
        std::uint64_t queueFull = 0;
        std::uint64_t oversized = 0;
        std::string lastOffLinkSource;
        bool Any() const { return offLink + unreadable + repeated + overLimit + queueFull + oversized != 0; }
    };

    /// Uses \p state for endpoint UUIDs and versions, \p interfaces for the
    /// on-link rule and the XAddrs, \p sender for every datagram; the three
    /// must outlive it. \p seed seeds the delays and message IDs.
    Responder(ResponderState& state, const InterfaceTable& interfaces, IDatagramSender& sender, LogFunction log,
              std::uint64_t seed);

    /// Lists \p directory and refreshes every description in it; targets
    /// whose file is gone say Bye. Every target that is new or changed is
    /// announced. With \p announceAll (the start) every target is.
    void Rescan(const std::string& directory, std::uint64_t now, bool announceAll = false);
    /// Looks at description file \p fileName ("Management.xml") in
    /// \p directory: a new or changed content raises the metadata version in
    /// the state (saved first) and is announced with Hello after a random
    /// delay; a file that is gone says Bye; one that cannot be read keeps
    /// the last good target and logs why.
    void Refresh(const std::string& directory, const std::string& fileName, std::uint64_t now);
    /// Announces every target again (an interface or address came).
    void AnnounceAll(std::uint64_t now);

    /// A datagram that arrived on the discovery port. Probes and resolves
    /// that pass the checks get their answer scheduled: at once for one sent
    /// to our own address, after a random delay for one sent to a group.
    void HandleDatagram(const Datagram& datagram, std::uint64_t now);
    /// Counts a datagram that was too big to be read.
    void CountOversized() { ++drops.oversized; }

    /// When the next answer, Hello or drop report is due; Never when none.
    std::uint64_t NextDue() const;
    /// Sends every answer and Hello due at \p now, and logs the drop report
    /// when one is due.
    void SendDue(std::uint64_t now);
    /// Says Bye for every target at once (the daemon is stopping).
    void ByeAll();

    /// Targets served, by description name.
    const std::map<std::string, KivWsd::TargetService>& Targets() const { return targets; }
    std::size_t PendingAnswers() const { return answers.size(); }
    const DropCounts& Drops() const { return drops; }
    /// Messages sent since the start (the AppSequence message number).
    std::uint64_t MessagesSent() const { return messageNumber; }

    /// A fingerprint of what a description says (types, scopes, port,
    /// metadata): 16 hex digits that change whenever any of them does.
    static std::string Fingerprint(const KivWsd::TargetService& target, std::uint16_t port);

private:
    struct PendingAnswer
    {
        std::uint64_t due = 0;
        KivWsd::WsdVersion version = KivWsd::WsdVersion::Discovery2005;
        bool resolve = false;
        std::string relatesTo;
        std::vector<std::string> names;
        IpAddress destination;
        std::uint16_t port = 0;
        int interfaceIndex = 0;
        IpAddress source;
    };

    void Remove(const std::string& name);
    void Announce(const std::string& name);
    void SayBye(const std::string& name);
    void Answer(const PendingAnswer& answer);
    /// Sends one message per interface, family and version to the groups.
    void Multicast(const std::string& name, bool hello);
    KivWsd::TargetService WithAddresses(const std::string& name, int interfaceIndex) const;
    KivWsd::AppSequence NextSequence();
    std::string NewMessageId();
    std::uint64_t RandomDelay();
    bool IsOwnAddress(const IpAddress& address) const;
    void ReportDrops(std::uint64_t now);
    std::string InterfaceName(int index) const;

    ResponderState& state;
    const InterfaceTable& interfaces;
    IDatagramSender& sender;
    LogFunction log;
    std::mt19937_64 random;
    KivWsd::MessageIdCache answered;
    KivWsd::ReplyLimiter limiter;
    std::map<std::string, KivWsd::TargetService> targets;
    std::map<std::string, std::uint16_t> ports;
    std::map<std::string, std::uint64_t> announcements;
    std::vector<PendingAnswer> answers;
    std::uint64_t messageNumber = 0;
    DropCounts drops;
    std::uint64_t lastDropReport = 0;
    bool dropReportStarted = false;
};

} // namespace KivResponder

#endif

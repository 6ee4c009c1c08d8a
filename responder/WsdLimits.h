// SPDX-License-Identifier: Apache-2.0
// WsdLimits.h - the fixed numbers of our WS-Discovery service: port and
// groups, datagram sizes, answer rates, the message ID memory, the answer
// delay and the bounds on what one message may list.
//
// Constants only; any thread. docs/wsdiscovery.md says why each is what it is.
//
// Example:
//   #include <sys/socket.h>
//   int descriptor = -1;   // a bound UDP socket
//   char datagram[KivWsd::WsdLimits::MaximumIncomingDatagram + 1];
//   ssize_t got = recv(descriptor, datagram, sizeof datagram, 0);
//   bool tooBig = got > static_cast<ssize_t>(KivWsd::WsdLimits::MaximumIncomingDatagram);   // dropped unread
#ifndef KIV_WSD_WSDLIMITS_H
#define KIV_WSD_WSDLIMITS_H

#include <cstddef>
#include <cstdint>

namespace KivWsd {

struct WsdLimits
{
    /// The UDP port everything is received on and sent from.
    static constexpr std::uint16_t Port = 3702;
    static constexpr const char* MulticastGroupIPv4 = "239.255.255.250";
    static constexpr const char* MulticastGroupIPv6 = "ff02::c";

    /// A received datagram above this many bytes is dropped unread. A probe
    /// or resolve needs a few hundred bytes.
    static constexpr std::size_t MaximumIncomingDatagram = 4096;
    /// An answer or announcement that would be bigger than this with its
    /// metadata is sent without it. Also the limit for reading answers
    /// (WsdReader::Read with an explicit limit, as a browser does).
    static constexpr std::size_t MaximumOutgoingDatagram = 8192;

    /// Answers to one source address: a bucket of this many tokens...
    static constexpr unsigned PerSourceBurst = 4;
    /// ...refilled at this many per second.
    static constexpr unsigned PerSourceAnswersPerSecond = 4;
    /// Answers to all sources together: bucket size and refill per second.
    static constexpr unsigned TotalBurst = 40;
    static constexpr unsigned TotalAnswersPerSecond = 40;
    /// Source addresses whose buckets are kept; the least recently seen goes
    /// when a new one comes.
    static constexpr std::size_t MaximumTrackedSources = 256;

    /// Message IDs remembered, so that each is answered once: the most
    /// recent ones, each for this long.
    static constexpr std::size_t RememberedMessageIds = 256;
    static constexpr std::uint64_t MessageIdLifetimeSeconds = 60;

    /// Multicast probes and resolves are answered after a random delay up to
    /// this long; the first Hello likewise.
    static constexpr unsigned AppMaxDelayMilliseconds = 500;

    /// What one message read may hold: entries of a Types, Scopes or XAddrs
    /// list, targets in a ProbeMatches, bytes of one identifier or URI.
    static constexpr std::size_t MaximumListEntries = 32;
    static constexpr std::size_t MaximumTargets = 16;
    static constexpr std::size_t MaximumUriLength = 1024;
    /// Element nesting of a message read.
    static constexpr std::size_t MaximumDepth = 32;
};

} // namespace KivWsd

#endif

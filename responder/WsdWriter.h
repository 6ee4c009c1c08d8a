// SPDX-License-Identifier: Apache-2.0
// WsdWriter.h - builds the datagrams of both WS-Discovery versions as
// compact XML (no white space between elements, the same bytes for the same
// input), every text escaped. Message IDs and sequence numbers come from
// the caller.
//
// Stateless; any thread.
//
// Example:
//   #include <KivWsd/WsdMessage.h>
//   KivWsd::WsdMessage probe;   // as WsdReader read it
//   KivWsd::TargetService target;
//   KivWsd::AppSequence sequence{1, 1};
//   std::string datagram = KivWsd::WsdWriter::ProbeMatches(probe.version, "urn:uuid:0b7e2c1a-5d3f-4c2e-9a61-3f0d2b8c4e72",
//       probe.messageId, sequence, {target});
#ifndef KIV_WSD_WSDWRITER_H
#define KIV_WSD_WSDWRITER_H

#include <KivWsd/AppSequence.h>
#include <KivWsd/QualifiedName.h>
#include <KivWsd/TargetService.h>
#include <KivWsd/WsdVersion.h>

#include <string>
#include <vector>

namespace KivWsd {

/// Types are written as QNames: the project's namespace with the prefix
/// cpp, no namespace without a prefix, any other with a generated prefix
/// (t1, t2, ...) declared on the envelope. A type whose local name is not
/// an XML name cannot be written and is left out. Text that XML cannot
/// carry (control characters, invalid UTF-8) is written as U+FFFD.
class WsdWriter
{
public:
    /// A multicast Probe; \p matchBy empty leaves the attribute out (the
    /// URI-prefix rule), and no Scopes element is written without scopes.
    static std::string Probe(WsdVersion version, const std::string& messageId, const std::vector<QualifiedName>& types,
                             const std::vector<std::string>& scopes, const std::string& matchBy);
    /// A multicast Resolve for \p endpointAddress.
    static std::string Resolve(WsdVersion version, const std::string& messageId, const std::string& endpointAddress);
    /// A multicast Hello announcing \p target, with its metadata when the
    /// datagram stays within WsdLimits::MaximumOutgoingDatagram.
    static std::string Hello(WsdVersion version, const std::string& messageId, const AppSequence& sequence,
                             const TargetService& target);
    /// A multicast Bye; of \p target only its endpoint address is sent.
    static std::string Bye(WsdVersion version, const std::string& messageId, const AppSequence& sequence,
                           const TargetService& target);
    /// The answer to the probe \p relatesTo, one ProbeMatch per target
    /// (none is a valid, empty answer). While the datagram would exceed
    /// WsdLimits::MaximumOutgoingDatagram, the largest remaining metadata
    /// is left out; the matches always go.
    static std::string ProbeMatches(WsdVersion version, const std::string& messageId, const std::string& relatesTo,
                                    const AppSequence& sequence, const std::vector<TargetService>& targets);
    /// The answer to the resolve \p relatesTo; metadata as for Hello.
    static std::string ResolveMatches(WsdVersion version, const std::string& messageId, const std::string& relatesTo,
                                      const AppSequence& sequence, const TargetService& target);
};

} // namespace KivWsd

#endif

// SPDX-License-Identifier: Apache-2.0
// WsdMessage.h - one WS-Discovery message as WsdReader reads it from a
// datagram: the addressing headers and the body of whichever of the six
// kinds it is.
//
// A plain value; any thread. Fields that the kind does not have stay empty.
//
// Example:
//   #include <KivWsd/ProbeMatcher.h>
//   #include <KivWsd/WsdReader.h>
//   const std::string datagram = "<received/>";
//   KivWsd::TargetService target;
//   KivWsd::WsdMessage message;
//   std::string error;
//   bool matched = KivWsd::WsdReader::Read(datagram.data(), datagram.size(), message, error)
//       && message.action == KivWsd::WsdAction::Probe && KivWsd::ProbeMatcher::Matches(message, target);
#ifndef KIV_WSD_WSDMESSAGE_H
#define KIV_WSD_WSDMESSAGE_H

#include <KivWsd/AppSequence.h>
#include <KivWsd/QualifiedName.h>
#include <KivWsd/TargetService.h>
#include <KivWsd/WsdVersion.h>

#include <string>
#include <vector>

namespace KivWsd {

enum class WsdAction { Hello, Bye, Probe, ProbeMatches, Resolve, ResolveMatches };

struct WsdMessage
{
    WsdVersion version = WsdVersion::Discovery2005;
    WsdAction action = WsdAction::Probe;
    /// wsa:MessageID, wsa:RelatesTo (answers only; empty otherwise) and
    /// wsa:To (empty when absent), whitespace around them removed.
    std::string messageId, relatesTo, to;
    /// True when the AppSequence header block was present.
    bool hasAppSequence = false;
    AppSequence appSequence;
    /// Probe: the Types list, resolved against the namespace declarations
    /// in scope at the Types element.
    std::vector<QualifiedName> types;
    /// Probe: the Scopes list.
    std::vector<std::string> scopes;
    /// Probe: the MatchBy attribute of Scopes, empty when absent.
    std::string matchBy;
    /// Resolve: the address of the endpoint reference asked for.
    std::string endpointAddress;
    /// Hello and Bye: one; ProbeMatches: any number; ResolveMatches: at most one.
    std::vector<TargetService> targets;
};

} // namespace KivWsd

#endif

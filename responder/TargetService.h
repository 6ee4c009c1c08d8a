// SPDX-License-Identifier: Apache-2.0
// TargetService.h - one discoverable service as WS-Discovery describes it:
// the endpoint, its types and scopes, where to reach it, the version of
// its metadata and our metadata extension.
//
// A plain value; any thread. Hello, ProbeMatch and ResolveMatch carry one
// each; Bye only its endpoint address.
//
// Example:
//   #include <KivWsd/DescriptionTarget.h>
//   KivWsd::TargetService target;
//   std::uint16_t port = 0;
//   std::string error;
//   if (KivWsd::DescriptionTarget::Load("/var/lib/discovery/Management.xml", target, port, error))
//       target.xaddrs.push_back("http://192.0.2.7:" + std::to_string(port) + "/");
#ifndef KIV_WSD_TARGETSERVICE_H
#define KIV_WSD_TARGETSERVICE_H

#include <KivWsd/QualifiedName.h>

#include <cstdint>
#include <string>
#include <vector>

namespace KivWsd {

struct TargetService
{
    /// The endpoint reference's address, "urn:uuid:...".
    std::string endpointAddress;
    std::vector<QualifiedName> types;
    std::vector<std::string> scopes;
    /// Transport addresses, "http://192.0.2.7:8080/".
    std::vector<std::string> xaddrs;
    std::uint32_t metadataVersion = 0;
    /// True when the kd:Metadata extension element was present in a message
    /// read, or is to be sent in a message written.
    bool hasMetadata = false;
    /// The extension element's text, unescaped.
    std::string metadata;
};

} // namespace KivWsd

#endif

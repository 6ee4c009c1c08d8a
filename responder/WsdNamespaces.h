// SPDX-License-Identifier: Apache-2.0
// WsdNamespaces.h - the namespace, action and address URIs of both
// WS-Discovery versions, and the ones the project fixes for its types and
// its metadata extension.
//
// Constants only; any thread.
//
// Example:
//   #include <cstdio>
//   const KivWsd::WsdNamespaces::Version& uris = KivWsd::WsdNamespaces::Of(KivWsd::WsdVersion::Discovery2009);
//   std::puts(uris.multicastTo);   // urn:docs-oasis-open-org:ws-dd:ns:discovery:2009:01
#ifndef KIV_WSD_WSDNAMESPACES_H
#define KIV_WSD_WSDNAMESPACES_H

#include <KivWsd/WsdVersion.h>

namespace KivWsd {

struct WsdNamespaces
{
    static constexpr const char* SoapEnvelope = "http://www.w3.org/2003/05/soap-envelope";
    /// The namespace of the types a description writes as "cpp:Local".
    static constexpr const char* ProjectTypes = "http://standards.kivotrel.example/2011/videoprocessor";
    /// The prefix the writer declares for ProjectTypes.
    static constexpr const char* ProjectTypesPrefix = "cpp";
    /// Types of a description without a prefix, or with one other than cpp:
    /// "Local" becomes (UnboundTypes, "Local"), "other:Local" becomes
    /// (UnboundTypes + "/other", "Local").
    static constexpr const char* UnboundTypes = "http://standards.kivotrel.example/2026/discovery/unbound";
    /// The namespace of our extension element Metadata.
    static constexpr const char* Extension = "http://standards.kivotrel.example/2026/discovery";
    static constexpr const char* ExtensionMetadata = "Metadata";

    /// The URIs that differ between the versions.
    struct Version
    {
        const char* addressing;     ///< WS-Addressing namespace
        const char* discovery;      ///< WS-Discovery namespace; actions are discovery + "/" + element
        const char* multicastTo;    ///< wsa:To of Hello, Bye, Probe, Resolve
        const char* anonymousTo;    ///< wsa:To of ProbeMatches and ResolveMatches
        const char* matchByRfc3986; ///< the URI-prefix scope rule (also the default)
        const char* matchByStrcmp0; ///< the exact scope rule
        /// A second name of the URI-prefix rule, or null: 2005/04 named it
        /// after RFC 2396, and Windows sends that name.
        const char* matchByRfc2396;
    };
    static const Version& Of(WsdVersion version);
};

} // namespace KivWsd

#endif

// SPDX-License-Identifier: Apache-2.0
// DescriptionTarget.h - turns a description file, as the discovery client
// writes it, into the target service that the responder announces: types as
// qualified names, scopes, metadata, and the port for the XAddrs.
//
// Stateless; any thread (each call reads the file with its own reader).
//
// Example:
//   #include <cstdio>
//   KivWsd::TargetService target;
//   std::uint16_t port = 0;
//   std::string error;
//   if (!KivWsd::DescriptionTarget::Load("/var/lib/discovery/Management.xml", target, port, error))
//       std::fprintf(stderr, "%s\n", error.c_str());
#ifndef KIV_WSD_DESCRIPTIONTARGET_H
#define KIV_WSD_DESCRIPTIONTARGET_H

#include <KivWsd/QualifiedName.h>
#include <KivWsd/TargetService.h>

#include <cstdint>
#include <string>

namespace KivWsd {

class DescriptionTarget
{
public:
    /// Reads the description at \p path. On success fills the types, scopes
    /// and metadata of \p target (hasMetadata when the text is not empty)
    /// and \p port, leaving its endpoint address, XAddrs and metadata version
    /// alone (the responder owns those). On failure answers false with the
    /// reader's faults in \p error and changes nothing.
    static bool Load(const std::string& path, TargetService& target, std::uint16_t& port, std::string& error);

    /// The qualified name of a description's type text: "cpp:Local" in the
    /// project's namespace, "other:Local" in WsdNamespaces::UnboundTypes +
    /// "/other", a text without a colon in WsdNamespaces::UnboundTypes.
    /// A text that is neither an XML name nor prefix:name (white space, two
    /// colons) cannot travel as a type: false.
    static bool TypeName(const std::string& text, QualifiedName& name);

    /// The reverse, for showing a type: "cpp:Local", "other:Local", "Local",
    /// or "{namespace}Local" for any other namespace.
    static std::string TypeText(const QualifiedName& name);
};

} // namespace KivWsd

#endif

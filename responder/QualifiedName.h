// SPDX-License-Identifier: Apache-2.0
// QualifiedName.h - an XML qualified name as a pair of namespace URI and
// local name, the way WS-Discovery compares types: the prefix a message
// happens to use never matters.
//
// A plain value; any thread.
//
// Example:
//   #include <KivWsd/WsdNamespaces.h>
//   KivWsd::QualifiedName management{KivWsd::WsdNamespaces::ProjectTypes, "Management"};
//   KivWsd::QualifiedName status{KivWsd::WsdNamespaces::ProjectTypes, "Status"};
//   bool same = management == status;   // false
#ifndef KIV_WSD_QUALIFIEDNAME_H
#define KIV_WSD_QUALIFIEDNAME_H

#include <string>

namespace KivWsd {

struct QualifiedName
{
    /// Empty for a name in no namespace.
    std::string namespaceUri;
    std::string localName;
};

/// Equal when namespace URI and local name are both equal, byte for byte.
bool operator==(const QualifiedName& left, const QualifiedName& right);
bool operator!=(const QualifiedName& left, const QualifiedName& right);

/// True when \p text can stand as a local name or a prefix: an XML name
/// without a colon. Checked on ASCII; bytes from 0x80 on count as name
/// characters.
bool IsLocalName(const std::string& text);

} // namespace KivWsd

#endif

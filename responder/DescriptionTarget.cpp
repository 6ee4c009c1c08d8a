// SPDX-License-Identifier: Apache-2.0
#include <KivWsd/DescriptionTarget.h>

#include <KivDiscoveryClient/DescriptionReader.h>
#include <KivWsd/WsdNamespaces.h>

namespace KivWsd {

bool DescriptionTarget::Load(const std::string& path, TargetService& target, std::uint16_t& port, std::string& error)
{
    KivDiscoveryClient::DescriptionReader reader;
    if (!reader.Load(path.c_str())) {
        error = reader.ErrorMessage();
        return false;
    }
    std::vector<QualifiedName> types;
    for (const std::string& text : reader.Types()) {
        QualifiedName name;
        // A type that cannot be written as a qualified name is not announced.
        if (TypeName(text, name))
            types.push_back(std::move(name));
    }
    target.types = std::move(types);
    target.scopes = reader.Scopes();
    target.metadata = reader.MetaData();
    target.hasMetadata = !target.metadata.empty();
    port = reader.Port();
    return true;
}

bool DescriptionTarget::TypeName(const std::string& text, QualifiedName& name)
{
    std::size_t colon = text.find(':');
    if (colon == std::string::npos) {
        if (!IsLocalName(text))
            return false;
        name = {WsdNamespaces::UnboundTypes, text};
        return true;
    }
    std::string prefix = text.substr(0, colon);
    std::string local = text.substr(colon + 1);
    if (!IsLocalName(prefix) || !IsLocalName(local))
        return false;
    if (prefix == WsdNamespaces::ProjectTypesPrefix)
        name = {WsdNamespaces::ProjectTypes, local};
    else
        name = {std::string(WsdNamespaces::UnboundTypes) + "/" + prefix, local};
    return true;
}

std::string DescriptionTarget::TypeText(const QualifiedName& name)
{
    if (name.namespaceUri == WsdNamespaces::ProjectTypes)
        return std::string(WsdNamespaces::ProjectTypesPrefix) + ":" + name.localName;
    const std::string unbound = WsdNamespaces::UnboundTypes;
    if (name.namespaceUri == unbound || name.namespaceUri.empty())
        return name.localName;
    if (name.namespaceUri.compare(0, unbound.size() + 1, unbound + "/") == 0) {
        std::string prefix = name.namespaceUri.substr(unbound.size() + 1);
        if (IsLocalName(prefix))
            return prefix + ":" + name.localName;
    }
    return "{" + name.namespaceUri + "}" + name.localName;
}

} // namespace KivWsd

// SPDX-License-Identifier: Apache-2.0
#include <KivBrowse/FoundUnits.h>

#include <DiscoveryCheck/MetadataSummary.h>
#include <DiscoveryCheck/PublishedMetadata.h>
#include <KivWsd/WsdNamespaces.h>

#include <algorithm>

namespace KivBrowse {

namespace {

std::string Joined(const std::vector<std::string>& items)
{
    if (items.empty())
        return "none";
    std::string text;
    for (const std::string& item : items)
        text += (text.empty() ? "" : " ") + item;
    return text;
}

} // namespace

std::string FoundUnits::Shown(const KivWsd::QualifiedName& type)
{
    if (type.namespaceUri == KivWsd::WsdNamespaces::ProjectTypes)
        return std::string(KivWsd::WsdNamespaces::ProjectTypesPrefix) + ":" + type.localName;
    if (type.namespaceUri.empty())
        return type.localName;
    return "{" + type.namespaceUri + "}" + type.localName;
}

void FoundUnits::Add(const KivWsd::WsdMessage& answer)
{
    for (const KivWsd::TargetService& target : answer.targets) {
        auto known = std::find_if(units.begin(), units.end(), [&](const Unit& unit) {
            return unit.target.endpointAddress == target.endpointAddress;
        });
        if (known == units.end()) {
            units.push_back(Unit{target});
            known = units.end() - 1;
        } else {
            std::vector<std::string> xaddrs = known->target.xaddrs;
            for (const std::string& xaddr : target.xaddrs)
                if (std::find(xaddrs.begin(), xaddrs.end(), xaddr) == xaddrs.end())
                    xaddrs.push_back(xaddr);
            if (target.metadataVersion > known->target.metadataVersion) {
                bool keptMetadata = known->target.hasMetadata && !target.hasMetadata;
                std::string metadata = known->target.metadata;
                known->target = target;
                if (keptMetadata) {
                    known->target.hasMetadata = true;
                    known->target.metadata = metadata;
                }
            } else if (!known->target.hasMetadata && target.hasMetadata) {
                known->target.hasMetadata = true;
                known->target.metadata = target.metadata;
            }
            known->target.xaddrs = xaddrs;
        }
        (answer.version == KivWsd::WsdVersion::Discovery2005 ? known->answered2005 : known->answered2009) = true;
    }
}

std::string FoundUnits::Report() const
{
    std::string text;
    for (const Unit& unit : units) {
        const KivWsd::TargetService& target = unit.target;
        std::vector<std::string> types;
        for (const KivWsd::QualifiedName& type : target.types)
            types.push_back(Shown(type));
        std::vector<std::string> versions;
        if (unit.answered2005)
            versions.push_back("2005/04");
        if (unit.answered2009)
            versions.push_back("1.1");
        text += target.endpointAddress + "\n";
        text += "  types: " + Joined(types) + "\n";
        text += "  scopes: " + Joined(target.scopes) + "\n";
        text += "  addresses: " + Joined(target.xaddrs) + "\n";
        text += "  metadata version: " + std::to_string(target.metadataVersion) + "\n";
        text += "  answered in WS-Discovery: " + Joined(versions) + "\n";
        if (!target.hasMetadata) {
            text += "  metadata: none\n";
            continue;
        }
        KivCheck::PublishedMetadata metadata = KivCheck::PublishedMetadata::Decode(target.metadata);
        text += KivCheck::MetadataSummary::Lines(metadata);
        if (!metadata.problem.empty())
            text += "  metadata not in the publisher's layout at " + metadata.problem + "\n";
    }
    return text;
}

} // namespace KivBrowse

// SPDX-License-Identifier: Apache-2.0
// MetadataGroup.h - a named list of metadata providers that is published as
// one XML element.
//
// DiscoverableServices creates two groups ("cpp:Config" and "cpp:State"),
// fills them once and owns them through SmartPtr for its whole life; the
// group shares ownership of its providers. One thread at a time.
//
// Example:
//   #include <KivConfig/MetadataComputerName.h>
//   VpCfg::CConfig config;                  // the process uses gConfig
//   SmartPtr<MetadataGroup> group(new MetadataGroup("cpp:Config"));
//   group->Add(new MetadataComputerName(config));
//   group->Refresh();
//   std::string text;
//   group->GetXml(text);   // "<cpp:Config><ComputerName>...</ComputerName></cpp:Config>"
#ifndef KIVCONFIG_METADATAGROUP_H
#define KIVCONFIG_METADATAGROUP_H

#include <KivConfig/IMetadata.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/core/SmartPtr.h>

#include <string>
#include <vector>

namespace KivConfig {

class MetadataGroup : public KivPlr::Object
{
public:
    /// An empty group whose element is called \p name.
    explicit MetadataGroup(const std::string& name);

    /// Appends \p provider after those already added; the group takes a
    /// reference. An empty pointer is kept too and is fatal once used.
    void Add(const KivPlr::SmartPtr<IMetadata>& provider);
    /// Refreshes every provider, in the order added.
    void Refresh();
    /// True as soon as one provider, asked in the order added, reports a
    /// change; the providers after it are not asked. False for an empty group.
    bool IsChanged() const;
    /// Clears the flag of every provider, in the order added.
    void ClearChanged();
    /// \p out = "<name>", each provider's text in order, "</name>". An empty
    /// group gives the two tags with nothing between them.
    void GetXml(std::string& out) const;

private:
    ~MetadataGroup() override = default;

    std::vector<KivPlr::SmartPtr<IMetadata>> providers;
    std::string name;
    /// Each provider's text in turn while GetXml collects them.
    mutable std::string fragment;
};

} // namespace KivConfig

#endif

// SPDX-License-Identifier: Apache-2.0
// IMetadata.h - one provider of a fragment of the management description's
// metadata text.
//
// Each provider rebuilds its small XML fragment from the process-wide records
// on Refresh and remembers whether the text changed since its flag was last
// cleared. Providers are created by DiscoverableServices, owned through
// SmartPtr by the MetadataGroup they belong to, and used only by the thread
// that runs DiscoverableServices::Update.
//
// Example:
//   #include <KivConfig/MetadataComputerName.h>
//   VpCfg::CConfig config;                  // the process uses gConfig
//   SmartPtr<IMetadata> name(new MetadataComputerName(config));
//   name->Refresh();
//   std::string text;
//   if (name->IsChanged()) {
//       name->GetXml(text);                 // "<ComputerName>trxDefault</ComputerName>"
//       name->ClearChanged();
//   }
#ifndef KIVCONFIG_IMETADATA_H
#define KIVCONFIG_IMETADATA_H

#include <KivPlr/core/IObject.h>

#include <string>

namespace KivConfig {

class IMetadata : public virtual KivPlr::IObject
{
public:
    /// Rebuilds the fragment from the current records. A text that differs
    /// from the cached one (in length or in any byte) replaces it and sets the
    /// changed flag; an identical text changes nothing, in particular it never
    /// clears a flag that is still set.
    virtual void Refresh() = 0;
    /// The changed flag: set by a Refresh that saw a new text, cleared only by
    /// ClearChanged. False before the first Refresh.
    virtual bool IsChanged() const = 0;
    /// Clears the changed flag; the cached text stays.
    virtual void ClearChanged() = 0;
    /// Copies the cached fragment into \p out (empty before the first Refresh).
    virtual void GetXml(std::string& out) const = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IMetadata() override = default;
};

} // namespace KivConfig

#endif

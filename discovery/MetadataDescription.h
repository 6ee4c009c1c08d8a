// SPDX-License-Identifier: Apache-2.0
// MetadataDescription.h - publishes the unit's free description text as <Description>value</Description>.
//
// The first provider of the "cpp:Config" group; created by DiscoverableServices
// over the daemon's configuration record and owned through SmartPtr. One
// thread at a time.
//
// Example:
//   VpCfg::CConfig config;                  // the process uses gConfig
//   SmartPtr<IMetadata> provider(new MetadataDescription(config));
//   provider->Refresh();
//   std::string text;
//   provider->GetXml(text);   // "<Description>...</Description>"
#ifndef KIVCONFIG_METADATADESCRIPTION_H
#define KIVCONFIG_METADATADESCRIPTION_H

#include <KivConfig/MetadataConfigText.h>

namespace KivConfig {

class MetadataDescription : public MetadataConfigText
{
public:
    /// Reads `descriptionText` of \p config, which must outlive the provider.
    explicit MetadataDescription(const VpCfg::CConfig& config);

private:
    ~MetadataDescription() override = default;
};

} // namespace KivConfig

#endif

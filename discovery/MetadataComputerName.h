// SPDX-License-Identifier: Apache-2.0
// MetadataComputerName.h - publishes the unit's computer name as <ComputerName>value</ComputerName>.
//
// The third provider of the "cpp:Config" group; created by DiscoverableServices
// over the daemon's configuration record and owned through SmartPtr. One
// thread at a time.
//
// Example:
//   VpCfg::CConfig config;                  // the process uses gConfig
//   SmartPtr<IMetadata> provider(new MetadataComputerName(config));
//   provider->Refresh();
//   std::string text;
//   provider->GetXml(text);   // "<ComputerName>...</ComputerName>"
#ifndef KIVCONFIG_METADATACOMPUTERNAME_H
#define KIVCONFIG_METADATACOMPUTERNAME_H

#include <KivConfig/MetadataConfigText.h>

namespace KivConfig {

class MetadataComputerName : public MetadataConfigText
{
public:
    /// Reads `computerName` of \p config, which must outlive the provider.
    explicit MetadataComputerName(const VpCfg::CConfig& config);

private:
    ~MetadataComputerName() override = default;
};

} // namespace KivConfig

#endif

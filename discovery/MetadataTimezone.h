// SPDX-License-Identifier: Apache-2.0
// MetadataTimezone.h - publishes the unit's time-zone name as <TimeZone>value</TimeZone>.
//
// The second provider of the "cpp:Config" group; created by DiscoverableServices
// over the daemon's configuration record and owned through SmartPtr. One
// thread at a time.
//
// Example:
//   VpCfg::CConfig config;                  // the process uses gConfig
//   SmartPtr<IMetadata> provider(new MetadataTimezone(config));
//   provider->Refresh();
//   std::string text;
//   provider->GetXml(text);   // "<TimeZone>...</TimeZone>"
#ifndef KIVCONFIG_METADATATIMEZONE_H
#define KIVCONFIG_METADATATIMEZONE_H

#include <KivConfig/MetadataConfigText.h>

namespace KivConfig {

class MetadataTimezone : public MetadataConfigText
{
public:
    /// Reads `timeZoneName` of \p config, which must outlive the provider.
    explicit MetadataTimezone(const VpCfg::CConfig& config);

private:
    ~MetadataTimezone() override = default;
};

} // namespace KivConfig

#endif

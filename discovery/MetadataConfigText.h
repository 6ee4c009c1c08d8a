// SPDX-License-Identifier: Apache-2.0
// MetadataConfigText.h - a provider that publishes one text of the
// configuration record between an opening and a closing tag.
//
// The base of the three identity providers (description, time zone, computer
// name); each names its element and its field. The record is the daemon's
// gConfig, which must outlive the provider. One thread at a time.
//
// Example:
//   #include <KivConfig/MetadataComputerName.h>
//   VpCfg::CConfig config;                  // the process uses gConfig
//   SmartPtr<IMetadata> name(new MetadataComputerName(config));   // <ComputerName>value</ComputerName>
//   name->Refresh();
#ifndef KIVCONFIG_METADATACONFIGTEXT_H
#define KIVCONFIG_METADATACONFIGTEXT_H

#include <KivConfig/MetadataBase.h>
#include <VpCfg/CConfig.h>

namespace KivConfig {

class MetadataConfigText : public MetadataBase
{
public:
    /// Builds "<element>" value "</element>" with the value exactly as the
    /// record holds it: no escaping, no trimming. An empty value still gives
    /// the two tags, so the first Refresh always reports a change.
    void Refresh() override;

protected:
    ~MetadataConfigText() override = default;

    /// Publishes the field \p field of \p config inside the element \p element.
    MetadataConfigText(const VpCfg::CConfig& config, const char* const VpCfg::CConfig::*field,
                       const char* element);

private:
    const VpCfg::CConfig& config;
    const char* const VpCfg::CConfig::*field;
    const char* element;
};

} // namespace KivConfig

#endif

// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataDescription.h>

namespace KivConfig {

MetadataDescription::MetadataDescription(const VpCfg::CConfig& config)
    : MetadataConfigText(config, &VpCfg::CConfig::descriptionText, "Description")
{
}

} // namespace KivConfig

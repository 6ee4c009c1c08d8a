// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataComputerName.h>

namespace KivConfig {

MetadataComputerName::MetadataComputerName(const VpCfg::CConfig& config)
    : MetadataConfigText(config, &VpCfg::CConfig::computerName, "ComputerName")
{
}

} // namespace KivConfig

#include "MetadataComputerName.h"

namespace KivConfig {

MetadataComputerName::MetadataComputerName(const VpCfg::CConfig& config)
    : MetadataConfigText(config, &VpCfg::CConfig::computerName, "ComputerName")
{
}

} // namespace KivConfig

// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataTimezone.h>

namespace KivConfig {

MetadataTimezone::MetadataTimezone(const VpCfg::CConfig& config)
    : MetadataConfigText(config, &VpCfg::CConfig::timeZoneName, "TimeZone")
{
}

} // namespace KivConfig

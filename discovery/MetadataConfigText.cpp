// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataConfigText.h>

namespace KivConfig {

MetadataConfigText::MetadataConfigText(const VpCfg::CConfig& config,
                                       const char* const VpCfg::CConfig::*field,
                                       const char* element)
    : config(config), field(field), element(element)
{
}

void MetadataConfigText::Refresh()
{
    Fragment fragment(*this);
    WriteElement(fragment, element, config.*field);
    AcceptFragment(fragment);
}

} // namespace KivConfig

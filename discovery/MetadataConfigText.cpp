// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataConfigText.h>

#include <sstream>

namespace KivConfig {

MetadataConfigText::MetadataConfigText(const VpCfg::CConfig& config,
                                       const char* const VpCfg::CConfig::*field,
                                       const char* element)
    : config(config), field(field), element(element)
{
}

void MetadataConfigText::Refresh()
{
    std::ostringstream fragment;
    WriteElement(fragment, element, config.*field);
    AcceptFragment(fragment.str());
}

} // namespace KivConfig

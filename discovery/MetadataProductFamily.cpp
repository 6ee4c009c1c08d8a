// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataProductFamily.h>

#include <cstdint>

namespace KivConfig {

namespace {

// Indexed by model code. There is no separate "unknown" row: every code past
// the table shares the text of code 1.
const char* const ModelTexts[] = {"TRX-7160", "TRX-7060", "TRX-6060",
                                  "TRX-7250", "TRX-7150", "TRX-7050"};
const std::uint32_t ModelCount = sizeof ModelTexts / sizeof ModelTexts[0];
const std::uint32_t UnknownModelCode = 1;

} // namespace

MetadataProductFamily::MetadataProductFamily(const VpSts::CStatus& status) : status(status)
{
}

const char* MetadataProductFamily::ModelText(std::uint32_t modelCode)
{
    return ModelTexts[modelCode < ModelCount ? modelCode : UnknownModelCode];
}

void MetadataProductFamily::Refresh()
{
    const char* model = ModelText(status.modelCode);
    Fragment fragment(*this);
    if (model[0] != '\0')
        fragment.Append("<ProductFamily>").Append(model).Append("</ProductFamily>");
    AcceptFragment(fragment);
}

} // namespace KivConfig

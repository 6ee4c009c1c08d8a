// SPDX-License-Identifier: Apache-2.0
// ModelCodeSetting.h - the collector's setting for the unit's model code:
// the environment variable STATUSCOLLECTOR_MODEL_CODE, unsigned decimal.
//
// A development machine has no model code of its own, so whoever runs the
// collector (or the daemon that runs it, or its service unit) sets one.
// Stateless; any thread may use it.
//
// Example:
//   std::string warning;
//   std::uint32_t code = ModelCodeSetting::Read(warning);   // 4294967295 when unset
#ifndef KIV_TOOLS_MODELCODESETTING_H
#define KIV_TOOLS_MODELCODESETTING_H

#include <cstdint>
#include <string>

namespace KivCollector {

class ModelCodeSetting
{
public:
    static constexpr const char* VariableName = "STATUSCOLLECTOR_MODEL_CODE";

    /// The model code that the environment sets. Unset or empty gives
    /// CollectedStatus::UnknownModelCode and no warning; a value that is not
    /// unsigned decimal digits within 32 bits gives UnknownModelCode too, with
    /// \p warning saying what was wrong.
    static std::uint32_t Read(std::string& warning);

    /// Parses \p text as the setting's value: decimal digits only (no sign,
    /// no spaces), at most 4294967295. False when \p text is anything else;
    /// \p modelCode is then unchanged.
    static bool Parse(const std::string& text, std::uint32_t& modelCode);
};

} // namespace KivCollector

#endif

// SPDX-License-Identifier: Apache-2.0
#include <StatusCollector/ModelCodeSetting.h>

#include <StatusCollector/CollectedStatus.h>

#include <cstdint>
#include <cstdlib>

namespace KivCollector {

bool ModelCodeSetting::Parse(const std::string& text, std::uint32_t& modelCode)
{
    if (text.empty() || text.size() > 10)
        return false;
    std::uint64_t value = 0;
    for (char character : text) {
        if (character < '0' || character > '9')
            return false;
        value = value * 10 + static_cast<std::uint64_t>(character - '0');
    }
    if (value > 0xFFFFFFFFull)
        return false;
    modelCode = static_cast<std::uint32_t>(value);
    return true;
}

std::uint32_t ModelCodeSetting::Read(std::string& warning)
{
    const char* text = std::getenv(VariableName);
    std::uint32_t modelCode = CollectedStatus::UnknownModelCode;
    if (text == nullptr || *text == '\0')
        return modelCode;
    if (!Parse(text, modelCode))
        warning = std::string(VariableName) + "=\"" + text +
                  "\" is not a decimal number within 0..4294967295; the model code stays unknown";
    return modelCode;
}

} // namespace KivCollector

// SPDX-License-Identifier: Apache-2.0
#include <VpSts/COutput.h>

namespace VpSts {

COutput::COutput(std::uint32_t number, std::uint32_t kind, std::uint32_t rows, std::uint32_t columns)
    : outputNumber(number), outputKind(kind), translationRows(rows), translationColumns(columns)
{
}

} // namespace VpSts

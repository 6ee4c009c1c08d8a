// SPDX-License-Identifier: Apache-2.0
#include <VpSts/COutput.h>

namespace VpSts {

COutput::COutput(uint32_t number, uint32_t kind, uint32_t rows, uint32_t columns)
    : outputNumber(number), outputKind(kind), translationRows(rows), translationColumns(columns)
{
}

} // namespace VpSts

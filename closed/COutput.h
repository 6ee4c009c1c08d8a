// SPDX-License-Identifier: Apache-2.0
// COutput.h - one video output of the unit as the status snapshot describes
// it: its number, its kind and the size of its translation table.
//
// Made by the status loader and owned by the record's COutputList; readers
// get const pointers that stay valid until the next successful
// CStatus::Load. Read on the loading thread only.
//
// Example:
//   #include <VpSts/CStatus.h>
//   VpSts::CStatus status;                  // the process uses gStatus
//   const VpSts::COutput* output = status.outputList[0u];
//   if (output != nullptr && output->outputKind == 0)
//       std::printf("%u: %ux%u\n", output->outputNumber, output->translationRows, output->translationColumns);
#ifndef KIV_CLOSED_COUTPUT_H
#define KIV_CLOSED_COUTPUT_H

#include <cstdint>

namespace VpSts {

class COutput
{
public:
    /// An output with the four numbers of the file's output element.
    COutput(std::uint32_t number, std::uint32_t kind, std::uint32_t rows, std::uint32_t columns);

    /// Attribute number.
    std::uint32_t outputNumber;
    /// Attribute kind; 0 marks an output that is published.
    std::uint32_t outputKind;
    /// Attribute rows.
    std::uint32_t translationRows;
    /// Attribute columns.
    std::uint32_t translationColumns;
};

} // namespace VpSts

#endif

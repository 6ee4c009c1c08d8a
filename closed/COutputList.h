// SPDX-License-Identifier: Apache-2.0
// COutputList.h - the video outputs of the status snapshot, in the order of
// the file's outputs element.
//
// A member of CStatus (field outputList); filled by the loader, read by the
// publisher, which walks it by index until it gets a null pointer. Not
// synchronised: read it on the thread that loads the record.
//
// Example:
//   #include <VpSts/CStatus.h>
//   VpSts::CStatus status;                  // the process uses gStatus
//   for (unsigned int index = 0;; ++index) {
//       const VpSts::COutput* output = status.outputList[index];
//       if (output == nullptr)
//           break;
//       std::printf("%u\n", output->outputNumber);
//   }
#ifndef KIV_CLOSED_COUTPUTLIST_H
#define KIV_CLOSED_COUTPUTLIST_H

#include <VpSts/COutput.h>

#include <vector>

namespace VpSts {

class COutputList
{
public:
    /// An empty list.
    COutputList();

    /// The entry at \p index, or a null pointer at and past the end. The
    /// pointer stays valid until the list is next changed.
    const COutput* operator[](const unsigned int& index) const;

    /// The number of entries.
    unsigned int Count() const;

    /// Appends \p output at the end (used by the loader).
    void Add(const COutput& output);

    /// Exchanges the contents with \p other (used by the loader).
    void Swap(COutputList& other);

private:
    std::vector<COutput> entries;
};

} // namespace VpSts

#endif

// SPDX-License-Identifier: Apache-2.0
// CServiceList.h - the services of the configuration, in the order of the
// file's services element.
//
// A member of CConfig (field serviceList); filled by the loader, read by the
// publisher, which walks it by index until it gets a null pointer. Not
// synchronised: read it on the thread that loads the record.
//
// Example:
//   #include <VpCfg/CConfig.h>
//   VpCfg::CConfig config;                  // the process uses gConfig
//   for (unsigned int index = 0;; ++index) {
//       const VpCfg::CServiceEntry* entry = config.serviceList[index];
//       if (entry == nullptr)
//           break;
//       std::printf("%u %u\n", entry->serviceKind, entry->servicePort);
//   }
#ifndef KIV_CLOSED_CSERVICELIST_H
#define KIV_CLOSED_CSERVICELIST_H

#include <VpCfg/CServiceEntry.h>

#include <vector>

namespace VpCfg {

class CServiceList
{
public:
    /// An empty list.
    CServiceList();

    /// The entry at \p index, or a null pointer at and past the end. The
    /// pointer stays valid until the list is next changed (a successful load).
    const CServiceEntry* operator[](const unsigned int& index) const;

    /// The number of entries.
    unsigned int Count() const;

    /// Appends \p entry at the end (used by the loader).
    void Add(const CServiceEntry& entry);

    /// Exchanges the contents with \p other (used by the loader to replace
    /// the list whole).
    void Swap(CServiceList& other);

private:
    std::vector<CServiceEntry> entries;
};

} // namespace VpCfg

#endif

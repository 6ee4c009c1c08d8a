// SPDX-License-Identifier: Apache-2.0
#include <VpCfg/CServiceList.h>

namespace VpCfg {

CServiceList::CServiceList() = default;

const CServiceEntry* CServiceList::operator[](const unsigned int& index) const
{
    if (index >= entries.size())
        return nullptr;
    return &entries[index];
}

unsigned int CServiceList::Count() const
{
    return static_cast<unsigned int>(entries.size());
}

void CServiceList::Add(const CServiceEntry& entry)
{
    entries.push_back(entry);
}

void CServiceList::Swap(CServiceList& other)
{
    entries.swap(other.entries);
}

} // namespace VpCfg

// SPDX-License-Identifier: Apache-2.0
#include <VpSts/COutputList.h>

namespace VpSts {

COutputList::COutputList() = default;

const COutput* COutputList::operator[](const unsigned int& index) const
{
    if (index >= entries.size())
        return nullptr;
    return &entries[index];
}

unsigned int COutputList::Count() const
{
    return static_cast<unsigned int>(entries.size());
}

void COutputList::Add(const COutput& output)
{
    entries.push_back(output);
}

void COutputList::Swap(COutputList& other)
{
    entries.swap(other.entries);
}

} // namespace VpSts

// SPDX-License-Identifier: Apache-2.0
#include <VpSts/CNetworkDeviceList.h>

namespace VpSts {

CNetworkDeviceList::CNetworkDeviceList() = default;

CNetworkDeviceList::~CNetworkDeviceList() = default;

const CNetworkDevice* CNetworkDeviceList::operator[](const unsigned int& index) const
{
    if (index >= entries.size())
        return nullptr;
    return entries[index].get();
}

unsigned int CNetworkDeviceList::Count() const
{
    return static_cast<unsigned int>(entries.size());
}

void CNetworkDeviceList::Add(std::unique_ptr<CNetworkDevice> device)
{
    if (device)
        entries.push_back(std::move(device));
}

void CNetworkDeviceList::Swap(CNetworkDeviceList& other)
{
    entries.swap(other.entries);
}

} // namespace VpSts

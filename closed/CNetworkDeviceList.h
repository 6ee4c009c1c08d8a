// SPDX-License-Identifier: Apache-2.0
// CNetworkDeviceList.h - the network interfaces of the status snapshot, in
// the order of the file's networkDevices element.
//
// A member of CStatus (field networkDeviceList); filled by the loader, read
// by the publisher, which walks it by index until it gets a null pointer.
// Not synchronised: read it on the thread that loads the record.
//
// Example:
//   #include <VpSts/CStatus.h>
//   VpSts::CStatus status;                  // the process uses gStatus
//   for (unsigned int index = 0;; ++index) {
//       const VpSts::CNetworkDevice* device = status.networkDeviceList[index];
//       if (device == nullptr)
//           break;
//       std::printf("%u %s\n", device->deviceNumber, device->name ? device->name : "");   // name may be null
//   }
#ifndef KIV_CLOSED_CNETWORKDEVICELIST_H
#define KIV_CLOSED_CNETWORKDEVICELIST_H

#include <VpSts/CNetworkDevice.h>

#include <memory>
#include <vector>

namespace VpSts {

class CNetworkDeviceList
{
public:
    /// An empty list.
    CNetworkDeviceList();
    ~CNetworkDeviceList();

    CNetworkDeviceList(const CNetworkDeviceList&) = delete;
    CNetworkDeviceList& operator=(const CNetworkDeviceList&) = delete;

    /// The entry at \p index, or a null pointer at and past the end. The
    /// entry and its texts stay valid until the list is next changed.
    const CNetworkDevice* operator[](const unsigned int& index) const;

    /// The number of entries.
    unsigned int Count() const;

    /// Appends \p device at the end (used by the loader); a null one is ignored.
    void Add(std::unique_ptr<CNetworkDevice> device);

    /// Exchanges the contents with \p other (used by the loader). Entries do
    /// not move in memory.
    void Swap(CNetworkDeviceList& other);

private:
    std::vector<std::unique_ptr<CNetworkDevice>> entries;
};

} // namespace VpSts

#endif

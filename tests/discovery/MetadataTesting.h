// SPDX-License-Identifier: Apache-2.0
// MetadataTesting.h - helpers of the metadata tests: fill status records in
// memory, without a status file, and read a provider's fragment.
//
//   VpSts::CStatus status;
//   AddDevice(status, 1, "eth0", "00:11:22:33:44:55", "192.0.2.10", nullptr, "192.0.2.1", "255.255.255.0");
//   AddOutput(status, 2, 0, 3, 4);
//   EXPECT_EQ(RefreshedXml(new MetadataStatusOutput(status)), "<Outputs>...");
//
// A null text leaves that device text missing (a null pointer in the record).
#ifndef KIV_TESTS_DISCOVERY_METADATATESTING_H
#define KIV_TESTS_DISCOVERY_METADATATESTING_H

#include <KivConfig/IMetadata.h>
#include <KivPlr/core/SmartPtr.h>
#include <VpSts/CStatus.h>

#include <cstdint>
#include <memory>
#include <string>

namespace KivTest {

inline void AddDevice(VpSts::CStatus& status, std::uint32_t number, const char* name,
                      const char* mac, const char* ipv4, const char* ipv6, const char* gateway,
                      const char* subnet)
{
    auto device = std::make_unique<VpSts::CNetworkDevice>(number);
    const char* texts[] = {name, mac, ipv4, ipv6, gateway, subnet};
    for (int field = 0; field < VpSts::CNetworkDevice::TextFieldCount; ++field) {
        if (texts[field] != nullptr)
            device->SetText(static_cast<VpSts::CNetworkDevice::TextField>(field), texts[field]);
    }
    status.networkDeviceList.Add(std::move(device));
}

inline void AddOutput(VpSts::CStatus& status, std::uint32_t number, std::uint32_t kind,
                      std::uint32_t rows, std::uint32_t columns)
{
    status.outputList.Add(VpSts::COutput(number, kind, rows, columns));
}

/// Refreshes \p provider once and returns its fragment.
inline std::string RefreshedXml(const KivPlr::SmartPtr<KivConfig::IMetadata>& provider)
{
    provider->Refresh();
    std::string xml;
    provider->GetXml(xml);
    return xml;
}

} // namespace KivTest

#endif

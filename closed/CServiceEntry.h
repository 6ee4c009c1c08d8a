// SPDX-License-Identifier: Apache-2.0
// CServiceEntry.h - one service of the unit's configuration: what kind of
// service it is and the TCP port it listens on.
//
// Entries are made by the configuration loader and owned by the record's
// CServiceList; readers get them as const pointers that stay valid until the
// next successful CConfig::LoadResources. Read from the loading thread only.
//
// Example:
//   #include <VpCfg/CConfig.h>
//   VpCfg::CConfig config;                  // the process uses gConfig
//   std::uint32_t managementPort = 0;
//   const VpCfg::CServiceEntry* entry = config.serviceList[0u];
//   if (entry != nullptr && entry->serviceKind == 0)
//       managementPort = entry->servicePort;
#ifndef KIV_CLOSED_CSERVICEENTRY_H
#define KIV_CLOSED_CSERVICEENTRY_H

#include <cstdint>

namespace VpCfg {

class CServiceEntry
{
public:
    /// An entry of kind \p kind on port \p port.
    CServiceEntry(std::uint32_t kind, std::uint16_t port);

    /// The kind of service, attribute kind of the file's service element.
    /// 0 marks the management service.
    std::uint32_t serviceKind;

    /// The port, attribute port of the file's service element.
    std::uint16_t servicePort;
};

} // namespace VpCfg

#endif

// SPDX-License-Identifier: Apache-2.0
#include <VpCfg/CServiceEntry.h>

namespace VpCfg {

CServiceEntry::CServiceEntry(std::uint32_t kind, std::uint16_t port) : serviceKind(kind), servicePort(port) {}

} // namespace VpCfg

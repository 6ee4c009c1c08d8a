// SPDX-License-Identifier: Apache-2.0
#include <VpCfg/CServiceEntry.h>

namespace VpCfg {

CServiceEntry::CServiceEntry(uint32_t kind, uint16_t port) : serviceKind(kind), servicePort(port) {}

} // namespace VpCfg

// SPDX-License-Identifier: Apache-2.0
#include <Discoveryd/Globals.h>

// Defined together so that they are built in this order and destroyed in the
// reverse one: the publisher goes before the records it reads.
VpCfg::CConfig gConfig;
VpSts::CStatus gStatus;
KivPlr::SmartPtr<KivConfig::DiscoverableServices> gServices;

// SPDX-License-Identifier: Apache-2.0
// Globals.h - the daemon's three process-wide objects.
//
// Constructed before main runs, in this order, and destroyed at exit in the
// reverse order. The configuration and status records are reloaded by the
// refresh loop once per cycle; gServices is empty until start-up fills it.
// Only the daemon's one thread touches them.
//
// Example:
//   #include <Discoveryd/ConfigurationPath.h>
//   ConfigurationPath configurationPath(ConfigurationPath::SettingsLink);
//   gConfig.LoadResources(configurationPath.Get());
//   gStatus.Load("/dev/shm/status.xml");
//   gServices->Update();
#ifndef KIV_APP_GLOBALS_H
#define KIV_APP_GLOBALS_H

#include <KivConfig/DiscoverableServices.h>
#include <KivPlr/core/SmartPtr.h>
#include <VpCfg/CConfig.h>
#include <VpSts/CStatus.h>

/// The unit's configuration record.
extern VpCfg::CConfig gConfig;
/// The unit's status record.
extern VpSts::CStatus gStatus;
/// The one publisher, created at start-up.
extern KivPlr::SmartPtr<KivConfig::DiscoverableServices> gServices;

#endif

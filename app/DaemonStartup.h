// SPDX-License-Identifier: Apache-2.0
// DaemonStartup.h - what the daemon does once before its refresh loop:
// create the output directory, install the Linux platform and create the
// publisher.
//
// Called once by the entry point on the main thread, after the configuration
// path is built. The installed platform and gServices live until exit.
//
// Example:
//   #include <KivConfig/DiscoverableServices.h>
//   ConfigurationPath configurationPath(ConfigurationPath::SettingsLink);
//   StartDaemon(KivConfig::DiscoverableServices::OutputDirectory);
#ifndef KIV_APP_DAEMONSTARTUP_H
#define KIV_APP_DAEMONSTARTUP_H

/// mkdir(\p outputDirectory, 0775) with the result ignored (an existing
/// directory is the normal case), Platform::SetInstance(new LinuxPlatform),
/// then gServices = a new DiscoverableServices over gConfig and gStatus that
/// writes into \p outputDirectory.
void StartDaemon(const char* outputDirectory);

#endif

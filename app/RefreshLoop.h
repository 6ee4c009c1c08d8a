// SPDX-License-Identifier: Apache-2.0
// RefreshLoop.h - the daemon's endless refresh cycle.
//
// Called once by the entry point after start-up, on the main thread. Each
// cycle loads the configuration, lets the collector rewrite the status
// snapshot before loading it, publishes, and only then pauses, so the first
// cycle runs at once and the period is the pause plus one cycle's work.
//
// Example:
//   #include <Discoveryd/ConfigurationPath.h>
//   #include <Discoveryd/DaemonRefreshSteps.h>
//   #include <Discoveryd/RefreshLoop.h>
//   ConfigurationPath configurationPath(ConfigurationPath::SettingsLink);
//   DaemonRefreshSteps steps;
//   RunRefreshLoop(steps, configurationPath.Get());
#ifndef KIV_APP_REFRESHLOOP_H
#define KIV_APP_REFRESHLOOP_H

#include <Discoveryd/RefreshSteps.h>

/// One cycle: LoadConfiguration(\p configurationPath), RunStatusCollector,
/// LoadStatus, Publish, Pause, in this order. Nothing is checked between the
/// steps; an exception from a step leaves the cycle at that step.
void RunRefreshCycle(RefreshSteps& steps, const char* configurationPath);

/// Runs RunRefreshCycle forever; only an exception (or a signal) ends it.
[[noreturn]] void RunRefreshLoop(RefreshSteps& steps, const char* configurationPath);

#endif

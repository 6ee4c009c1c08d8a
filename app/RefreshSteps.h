// SPDX-License-Identifier: Apache-2.0
// RefreshSteps.h - the five steps of one refresh cycle, as operations that
// the refresh loop calls in a fixed order.
//
// The daemon runs the loop with DaemonRefreshSteps, which reloads the real
// records and publishes; tests hand in steps that record the calls. Used by
// the one thread that runs the loop.
//
// Example:
//   #include <Discoveryd/ConfigurationPath.h>
//   #include <Discoveryd/DaemonRefreshSteps.h>
//   #include <Discoveryd/RefreshLoop.h>
//   ConfigurationPath configurationPath(ConfigurationPath::SettingsLink);
//   DaemonRefreshSteps steps;
//   RunRefreshLoop(steps, configurationPath.Get());   // never returns
#ifndef KIV_APP_REFRESHSTEPS_H
#define KIV_APP_REFRESHSTEPS_H

class RefreshSteps
{
public:
    virtual ~RefreshSteps() = default;

    /// Reloads the configuration record from \p configurationPath.
    virtual void LoadConfiguration(const char* configurationPath) = 0;
    /// Runs the status collector and waits until it has finished.
    virtual void RunStatusCollector() = 0;
    /// Reloads the status record from the snapshot the collector wrote.
    virtual void LoadStatus() = 0;
    /// Hands both records to the publisher.
    virtual void Publish() = 0;
    /// Waits until the next cycle is due.
    virtual void Pause() = 0;
};

#endif

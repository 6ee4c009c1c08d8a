// SPDX-License-Identifier: Apache-2.0
// DaemonRefreshSteps.h - the refresh steps of the real daemon: the process-
// wide records, the system's status collector and the 300-second pause.
//
// Made by the entry point on its stack and used by the refresh loop on the
// main thread; gServices must have been filled by StartDaemon first.
//
// Example:
//   #include <Discoveryd/ConfigurationPath.h>
//   #include <Discoveryd/DaemonRefreshSteps.h>
//   #include <Discoveryd/RefreshLoop.h>
//   ConfigurationPath configurationPath(ConfigurationPath::SettingsLink);
//   DaemonRefreshSteps steps;
//   RunRefreshLoop(steps, configurationPath.Get());
#ifndef KIV_APP_DAEMONREFRESHSTEPS_H
#define KIV_APP_DAEMONREFRESHSTEPS_H

#include <Discoveryd/RefreshSteps.h>

class DaemonRefreshSteps : public RefreshSteps
{
public:
    /// The collector's command line, run through the shell.
    static const char* const StatusCollectorCommand;
    /// The snapshot the collector writes and the status record is loaded from.
    static const char* const StatusFile;
    /// The pause between cycles, in seconds.
    static const unsigned int PeriodSeconds = 300;

    /// gConfig.LoadResources(\p configurationPath); the result is ignored and
    /// a bad file leaves the record as it was.
    void LoadConfiguration(const char* configurationPath) override;
    /// system(StatusCollectorCommand); a failing or missing collector is
    /// ignored and the old snapshot is read.
    void RunStatusCollector() override;
    /// gStatus.Load(StatusFile); the result is ignored.
    void LoadStatus() override;
    /// gServices->Update(); an empty gServices is fatal ("SmartPtr<T>-> NULL
    /// reference").
    void Publish() override;
    /// sleep(PeriodSeconds); an interrupted sleep is not resumed.
    void Pause() override;
};

#endif

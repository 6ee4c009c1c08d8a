// SPDX-License-Identifier: Apache-2.0
#include <Discoveryd/DaemonRefreshSteps.h>

#include <Discoveryd/Globals.h>

#include <cstdlib>
#include <unistd.h>

const char* const DaemonRefreshSteps::StatusCollectorCommand =
    "/usr/local/sbin/statuscollector -nolog";
const char* const DaemonRefreshSteps::StatusFile = "/dev/shm/status.xml";

void DaemonRefreshSteps::LoadConfiguration(const char* configurationPath)
{
    gConfig.LoadResources(configurationPath);
}

void DaemonRefreshSteps::RunStatusCollector()
{
    int ignored = std::system(StatusCollectorCommand);
    (void)ignored;
}

void DaemonRefreshSteps::LoadStatus()
{
    gStatus.Load(StatusFile);
}

void DaemonRefreshSteps::Publish()
{
    gServices->Update();
}

void DaemonRefreshSteps::Pause()
{
    sleep(PeriodSeconds);
}

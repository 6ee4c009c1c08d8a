// SPDX-License-Identifier: Apache-2.0
// The discovery daemon: publishes the unit's management service description
// every 300 seconds until a signal ends it. It takes no arguments.

#include <Discoveryd/ConfigurationPath.h>
#include <Discoveryd/DaemonRefreshSteps.h>
#include <Discoveryd/DaemonStartup.h>
#include <Discoveryd/RefreshLoop.h>
#include <KivConfig/DiscoverableServices.h>

int main()
{
    ConfigurationPath configurationPath(ConfigurationPath::SettingsLink);
    StartDaemon(KivConfig::DiscoverableServices::OutputDirectory);
    DaemonRefreshSteps steps;
    RunRefreshLoop(steps, configurationPath.Get());
}

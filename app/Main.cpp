// SPDX-License-Identifier: Apache-2.0
// The discovery daemon: publishes the unit's management service description
// every 300 seconds until a signal ends it. It takes no arguments.

#include "ConfigurationPath.h"
#include "DaemonRefreshSteps.h"
#include "DaemonStartup.h"
#include "DiscoverableServices.h"
#include "RefreshLoop.h"

int main()
{
    ConfigurationPath configurationPath(ConfigurationPath::SettingsLink);
    StartDaemon(KivConfig::DiscoverableServices::OutputDirectory);
    DaemonRefreshSteps steps;
    RunRefreshLoop(steps, configurationPath.Get());
}

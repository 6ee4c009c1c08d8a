// SPDX-License-Identifier: Apache-2.0
#include <Discoveryd/RefreshLoop.h>

void RunRefreshCycle(RefreshSteps& steps, const char* configurationPath)
{
    steps.LoadConfiguration(configurationPath);
    // The snapshot is read only after the collector has rewritten it, so the
    // publisher sees a configuration and a status of the same cycle.
    steps.RunStatusCollector();
    steps.LoadStatus();
    steps.Publish();
    steps.Pause();
}

void RunRefreshLoop(RefreshSteps& steps, const char* configurationPath)
{
    for (;;)
        RunRefreshCycle(steps, configurationPath);
}

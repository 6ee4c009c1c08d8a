// SPDX-License-Identifier: Apache-2.0
#include <Discoveryd/DaemonStartup.h>

#include <Discoveryd/Globals.h>
#include <KivPlr/core/LinuxPlatform.h>
#include <KivPlr/core/Platform.h>

#include <sys/stat.h>
#include <sys/types.h>

namespace {

const mode_t OutputDirectoryMode = 0775;

} // namespace

void StartDaemon(const char* outputDirectory)
{
    mkdir(outputDirectory, OutputDirectoryMode);
    KivPlr::Platform::SetInstance(new KivPlr::LinuxPlatform);
    gServices = new KivConfig::DiscoverableServices(gConfig, gStatus, outputDirectory);
}

// SPDX-License-Identifier: Apache-2.0
#include <Discoveryd/DaemonStartup.h>
#include <Discoveryd/Globals.h>
#include <KivConfig/DiscoverableServices.h>
#include <KivPlr/core/LinuxPlatform.h>
#include <KivPlr/core/Platform.h>
#include <KivTest/ChildProcess.h>
#include <KivTest/MountNamespace.h>
#include <KivTest/TemporaryDirectory.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

using KivTest::ChildOutcome;
using KivTest::MountNamespace;
using KivTest::RunInChild;
using KivTest::TemporaryDirectory;

namespace {

// Exit codes of the children below, so that a failure says which check failed.
enum ChildFault { NoFault = 0, NoPlatform = 2, NoPublisher, WrongMode, NoNamespace, NotPublished };

bool IsDirectory(const std::string& path, mode_t* mode = nullptr)
{
    struct stat info;
    if (stat(path.c_str(), &info) != 0 || !S_ISDIR(info.st_mode))
        return false;
    if (mode != nullptr)
        *mode = info.st_mode & 07777;
    return true;
}

// Start-up installs process-wide objects, so each check runs in a child.
void StartAndCheck(const std::string& outputDirectory)
{
    StartDaemon(outputDirectory.c_str());
    if (dynamic_cast<KivPlr::LinuxPlatform*>(KivPlr::Platform::GetInstance()) == nullptr)
        _exit(NoPlatform);
    if (!gServices)
        _exit(NoPublisher);
}

} // namespace

TEST(DaemonStartupTest, ProcessWideObjectsStartEmptyAndAtTheirDefaults)
{
    EXPECT_FALSE(gServices);
    EXPECT_STREQ(gConfig.computerName, "trxDefault");
    EXPECT_EQ(gStatus.networkDeviceList[0u], nullptr);
}

TEST(DaemonStartupTest, ExistingOutputDirectoryDoesNotStopStartUp)
{
    TemporaryDirectory directory;
    ChildOutcome outcome = RunInChild([&] { StartAndCheck(directory.Path()); });
    EXPECT_TRUE(outcome.exited);
    EXPECT_EQ(outcome.exitStatus, NoFault) << KivTest::Describe(outcome);
    EXPECT_TRUE(IsDirectory(directory.Path()));
}

TEST(DaemonStartupTest, MissingOutputDirectoryIsCreatedWithMode0775)
{
    TemporaryDirectory directory;
    std::string outputDirectory = directory.Path() + "/discovery";
    ChildOutcome outcome = RunInChild([&] {
        umask(0);
        StartAndCheck(outputDirectory);
        mode_t mode = 0;
        if (!IsDirectory(outputDirectory, &mode) || mode != 0775)
            _exit(WrongMode);
    });
    EXPECT_EQ(outcome.exitStatus, NoFault) << KivTest::Describe(outcome);
}

TEST(DaemonStartupTest, OutputDirectoryThatCannotBeMadeDoesNotStopStartUp)
{
    TemporaryDirectory directory;
    std::string outputDirectory = directory.Path() + "/missing/parent/discovery";
    ChildOutcome outcome = RunInChild([&] { StartAndCheck(outputDirectory); });
    EXPECT_EQ(outcome.exitStatus, NoFault) << KivTest::Describe(outcome);
    EXPECT_FALSE(IsDirectory(outputDirectory));
}

TEST(DaemonStartupTest, DaemonPublishesIntoAnExistingVarLibDiscovery)
{
    std::string reason;
    if (!MountNamespace::Available(reason))
        GTEST_SKIP() << reason;
    ChildOutcome outcome = RunInChild([] {
        std::string fault;
        if (!MountNamespace::Enter(fault) || !MountNamespace::MountTmpfs("/var/lib", fault) ||
            !MountNamespace::MakeDirectories("/var/lib/discovery"))
            _exit(NoNamespace);
        StartAndCheck(KivConfig::DiscoverableServices::OutputDirectory);
        gServices->Update();
        struct stat info;
        if (stat("/var/lib/discovery/Management.xml", &info) != 0)
            _exit(NotPublished);
    });
    EXPECT_EQ(outcome.exitStatus, NoFault) << KivTest::Describe(outcome);
    EXPECT_EQ(outcome.standardOutput, "saving management service description file\r\n");
}

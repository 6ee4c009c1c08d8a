// SPDX-License-Identifier: Apache-2.0
#include <Discoveryd/ConfigurationPath.h>
#include <Discoveryd/DaemonRefreshSteps.h>
#include <Discoveryd/DaemonStartup.h>
#include <Discoveryd/Globals.h>
#include <KivTest/ChildProcess.h>
#include <KivTest/MountNamespace.h>
#include <KivTest/TemporaryDirectory.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

using KivTest::ChildOutcome;
using KivTest::MountNamespace;
using KivTest::ReadFile;
using KivTest::RunInChild;
using KivTest::TemporaryDirectory;
using KivTest::WriteFile;

namespace {

enum ChildFault {
    NoFault = 0,
    NoNamespace = 2,
    ConfigurationNotLoaded,
    CollectorNotRun,
    StatusNotLoaded,
    LinkNotFollowed
};

// A stand-in collector: records its arguments, then writes a snapshot with
// model code 5 where the daemon reads it.
const char Collector[] = "#!/bin/sh\n"
                         "echo \"$@\" >> /usr/local/sbin/collector.log\n"
                         "printf '<status><modelCode>5</modelCode></status>' > /dev/shm/status.xml\n";

void EnterUnitFileSystem()
{
    std::string fault;
    if (!MountNamespace::Enter(fault) || !MountNamespace::MountTmpfs("/usr/local/sbin", fault) ||
        !MountNamespace::MountTmpfs("/dev/shm", fault) ||
        !MountNamespace::MountTmpfs("/home/Kiv/.settings", fault))
        _exit(NoNamespace);
    if (!WriteFile("/usr/local/sbin/statuscollector", Collector) ||
        chmod("/usr/local/sbin/statuscollector", 0755) != 0)
        _exit(NoNamespace);
}

} // namespace

TEST(DaemonRefreshStepsTest, CollectorRunsWithNologAndTheStatusIsLoadedFromDevShm)
{
    std::string reason;
    if (!MountNamespace::Available(reason))
        GTEST_SKIP() << reason;
    ChildOutcome outcome = RunInChild([] {
        EnterUnitFileSystem();
        DaemonRefreshSteps steps;
        if (gStatus.modelCode == 5)
            _exit(StatusNotLoaded);
        steps.RunStatusCollector();
        if (ReadFile("/usr/local/sbin/collector.log") != "-nolog\n")
            _exit(CollectorNotRun);
        steps.LoadStatus();
        if (gStatus.modelCode != 5)
            _exit(StatusNotLoaded);
    });
    EXPECT_EQ(outcome.exitStatus, NoFault) << KivTest::Describe(outcome);
}

TEST(DaemonRefreshStepsTest, MissingCollectorLeavesTheOldSnapshotToBeRead)
{
    std::string reason;
    if (!MountNamespace::Available(reason))
        GTEST_SKIP() << reason;
    ChildOutcome outcome = RunInChild([] {
        EnterUnitFileSystem();
        unlink("/usr/local/sbin/statuscollector");
        if (!WriteFile("/dev/shm/status.xml", "<status><modelCode>2</modelCode></status>"))
            _exit(NoNamespace);
        DaemonRefreshSteps steps;
        steps.RunStatusCollector();
        steps.LoadStatus();
        if (gStatus.modelCode != 2)
            _exit(StatusNotLoaded);
    });
    EXPECT_EQ(outcome.exitStatus, NoFault) << KivTest::Describe(outcome);
}

TEST(DaemonRefreshStepsTest, ConfigurationIsLoadedThroughTheUnitsSettingsLink)
{
    std::string reason;
    if (!MountNamespace::Available(reason))
        GTEST_SKIP() << reason;
    ChildOutcome outcome = RunInChild([] {
        EnterUnitFileSystem();
        const std::string configurationDirectory = "/dev/shm/settings/syscontrol/1.0/configuration";
        if (!MountNamespace::MakeDirectories(configurationDirectory) ||
            !WriteFile(configurationDirectory + "/configuration.xml",
                       "<configuration><computerName>unit-7</computerName></configuration>") ||
            symlink("/dev/shm/settings", "/home/Kiv/.settings/kivotrel") != 0)
            _exit(NoNamespace);
        ConfigurationPath configurationPath(ConfigurationPath::SettingsLink);
        if (configurationDirectory != configurationPath.Get())
            _exit(LinkNotFollowed);
        DaemonRefreshSteps steps;
        steps.LoadConfiguration(configurationPath.Get());
        if (std::strcmp(gConfig.computerName, "unit-7") != 0)
            _exit(ConfigurationNotLoaded);
    });
    EXPECT_EQ(outcome.exitStatus, NoFault) << KivTest::Describe(outcome);
}

TEST(DaemonRefreshStepsTest, PublishUpdatesTheStartedPublisher)
{
    TemporaryDirectory directory;
    ChildOutcome outcome = RunInChild([&] {
        StartDaemon(directory.Path().c_str());
        DaemonRefreshSteps steps;
        steps.Publish();
    });
    EXPECT_EQ(outcome.exitStatus, NoFault) << KivTest::Describe(outcome);
    EXPECT_EQ(outcome.standardOutput, "saving management service description file\r\n");
    EXPECT_FALSE(ReadFile(directory.Path() + "/Management.xml").empty());
}

TEST(DaemonRefreshStepsTest, PublishBeforeStartUpIsFatal)
{
    DaemonRefreshSteps steps;
    EXPECT_FATAL_SILENT(steps.Publish());
}

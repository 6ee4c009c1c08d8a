// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/DiscoverableServices.h>
#include <KivDiscoveryClient/DescriptionReader.h>
#include <KivPlr/core/LinuxPlatform.h>
#include <KivPlr/core/Platform.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivTest/ChildProcess.h>
#include <KivTest/RecordingLock.h>
#include <KivTest/StandardOutputCapture.h>
#include <KivTest/TemporaryDirectory.h>
#include <KivTest/WorkingDirectoryGuard.h>
#include <VpCfg/CConfig.h>
#include <VpSts/CStatus.h>
#include "RecordFiles.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using namespace KivConfig;
using KivDiscoveryClient::DescriptionReader;
using KivPlr::LinuxPlatform;
using KivPlr::Platform;
using KivPlr::SmartPtr;
using KivTest::ExpectedMetadata;
using KivTest::RecordFiles;
using KivTest::TemporaryDirectory;

namespace {

const char SavedLine[] = "saving management service description file\r\n";

std::string WorkingDirectory()
{
    char buffer[PATH_MAX];
    return getcwd(buffer, sizeof buffer) != nullptr ? buffer : "";
}

bool Exists(const std::string& path)
{
    struct stat info;
    return lstat(path.c_str(), &info) == 0;
}

// What one Update left behind.
struct Cycle
{
    bool written = false; // a new description file appeared
    std::string printed;  // everything on standard output
};

class DiscoverableServicesTest : public ::testing::Test
{
protected:
    DiscoverableServicesTest()
        : files(directory.Path()), outputDirectory(directory.Path() + "/out"),
          descriptionFile(outputDirectory + "/Management.xml"), testDirectory(WorkingDirectory())
    {
    }

    void SetUp() override
    {
        ASSERT_EQ(mkdir(outputDirectory.c_str(), 0775), 0) << std::strerror(errno);
        Platform::SetInstance(new LinuxPlatform);
        services = new DiscoverableServices(config, status, outputDirectory);
    }

    void TearDown() override
    {
        services.Reset();
        Platform::ClearInstance();
        EXPECT_EQ(chdir(testDirectory.c_str()), 0);
    }

    // Runs one Update. The description file is removed first, so that a file
    // found afterwards was written by this cycle.
    Cycle RunCycle()
    {
        unlink(descriptionFile.c_str());
        Cycle cycle;
        KivTest::StandardOutputCapture capture;
        services->Update();
        cycle.printed = capture.Finish();
        cycle.written = Exists(descriptionFile);
        return cycle;
    }

    DescriptionReader Description()
    {
        DescriptionReader reader;
        EXPECT_TRUE(reader.Load(descriptionFile.c_str())) << reader.ErrorMessage();
        return reader;
    }

    TemporaryDirectory directory;
    RecordFiles files;
    std::string outputDirectory;
    std::string descriptionFile;
    std::string testDirectory;
    VpCfg::CConfig config;
    VpSts::CStatus status;
    SmartPtr<DiscoverableServices> services;
};

} // namespace

TEST_F(DiscoverableServicesTest, EmptyServiceListPublishesPort80InTheFirstDescription)
{
    files.LoadConfiguration(config, "unit-1", {});
    files.LoadStatus(status, 3);
    Cycle cycle = RunCycle();
    ASSERT_TRUE(cycle.written);
    EXPECT_EQ(Description().Port(), 80);
}

TEST_F(DiscoverableServicesTest, FirstDescriptionCarriesNameTypeScopeAndTheWholeMetadata)
{
    files.LoadConfiguration(config, "unit-1", {{0, 8080}});
    files.LoadStatus(status, 3);
    ASSERT_TRUE(RunCycle().written);
    DescriptionReader description = Description();
    EXPECT_EQ(description.Name(), "Management");
    EXPECT_EQ(description.Types(), std::vector<std::string>{"cpp:Management"});
    EXPECT_EQ(description.Scopes(), std::vector<std::string>{
                                        "http://standards.kivotrel.example/2011/videoprocessor/trx"});
    EXPECT_EQ(description.Port(), 8080);
    EXPECT_EQ(description.MetaData(), ExpectedMetadata("unit-1", "TRX-7250"));
}

TEST_F(DiscoverableServicesTest, DefaultRecordsArePublishedAsTheyAre)
{
    ASSERT_TRUE(RunCycle().written);
    DescriptionReader description = Description();
    EXPECT_EQ(description.Port(), 80);
    EXPECT_EQ(description.MetaData(),
              std::string("<cpp:Config><Description>") + config.descriptionText +
                  "</Description><TimeZone>" + config.timeZoneName +
                  "</TimeZone><ComputerName>trxDefault</ComputerName></cpp:Config>"
                  "<cpp:State><ProductFamily>TRX-7060</ProductFamily><Network></Network>"
                  "<Outputs></Outputs></cpp:State>"
                  "<cpp:DiscoveryVersion>1</cpp:DiscoveryVersion>");
}

TEST_F(DiscoverableServicesTest, TwoIdenticalCyclesWriteOnceAndPrintTwice)
{
    files.LoadConfiguration(config, "unit-1", {{0, 8080}});
    files.LoadStatus(status, 3);
    Cycle first = RunCycle();
    Cycle second = RunCycle();
    EXPECT_TRUE(first.written);
    EXPECT_FALSE(second.written);
    EXPECT_EQ(first.printed, SavedLine);
    EXPECT_EQ(second.printed, SavedLine);
}

TEST_F(DiscoverableServicesTest, ManagementEntryOnPort80DoesNotByItselfMarkTheDescription)
{
    files.LoadConfiguration(config, "unit-1", {});
    files.LoadStatus(status, 3);
    EXPECT_TRUE(RunCycle().written);
    files.LoadConfiguration(config, "unit-1", {{0, 80}});
    EXPECT_FALSE(RunCycle().written);
}

TEST_F(DiscoverableServicesTest, FirstCycleWithAManagementEntryOnPort80WritesBecauseOfTheMetadata)
{
    files.LoadConfiguration(config, "unit-1", {{0, 80}});
    files.LoadStatus(status, 3);
    EXPECT_TRUE(RunCycle().written);
    EXPECT_EQ(Description().Port(), 80);
    EXPECT_FALSE(RunCycle().written);
}

TEST_F(DiscoverableServicesTest, PortChangeAloneWritesInThatCycleAndNotInTheNext)
{
    files.LoadConfiguration(config, "unit-1", {{0, 80}});
    files.LoadStatus(status, 3);
    EXPECT_TRUE(RunCycle().written);
    EXPECT_FALSE(RunCycle().written);

    files.LoadConfiguration(config, "unit-1", {{0, 8080}});
    ASSERT_TRUE(RunCycle().written);
    EXPECT_EQ(Description().Port(), 8080);
    EXPECT_FALSE(RunCycle().written);
}

TEST_F(DiscoverableServicesTest, ServiceOfAnotherKindNeverChangesThePort)
{
    files.LoadConfiguration(config, "unit-1", {{2, 554}, {1, 8443}});
    files.LoadStatus(status, 3);
    ASSERT_TRUE(RunCycle().written);
    EXPECT_EQ(Description().Port(), 80);
    files.LoadConfiguration(config, "unit-1", {{2, 555}, {1, 9443}});
    EXPECT_FALSE(RunCycle().written);
}

TEST_F(DiscoverableServicesTest, TwoManagementEntriesRewriteEveryCycleWithTheLastPort)
{
    files.LoadConfiguration(config, "unit-1", {{0, 8080}, {2, 554}, {0, 9090}});
    files.LoadStatus(status, 3);
    for (int cycle = 0; cycle < 3; ++cycle) {
        ASSERT_TRUE(RunCycle().written) << "cycle " << cycle;
        EXPECT_EQ(Description().Port(), 9090);
    }
}

TEST_F(DiscoverableServicesTest, WithoutAManagementEntryThePreviousPortStays)
{
    files.LoadConfiguration(config, "unit-1", {{0, 8080}});
    files.LoadStatus(status, 3);
    ASSERT_TRUE(RunCycle().written);
    files.LoadConfiguration(config, "unit-2", {});
    ASSERT_TRUE(RunCycle().written);
    DescriptionReader description = Description();
    EXPECT_EQ(description.Port(), 8080);
    EXPECT_EQ(description.MetaData(), ExpectedMetadata("unit-2", "TRX-7250"));
}

TEST_F(DiscoverableServicesTest, ConfigurationChangeRewritesOnceWithTheNewText)
{
    files.LoadConfiguration(config, "unit-1", {{0, 8080}});
    files.LoadStatus(status, 3);
    RunCycle();
    files.LoadConfiguration(config, "unit-2", {{0, 8080}});
    ASSERT_TRUE(RunCycle().written);
    EXPECT_EQ(Description().MetaData(), ExpectedMetadata("unit-2", "TRX-7250"));
    EXPECT_FALSE(RunCycle().written);
}

TEST_F(DiscoverableServicesTest, StatusChangeRewritesOnceWithTheNewText)
{
    files.LoadConfiguration(config, "unit-1", {{0, 8080}});
    files.LoadStatus(status, 3);
    RunCycle();
    files.LoadStatus(status, 4);
    ASSERT_TRUE(RunCycle().written);
    EXPECT_EQ(Description().MetaData(), ExpectedMetadata("unit-1", "TRX-7150"));
    EXPECT_FALSE(RunCycle().written);
}

TEST_F(DiscoverableServicesTest, ChangeOfBothGroupsInOneCycleWritesOnceAndClearsBoth)
{
    files.LoadConfiguration(config, "unit-1", {{0, 8080}});
    files.LoadStatus(status, 3);
    RunCycle();
    files.LoadConfiguration(config, "unit-2", {{0, 8080}});
    files.LoadStatus(status, 4);
    EXPECT_TRUE(RunCycle().written);
    EXPECT_FALSE(RunCycle().written);
}

TEST_F(DiscoverableServicesTest, WorkingDirectoryIsRestoredWhetherOrNotTheFileIsWritten)
{
    // The round trip goes through directory managers of the publisher's own,
    // never through the platform's factory slot.
    class CountingPlatform : public LinuxPlatform
    {
    public:
        KivPlr::IDirectoryManager* CreateDirectoryManager() override
        {
            ++directoryManagers;
            return LinuxPlatform::CreateDirectoryManager();
        }
        int directoryManagers = 0;
    };
    SmartPtr<CountingPlatform> platform(new CountingPlatform);
    Platform::SetInstance(platform.Get());
    services = new DiscoverableServices(config, status, outputDirectory);

    TemporaryDirectory elsewhere;
    ASSERT_EQ(chdir(elsewhere.Path().c_str()), 0);
    files.LoadConfiguration(config, "unit-1", {});
    files.LoadStatus(status, 3);
    EXPECT_TRUE(RunCycle().written);
    EXPECT_EQ(WorkingDirectory(), elsewhere.Path());
    EXPECT_FALSE(RunCycle().written);
    EXPECT_EQ(WorkingDirectory(), elsewhere.Path());
    EXPECT_FALSE(Exists(elsewhere.Path() + "/Management.xml"));
    EXPECT_EQ(platform->directoryManagers, 0);
}

TEST_F(DiscoverableServicesTest, WorkingDirectoryTooLongForTheDirectoryManagerIsNotReturnedTo)
{
    // The directory manager reads working directories of up to 1023 bytes.
    // From a deeper one the publisher has nothing to return to and stays in
    // the output directory; the daemon runs from "/", where this cannot happen.
    TemporaryDirectory elsewhere;
    std::string deep = elsewhere.Path();
    while (deep.size() < 1100) {
        deep += "/" + std::string(100, 'd');
        ASSERT_EQ(mkdir(deep.c_str(), 0755), 0) << std::strerror(errno);
    }
    KivTest::WorkingDirectoryGuard guard;
    ASSERT_EQ(chdir(deep.c_str()), 0);
    files.LoadConfiguration(config, "unit-1", {});
    files.LoadStatus(status, 3);
    EXPECT_TRUE(RunCycle().written);
    EXPECT_EQ(WorkingDirectory(), outputDirectory);
    EXPECT_FALSE(Exists(deep + "/Management.xml"));
}

TEST_F(DiscoverableServicesTest, MissingOutputDirectoryLeavesTheFileInTheWorkingDirectory)
{
    TemporaryDirectory elsewhere;
    ASSERT_EQ(chdir(elsewhere.Path().c_str()), 0);
    ASSERT_EQ(rmdir(outputDirectory.c_str()), 0);
    KivTest::StandardOutputCapture capture;
    services->Update();
    EXPECT_EQ(capture.Finish(), SavedLine);
    EXPECT_TRUE(Exists(elsewhere.Path() + "/Management.xml"));
    EXPECT_EQ(WorkingDirectory(), elsewhere.Path());
}

TEST_F(DiscoverableServicesTest, FailedWriteIsNotTriedAgainUntilSomethingChanges)
{
    files.LoadConfiguration(config, "unit-1", {{0, 8080}});
    files.LoadStatus(status, 3);
    // A directory in the file's place makes the write fail.
    ASSERT_EQ(mkdir(descriptionFile.c_str(), 0755), 0);
    {
        KivTest::StandardOutputCapture capture;
        services->Update();
        EXPECT_EQ(capture.Finish(), SavedLine);
    }
    ASSERT_EQ(rmdir(descriptionFile.c_str()), 0);

    Cycle unchanged = RunCycle();
    EXPECT_FALSE(unchanged.written);
    EXPECT_EQ(unchanged.printed, SavedLine);

    files.LoadConfiguration(config, "unit-1", {{0, 8081}});
    EXPECT_TRUE(RunCycle().written);
}

TEST_F(DiscoverableServicesTest, LineIsFlushedAtOnceIntoAPipe)
{
    // Standard output into a pipe is fully buffered; the child never exits
    // normally, so only a flushed line reaches the reader.
    KivTest::ChildOutcome outcome = KivTest::RunInChild([this] {
        services->Update();
        _exit(0);
    });
    EXPECT_EQ(outcome.standardOutput, SavedLine);
}

TEST_F(DiscoverableServicesTest, UpdateTakesAndReleasesTheLockFromThePlatformOnce)
{
    class RecordingLockPlatform : public LinuxPlatform
    {
    public:
        KivPlr::ILock* CreateLock() override
        {
            lock = new KivTest::RecordingLock;
            return lock.Get();
        }
        SmartPtr<KivTest::RecordingLock> lock;
    };
    SmartPtr<RecordingLockPlatform> platform(new RecordingLockPlatform);
    Platform::SetInstance(platform.Get());
    SmartPtr<DiscoverableServices> locked(new DiscoverableServices(config, status, outputDirectory));
    ASSERT_TRUE(platform->lock);
    EXPECT_TRUE(platform->lock->Calls().empty());
    {
        KivTest::StandardOutputCapture capture;
        locked->Update();
    }
    EXPECT_EQ(platform->lock->Calls(), (std::vector<std::string>{"Lock", "Unlock"}));
}

TEST_F(DiscoverableServicesTest, ConstructionWithoutAnInstalledPlatformIsFatal)
{
    Platform::ClearInstance();
    EXPECT_FATAL_SILENT(new DiscoverableServices(config, status, outputDirectory));
}

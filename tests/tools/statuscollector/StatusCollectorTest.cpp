// SPDX-License-Identifier: Apache-2.0
#include <StatusCollector/StatusCollector.h>

#include <KivTest/ChildProcess.h>
#include <KivTest/DirectoryListing.h>
#include <KivTest/MountNamespace.h>
#include <KivTest/TemporaryDirectory.h>
#include <KivTest/WorkingDirectoryGuard.h>
#include <StatusCollector/DrmOutputScanner.h>
#include <StatusCollector/ModelCodeSetting.h>
#include <StatusCollector/NetworkDeviceScanner.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using KivCollector::CollectedStatus;
using KivCollector::DefaultGatewayTable;
using KivCollector::ModelCodeSetting;
using KivCollector::NetworkDeviceScanner;
using KivCollector::StatusCollector;
using KivTest::ReadFile;
using KivTest::TemporaryDirectory;
using KivTest::WriteFile;

namespace {

std::string WorkingDirectory()
{
    char buffer[4096];
    return getcwd(buffer, sizeof buffer) != nullptr ? buffer : "";
}

const char RouteHeader[] = "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";

} // namespace

TEST(StatusCollectorPublishTest, ReplacesTheFileByRenamingANewOne)
{
    TemporaryDirectory directory;
    std::string file = directory.Path() + "/status.xml";
    std::string earlier = directory.Path() + "/earlier";
    ASSERT_TRUE(WriteFile(file, "old snapshot"));
    ASSERT_EQ(link(file.c_str(), earlier.c_str()), 0);
    std::string fault;
    EXPECT_TRUE(StatusCollector::Publish("new snapshot", file, fault)) << fault;
    EXPECT_EQ(ReadFile(file), "new snapshot");
    // The old file was never opened for writing: its other name still has it whole.
    EXPECT_EQ(ReadFile(earlier), "old snapshot");
    struct stat fileInformation, earlierInformation;
    ASSERT_EQ(stat(file.c_str(), &fileInformation), 0);
    ASSERT_EQ(stat(earlier.c_str(), &earlierInformation), 0);
    EXPECT_NE(fileInformation.st_ino, earlierInformation.st_ino);
}

TEST(StatusCollectorPublishTest, LeavesNoTemporaryFileBehind)
{
    TemporaryDirectory directory;
    std::string fault;
    EXPECT_TRUE(StatusCollector::Publish("one", directory.Path() + "/status.xml", fault)) << fault;
    EXPECT_TRUE(StatusCollector::Publish("two", directory.Path() + "/status.xml", fault)) << fault;
    EXPECT_EQ(KivTest::ListDirectory(directory.Path()), std::vector<std::string>{"status.xml"});
}

TEST(StatusCollectorPublishTest, CreatesTheFileWithMode0644WhateverTheUmask)
{
    TemporaryDirectory directory;
    std::string file = directory.Path() + "/status.xml";
    mode_t oldMask = umask(077);
    std::string fault;
    bool published = StatusCollector::Publish("text", file, fault);
    umask(oldMask);
    ASSERT_TRUE(published) << fault;
    struct stat information;
    ASSERT_EQ(stat(file.c_str(), &information), 0);
    EXPECT_EQ(information.st_mode & 07777, 0644u);
}

TEST(StatusCollectorPublishTest, AMissingDirectoryFailsAndWritesNothing)
{
    TemporaryDirectory directory;
    std::string file = directory.Path() + "/missing/status.xml";
    std::string fault;
    EXPECT_FALSE(StatusCollector::Publish("text", file, fault));
    EXPECT_EQ(fault, file + ": cannot enter " + directory.Path() + "/missing: No such file or directory");
    EXPECT_TRUE(KivTest::ListDirectory(directory.Path()).empty());
}

TEST(StatusCollectorPublishTest, APathWithoutAFileNameFails)
{
    TemporaryDirectory directory;
    std::string fault;
    EXPECT_FALSE(StatusCollector::Publish("text", directory.Path() + "/", fault));
    EXPECT_EQ(fault, directory.Path() + "/: not a file name");
    EXPECT_FALSE(StatusCollector::Publish("text", directory.Path() + "/..", fault));
    EXPECT_FALSE(StatusCollector::Publish("text", "", fault));
    EXPECT_TRUE(KivTest::ListDirectory(directory.Path()).empty());
}

TEST(StatusCollectorPublishTest, ADirectoryAtThePathIsRefusedByNameAndLeftAsItIs)
{
    TemporaryDirectory directory;
    std::string file = directory.Path() + "/status.xml";
    ASSERT_EQ(mkdir(file.c_str(), 0755), 0);
    ASSERT_TRUE(WriteFile(file + "/inside", "kept"));
    std::string fault;
    EXPECT_FALSE(StatusCollector::CheckOutputPath(file, fault));
    EXPECT_EQ(fault, file + " is a directory, not a regular file: not replaced, left as it is");
    fault.clear();
    EXPECT_FALSE(StatusCollector::Publish("text", file, fault));
    EXPECT_EQ(fault, file + " is a directory, not a regular file: not replaced, left as it is");
    EXPECT_EQ(KivTest::ListDirectory(directory.Path()), std::vector<std::string>{"status.xml"});
    EXPECT_EQ(KivTest::ListDirectory(file), std::vector<std::string>{"inside"});
    EXPECT_EQ(ReadFile(file + "/inside"), "kept");
}

TEST(StatusCollectorPublishTest, AFreePathOrARegularFilePassesTheCheck)
{
    TemporaryDirectory directory;
    std::string file = directory.Path() + "/status.xml";
    std::string fault;
    EXPECT_TRUE(StatusCollector::CheckOutputPath(file, fault)) << fault;
    ASSERT_TRUE(WriteFile(file, "earlier"));
    EXPECT_TRUE(StatusCollector::CheckOutputPath(file, fault)) << fault;
    EXPECT_EQ(fault, "");
}

TEST(StatusCollectorPublishTest, KeepsTheWorkingDirectoryAndResolvesRelativePathsAgainstIt)
{
    TemporaryDirectory directory;
    ASSERT_EQ(mkdir((directory.Path() + "/sub").c_str(), 0755), 0);
    std::string fault;
    bool relative, plain, failed;
    std::string during;
    {
        KivTest::WorkingDirectoryGuard enter(directory.Path());
        relative = StatusCollector::Publish("relative", "sub/status.xml", fault);
        plain = StatusCollector::Publish("plain", "status.xml", fault);
        failed = StatusCollector::Publish("never", "missing/status.xml", fault);
        during = WorkingDirectory();
    }
    EXPECT_TRUE(relative);
    EXPECT_TRUE(plain);
    EXPECT_FALSE(failed);
    EXPECT_EQ(during, directory.Path());
    EXPECT_EQ(ReadFile(directory.Path() + "/sub/status.xml"), "relative");
    EXPECT_EQ(ReadFile(directory.Path() + "/status.xml"), "plain");
}

TEST(StatusCollectorPublishTest, OnAFullDiskThePreviousSnapshotStaysWholeAndNoTemporaryFileIsLeft)
{
    std::string reason;
    if (!KivTest::MountNamespace::Available(reason))
        GTEST_SKIP() << reason;
    TemporaryDirectory directory;
    std::string full = directory.Path() + "/full";
    ASSERT_EQ(mkdir(full.c_str(), 0755), 0);
    KivTest::ChildOutcome outcome = KivTest::RunInChild([&full] {
        std::string fault;
        if (!KivTest::MountNamespace::Enter(fault) || !KivTest::MountNamespace::MountTmpfs(full, fault, "size=64k")) {
            std::printf("setup: %s", fault.c_str());
            return;
        }
        std::string file = full + "/status.xml";
        WriteFile(file, "previous snapshot");
        std::string large(1024 * 1024, 'x');
        bool published = StatusCollector::Publish(large, file, fault);
        std::vector<std::string> entries = KivTest::ListDirectory(full);
        std::printf("published=%d content=%s entries=%zu fault=%s", published ? 1 : 0, ReadFile(file).c_str(),
                    entries.size(), fault.c_str());
    });
    EXPECT_EQ(outcome.standardOutput,
              "published=0 content=previous snapshot entries=1 fault=status.xml: cannot write status.xml in " + full +
                  ": No space left on device");
}

TEST(StatusCollectorCollectTest, TakesGatewaysFromTheRouteTableAndOutputsFromTheGraphicsDirectory)
{
    std::vector<CollectedStatus::NetworkDevice> devices;
    std::string fault;
    ASSERT_TRUE(NetworkDeviceScanner().Scan(DefaultGatewayTable(), devices, fault)) << fault;
    if (devices.empty())
        GTEST_SKIP() << "this machine has no network interface other than loopback";
    TemporaryDirectory directory;
    std::string routeFile = directory.Path() + "/route";
    // 203.0.113.77 as the kernel prints it on a machine of either byte order.
    const unsigned char gatewayBytes[4] = {203, 0, 113, 77};
    std::uint32_t gatewayWord;
    std::memcpy(&gatewayWord, gatewayBytes, 4);
    char gatewayHex[16];
    std::snprintf(gatewayHex, sizeof gatewayHex, "%08X", static_cast<unsigned int>(gatewayWord));
    ASSERT_TRUE(WriteFile(routeFile, std::string(RouteHeader) + devices.front().name + "\t00000000\t" + gatewayHex +
                                         "\t0003\t0\t0\t0\t00000000\t0\t0\t0\n"));
    std::string drm = directory.Path() + "/drm";
    ASSERT_EQ(mkdir(drm.c_str(), 0755), 0);
    ASSERT_EQ(mkdir((drm + "/card0-DP-1").c_str(), 0755), 0);
    ASSERT_TRUE(WriteFile(drm + "/card0-DP-1/status", "connected\n"));

    CollectedStatus status;
    std::vector<std::string> warnings;
    ASSERT_TRUE(StatusCollector(routeFile, drm).Collect(status, warnings, fault)) << fault;
    ASSERT_FALSE(status.networkDevices.empty());
    EXPECT_EQ(status.networkDevices.front().name, devices.front().name);
    EXPECT_EQ(status.networkDevices.front().gateway, std::optional<std::string>("203.0.113.77"));
    for (std::size_t index = 1; index < status.networkDevices.size(); ++index)
        EXPECT_EQ(status.networkDevices[index].gateway, std::nullopt);
    ASSERT_EQ(status.outputs.size(), 1u);
    EXPECT_EQ(status.outputs[0].kind, CollectedStatus::ConnectedKind);
}

TEST(StatusCollectorCollectTest, AnUnreadableRouteTableFailsAndLeavesTheStatusAlone)
{
    TemporaryDirectory directory;
    CollectedStatus status;
    status.modelCode = 12;
    std::vector<std::string> warnings;
    std::string fault;
    EXPECT_FALSE(StatusCollector(directory.Path() + "/route", directory.Path()).Collect(status, warnings, fault));
    EXPECT_EQ(fault, "cannot open " + directory.Path() + "/route: No such file or directory");
    EXPECT_EQ(status.modelCode, 12u);
}

TEST(StatusCollectorCollectTest, AnUnreadableGraphicsDirectoryFailsAndLeavesTheStatusAlone)
{
    TemporaryDirectory directory;
    ASSERT_TRUE(WriteFile(directory.Path() + "/route", RouteHeader));
    ASSERT_TRUE(WriteFile(directory.Path() + "/drm", "not a directory"));
    CollectedStatus status;
    status.modelCode = 12;
    std::vector<std::string> warnings;
    std::string fault;
    EXPECT_FALSE(
        StatusCollector(directory.Path() + "/route", directory.Path() + "/drm").Collect(status, warnings, fault));
    EXPECT_EQ(fault, "cannot read " + directory.Path() + "/drm: Not a directory");
    EXPECT_EQ(status.modelCode, 12u);
}

TEST(StatusCollectorCollectTest, ABadModelCodeSettingWarnsButCollects)
{
    TemporaryDirectory directory;
    ASSERT_TRUE(WriteFile(directory.Path() + "/route", RouteHeader));
    const char* old = std::getenv(ModelCodeSetting::VariableName);
    std::string oldValue = old != nullptr ? old : "";
    setenv(ModelCodeSetting::VariableName, "three", 1);
    CollectedStatus status;
    status.modelCode = 12;
    std::vector<std::string> warnings;
    std::string fault;
    bool collected =
        StatusCollector(directory.Path() + "/route", directory.Path() + "/none").Collect(status, warnings, fault);
    if (old != nullptr)
        setenv(ModelCodeSetting::VariableName, oldValue.c_str(), 1);
    else
        unsetenv(ModelCodeSetting::VariableName);
    EXPECT_TRUE(collected) << fault;
    EXPECT_EQ(status.modelCode, CollectedStatus::UnknownModelCode);
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_EQ(warnings[0].rfind("STATUSCOLLECTOR_MODEL_CODE=\"three\"", 0), 0u) << warnings[0];
}

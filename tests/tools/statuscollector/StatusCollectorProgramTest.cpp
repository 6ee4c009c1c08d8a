// SPDX-License-Identifier: Apache-2.0
// Tests of the statuscollector program as the daemon runs it: command line,
// diagnostics, the snapshot it writes and where.

#include <KivTest/DirectoryListing.h>
#include <KivTest/Emulation.h>
#include <KivTest/MountNamespace.h>
#include <KivTest/ShellCommand.h>
#include <KivTest/TemporaryDirectory.h>
#include <VpSts/CStatus.h>
#include "ExpectedNetwork.h"

#include <cstdlib>
#include <functional>
#include <sys/stat.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

using KivTest::ChildOutcome;
using KivTest::Describe;
using KivTest::MountNamespace;
using KivTest::ShellQuote;
using KivTest::TemporaryDirectory;

namespace {

/// The command that starts the collector, with the model code setting
/// removed from its environment unless \p modelCode says otherwise.
std::string Collector(const std::string& arguments, const std::string& modelCode = "")
{
    std::string environment = modelCode.empty() ? "env -u STATUSCOLLECTOR_MODEL_CODE "
                                                : "env STATUSCOLLECTOR_MODEL_CODE=" + ShellQuote(modelCode) + " ";
    return environment + KivTest::EmulatorPrefix() + ShellQuote(KIV_STATUSCOLLECTOR_PROGRAM) + " " + arguments;
}

/// Runs \p command in a child inside a private mount namespace after
/// \p setup has made its mounts there. The child's exit status is the
/// command's; a setup that fails exits with 99 and says why on stderr.
ChildOutcome RunInNamespace(const std::function<bool(std::string&)>& setup, const std::string& command)
{
    return KivTest::RunInChild([&] {
        std::string fault;
        if (!MountNamespace::Enter(fault) || !setup(fault)) {
            std::fprintf(stderr, "setup: %s", fault.c_str());
            std::fflush(stderr);
            _exit(99);
        }
        int status = std::system(command.c_str());
        std::fflush(nullptr);
        _exit(WIFEXITED(status) ? WEXITSTATUS(status) : 98);
    });
}

/// Loads \p file through the status library, as the daemon does.
void Load(const std::string& file, VpSts::CStatus& status)
{
    ASSERT_TRUE(status.Load(file.c_str())) << status.ErrorMessage() << "\n" << KivTest::ReadFile(file);
}

std::vector<std::string> DeviceLines(const VpSts::CStatus& status)
{
    std::vector<std::string> lines;
    for (unsigned int index = 0; status.networkDeviceList[index] != nullptr; ++index) {
        const VpSts::CNetworkDevice* device = status.networkDeviceList[index];
        lines.push_back(KivTest::DeviceLine(device->deviceNumber, device->name != nullptr ? device->name : "(null)",
                                            {device->macAddress, device->ipv4Address, device->ipv6Address,
                                             device->gateway, device->subnet}));
    }
    return lines;
}

/// "number:kind:rows:columns" of every output.
std::vector<std::string> OutputLines(const VpSts::CStatus& status)
{
    std::vector<std::string> lines;
    for (unsigned int index = 0; status.outputList[index] != nullptr; ++index) {
        const VpSts::COutput* output = status.outputList[index];
        lines.push_back(std::to_string(output->outputNumber) + ":" + std::to_string(output->outputKind) + ":" +
                        std::to_string(output->translationRows) + ":" +
                        std::to_string(output->translationColumns));
    }
    return lines;
}

/// Covers the graphics directory with an empty tmpfs and makes the
/// connectors of \p statuses (name, status text) in it.
std::function<bool(std::string&)> FakeGraphicsDirectory(std::vector<std::pair<std::string, std::string>> statuses)
{
    return [statuses](std::string& fault) {
        if (!MountNamespace::MountTmpfs("/sys/class/drm", fault))
            return false;
        for (const auto& [name, text] : statuses) {
            std::string connector = "/sys/class/drm/" + name;
            if (!MountNamespace::MakeDirectories(connector) || !KivTest::WriteFile(connector + "/status", text)) {
                fault = "cannot make " + connector;
                return false;
            }
        }
        return true;
    };
}

} // namespace

TEST(StatusCollectorProgramTest, WritesTheNetworkThatIpReportsForThisMachine)
{
    std::vector<std::string> expected;
    std::string reason;
    if (!KivTest::ExpectedNetworkLines(expected, reason))
        GTEST_SKIP() << reason;
    TemporaryDirectory directory;
    std::string file = directory.Path() + "/status.xml";
    ChildOutcome outcome = KivTest::RunShellCommand(Collector("-nolog -output " + ShellQuote(file)));
    ASSERT_EQ(outcome.exitStatus, 0) << Describe(outcome);
    VpSts::CStatus status;
    Load(file, status);
    // Loaded, no item is null ("-"): what an interface lacks is an empty text.
    for (std::string& line : expected)
        line = KivTest::AbsentItemsEmpty(line);
    EXPECT_EQ(DeviceLines(status), expected);
    EXPECT_EQ(status.modelCode, 4294967295u);
}

TEST(StatusCollectorProgramTest, NologPrintsNothingAtAll)
{
    TemporaryDirectory directory;
    ChildOutcome outcome =
        KivTest::RunShellCommand(Collector("-nolog -output " + ShellQuote(directory.Path() + "/status.xml")));
    EXPECT_TRUE(outcome.exited);
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.standardOutput, "");
    EXPECT_EQ(outcome.standardError, "");
}

TEST(StatusCollectorProgramTest, WithoutNologItSaysWhatItWroteOnStandardError)
{
    TemporaryDirectory directory;
    std::string file = directory.Path() + "/status.xml";
    ChildOutcome outcome = KivTest::RunShellCommand(Collector("-output " + ShellQuote(file), "3"));
    ASSERT_EQ(outcome.exitStatus, 0) << Describe(outcome);
    VpSts::CStatus status;
    Load(file, status);
    unsigned int devices = 0;
    while (status.networkDeviceList[devices] != nullptr)
        ++devices;
    EXPECT_EQ(outcome.standardOutput, "");
    EXPECT_EQ(outcome.standardError, "statuscollector: wrote " + file + ": " + std::to_string(devices) +
                                         " network devices, 0 outputs, model code 3\n");
}

TEST(StatusCollectorProgramTest, TakesTheModelCodeFromItsSetting)
{
    TemporaryDirectory directory;
    std::string file = directory.Path() + "/status.xml";
    ChildOutcome outcome = KivTest::RunShellCommand(Collector("-nolog -output " + ShellQuote(file), "17"));
    ASSERT_EQ(outcome.exitStatus, 0) << Describe(outcome);
    VpSts::CStatus status;
    Load(file, status);
    EXPECT_EQ(status.modelCode, 17u);
}

TEST(StatusCollectorProgramTest, ABadModelCodeSettingIsReportedAndLeavesTheModelUnknown)
{
    TemporaryDirectory directory;
    std::string file = directory.Path() + "/status.xml";
    ChildOutcome outcome = KivTest::RunShellCommand(Collector("-output " + ShellQuote(file), "0x3"));
    ASSERT_EQ(outcome.exitStatus, 0) << Describe(outcome);
    EXPECT_EQ(outcome.standardError.rfind("statuscollector: STATUSCOLLECTOR_MODEL_CODE=\"0x3\" is not a decimal", 0),
              0u)
        << outcome.standardError;
    VpSts::CStatus status;
    Load(file, status);
    EXPECT_EQ(status.modelCode, 4294967295u);
}

TEST(StatusCollectorProgramTest, AnUnknownArgumentPrintsTheUsageAndWritesNothing)
{
    TemporaryDirectory directory;
    std::string file = directory.Path() + "/status.xml";
    ChildOutcome outcome = KivTest::RunShellCommand(Collector("-output " + ShellQuote(file) + " -verbose"));
    EXPECT_EQ(outcome.exitStatus, 2) << Describe(outcome);
    EXPECT_EQ(outcome.standardOutput, "");
    EXPECT_EQ(outcome.standardError, "statuscollector: unknown argument \"-verbose\"\n"
                                     "statuscollector: usage: statuscollector [-nolog] [-output FILE]\n");
    EXPECT_TRUE(KivTest::ListDirectory(directory.Path()).empty());
}

TEST(StatusCollectorProgramTest, ABadCommandLineWithNologFailsSilently)
{
    TemporaryDirectory directory;
    ChildOutcome outcome = KivTest::RunShellCommand(Collector("-nolog -output"));
    EXPECT_EQ(outcome.exitStatus, 2) << Describe(outcome);
    EXPECT_EQ(outcome.standardOutput, "");
    EXPECT_EQ(outcome.standardError, "");
}

TEST(StatusCollectorProgramTest, ASnapshotThatCannotBeWrittenFailsWithStatus1)
{
    TemporaryDirectory directory;
    std::string file = directory.Path() + "/missing/status.xml";
    ChildOutcome outcome = KivTest::RunShellCommand(Collector("-output " + ShellQuote(file)));
    EXPECT_EQ(outcome.exitStatus, 1) << Describe(outcome);
    EXPECT_EQ(outcome.standardError, "statuscollector: " + file + ": cannot enter " + directory.Path() +
                                         "/missing: No such file or directory; the previous snapshot stays\n");
    ChildOutcome quiet = KivTest::RunShellCommand(Collector("-nolog -output " + ShellQuote(file)));
    EXPECT_EQ(quiet.exitStatus, 1) << Describe(quiet);
    EXPECT_EQ(quiet.standardError, "");
    EXPECT_TRUE(KivTest::ListDirectory(directory.Path()).empty());
}

TEST(StatusCollectorProgramTest, ReplacesAnEarlierSnapshotWholeAndLeavesNoTemporaryFile)
{
    TemporaryDirectory directory;
    std::string file = directory.Path() + "/status.xml";
    ASSERT_TRUE(KivTest::WriteFile(file, "earlier"));
    ASSERT_EQ(link(file.c_str(), (directory.Path() + "/earlier").c_str()), 0);
    ChildOutcome outcome = KivTest::RunShellCommand(Collector("-nolog -output " + ShellQuote(file)));
    ASSERT_EQ(outcome.exitStatus, 0) << Describe(outcome);
    EXPECT_EQ(KivTest::ReadFile(directory.Path() + "/earlier"), "earlier");
    VpSts::CStatus status;
    Load(file, status);
    EXPECT_EQ(KivTest::ListDirectory(directory.Path()), (std::vector<std::string>{"earlier", "status.xml"}));
}

TEST(StatusCollectorProgramTest, WritesTheDaemonsSnapshotFileByDefault)
{
    std::string reason;
    if (!MountNamespace::Available(reason))
        GTEST_SKIP() << reason;
    TemporaryDirectory directory;
    std::string copy = directory.Path() + "/copy.xml";
    std::string listing = directory.Path() + "/listing";
    ChildOutcome outcome = RunInNamespace(
        [](std::string& fault) { return MountNamespace::MountTmpfs("/dev/shm", fault); },
        Collector("-nolog") + " && cp /dev/shm/status.xml " + ShellQuote(copy) + " && ls -A /dev/shm > " +
            ShellQuote(listing));
    ASSERT_EQ(outcome.exitStatus, 0) << Describe(outcome);
    EXPECT_EQ(KivTest::ReadFile(listing), "status.xml\n");
    VpSts::CStatus status;
    Load(copy, status);
    EXPECT_NE(status.networkDeviceList[0u], nullptr) << "no network devices in the default snapshot";
}

TEST(StatusCollectorProgramTest, AnEmptyGraphicsDirectoryGivesAnEmptyOutputList)
{
    std::string reason;
    if (!MountNamespace::Available(reason))
        GTEST_SKIP() << reason;
    TemporaryDirectory directory;
    std::string file = directory.Path() + "/status.xml";
    ChildOutcome outcome = RunInNamespace(FakeGraphicsDirectory({}), Collector("-nolog -output " + ShellQuote(file)));
    ASSERT_EQ(outcome.exitStatus, 0) << Describe(outcome);
    VpSts::CStatus status;
    Load(file, status);
    EXPECT_TRUE(OutputLines(status).empty());
}

TEST(StatusCollectorProgramTest, ConnectorsBecomeOutputsNumberedInNameOrder)
{
    std::string reason;
    if (!MountNamespace::Available(reason))
        GTEST_SKIP() << reason;
    TemporaryDirectory directory;
    std::string file = directory.Path() + "/status.xml";
    ChildOutcome outcome = RunInNamespace(
        FakeGraphicsDirectory({{"card0-HDMI-A-1", "connected\n"}, {"card0-DP-1", "disconnected\n"}}),
        Collector("-nolog -output " + ShellQuote(file)));
    ASSERT_EQ(outcome.exitStatus, 0) << Describe(outcome);
    VpSts::CStatus status;
    Load(file, status);
    // card0-DP-1 sorts before card0-HDMI-A-1.
    EXPECT_EQ(OutputLines(status), (std::vector<std::string>{"1:1:1:1", "2:0:1:1"}));
}

TEST(StatusCollectorProgramTest, SomethingOtherThanAFileAtTheOutputPathIsNamedRefusedAndLeftAlone)
{
    TemporaryDirectory directory;
    std::string file = directory.Path() + "/status.xml";
    std::string elsewhere = directory.Path() + "/elsewhere";
    ASSERT_TRUE(KivTest::WriteFile(elsewhere, "someone else's"));
    struct Obstacle
    {
        const char* what;
        std::function<bool()> make;
    };
    const std::vector<Obstacle> obstacles = {
        {"a directory", [&] { return mkdir(file.c_str(), 0755) == 0 && KivTest::WriteFile(file + "/inside", "kept"); }},
        {"a symbolic link", [&] { return symlink(elsewhere.c_str(), file.c_str()) == 0; }},
        {"a named pipe", [&] { return mkfifo(file.c_str(), 0644) == 0; }},
    };
    for (const Obstacle& obstacle : obstacles) {
        ASSERT_TRUE(obstacle.make()) << obstacle.what;
        struct stat before;
        ASSERT_EQ(lstat(file.c_str(), &before), 0);
        ChildOutcome outcome = KivTest::RunShellCommand(Collector("-output " + ShellQuote(file)));
        EXPECT_EQ(outcome.exitStatus, 1) << obstacle.what << ": " << Describe(outcome);
        EXPECT_EQ(outcome.standardOutput, "");
        EXPECT_EQ(outcome.standardError, "statuscollector: " + file + " is " + obstacle.what +
                                             ", not a regular file: not replaced, left as it is\n");
        ChildOutcome quiet = KivTest::RunShellCommand(Collector("-nolog -output " + ShellQuote(file)));
        EXPECT_EQ(quiet.exitStatus, 1) << obstacle.what << ": " << Describe(quiet);
        EXPECT_EQ(quiet.standardError, "") << obstacle.what;

        struct stat after;
        ASSERT_EQ(lstat(file.c_str(), &after), 0) << obstacle.what << " is gone";
        EXPECT_EQ(after.st_ino, before.st_ino) << obstacle.what << " was replaced";
        EXPECT_EQ((after.st_mode & S_IFMT), (before.st_mode & S_IFMT)) << obstacle.what;
        EXPECT_EQ(KivTest::ReadFile(elsewhere), "someone else's") << obstacle.what;
        std::vector<std::string> expected = {"elsewhere", "status.xml"};
        EXPECT_EQ(KivTest::ListDirectory(directory.Path()), expected) << obstacle.what;
        if (S_ISDIR(after.st_mode)) {
            EXPECT_EQ(KivTest::ListDirectory(file), std::vector<std::string>{"inside"});
            EXPECT_EQ(KivTest::ReadFile(file + "/inside"), "kept");
            ASSERT_EQ(unlink((file + "/inside").c_str()), 0);
            ASSERT_EQ(rmdir(file.c_str()), 0);
        } else {
            ASSERT_EQ(unlink(file.c_str()), 0);
        }
    }
}

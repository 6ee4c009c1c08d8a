// SPDX-License-Identifier: Apache-2.0
// The real discoveryd, end to end, over many refresh cycles in one run.
//
// The daemon runs in a private mount namespace whose /home, /var/lib,
// /dev/shm and /usr/local/sbin are fresh tmpfs mounts, under libfaketime
// speeding its clock up 300 times (sleep(300) passes in about a second), with
// its standard output on a pseudo terminal. A recording stand-in for the
// status collector logs each run, records what the daemon left in
// /var/lib/discovery since the run before, and stages the inputs planned for
// the cycle. After the planned cycles the stand-in blocks, so the daemon is
// held between two cycles when the test stops it.

#include <KivTest/ChildProcess.h>
#include <KivTest/Emulation.h>
#include <KivTest/Faketime.h>
#include <KivTest/MountNamespace.h>
#include <KivTest/RecordingCollector.h>
#include <KivTest/SampleStatus.h>
#include <KivTest/ShellCommand.h>
#include <KivTest/TemporaryDirectory.h>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

using KivTest::MountNamespace;
using KivTest::ReadFile;
using KivTest::RecordingCollector;
using KivTest::WriteFile;

namespace {

const char SettingsLink[] = "/home/Kiv/.settings/kivotrel";
const char SettingsDirectory[] = "/home/Kiv/settings";
const char ConfigurationDirectory[] = "/home/Kiv/settings/syscontrol/1.0/configuration";
const char CollectorPath[] = "/usr/local/sbin/statuscollector";
const char DescriptionFile[] = "/var/lib/discovery/Management.xml";
const char CycleLine[] = "saving management service description file\r\n";
const char SpeedUp[] = "+0 x300";
const double PeriodSeconds = 300;
/// Real time the whole run may take before the test gives up on it.
const int RunLimitSeconds = 300;

std::string Configuration(const std::string& description, const std::vector<std::pair<int, int>>& services)
{
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<configuration>\n"
                       "  <description>" + description + "</description>\n"
                       "  <timeZone>Europe/Zurich</timeZone>\n"
                       "  <computerName>unit-7</computerName>\n"
                       "  <services>\n";
    for (const auto& [kind, port] : services)
        text += "    <service kind=\"" + std::to_string(kind) + "\" port=\"" + std::to_string(port) + "\"/>\n";
    return text + "  </services>\n</configuration>\n";
}

double RealNow()
{
    struct timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

/// A pseudo terminal in raw mode: the daemon's standard output is line
/// buffered as on a console, and its bytes arrive unchanged.
struct Terminal
{
    int master = -1;
    int slave = -1;

    bool Open(std::string& fault)
    {
        master = posix_openpt(O_RDWR | O_NOCTTY);
        if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) {
            fault = std::string("cannot open a pseudo terminal: ") + std::strerror(errno);
            return false;
        }
        slave = open(ptsname(master), O_RDWR | O_NOCTTY);
        struct termios settings;
        if (slave < 0 || tcgetattr(slave, &settings) != 0) {
            fault = std::string("cannot open the terminal side: ") + std::strerror(errno);
            return false;
        }
        cfmakeraw(&settings);
        tcsetattr(slave, TCSANOW, &settings);
        return true;
    }

    /// Appends what the daemon wrote so far to \p output, waiting at most
    /// \p milliseconds for the first byte.
    void Drain(std::string& output, int milliseconds)
    {
        struct pollfd ready = {master, POLLIN, 0};
        while (poll(&ready, 1, milliseconds) > 0 && (ready.revents & POLLIN) != 0) {
            char buffer[4096];
            ssize_t count = read(master, buffer, sizeof buffer);
            if (count <= 0)
                break;
            output.append(buffer, static_cast<std::size_t>(count));
            milliseconds = 0;
        }
    }
};

/// The body of the namespace child: builds the unit's file system, runs the
/// daemon until the collector holds it, stops it and writes what happened
/// into \p work ("started", "alive", "ended", "stdout", "stderr").
void RunDaemonInNamespace(const std::string& work, const RecordingCollector& collector)
{
    std::string fault;
    bool ready = MountNamespace::Enter(fault);
    for (const char* covered : {"/home", "/var/lib", "/dev/shm", "/usr/local/sbin"})
        ready = ready && MountNamespace::MountTmpfs(covered, fault);
    ready = ready && MountNamespace::MakeDirectories("/home/Kiv/.settings") &&
            MountNamespace::MakeDirectories(ConfigurationDirectory) &&
            symlink(SettingsDirectory, SettingsLink) == 0;
    ready = ready && collector.Install(CollectorPath, fault);
    Terminal terminal;
    ready = ready && terminal.Open(fault);
    if (!ready) {
        std::printf("setup: %s (%s)\n", fault.c_str(), std::strerror(errno));
        return;
    }

    WriteFile(work + "/started", std::to_string(RealNow()));
    pid_t daemon = fork();
    if (daemon == 0) {
        setpgid(0, 0);
        int errors = open((work + "/stderr").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        int nothing = open("/dev/null", O_RDONLY);
        dup2(nothing, STDIN_FILENO);
        dup2(terminal.slave, STDOUT_FILENO);
        dup2(errors, STDERR_FILENO);
        close(terminal.master);
        if (chdir("/") != 0)
            _exit(126);
        setenv("FAKETIME_NO_CACHE", "1", 1);
        // libfaketime is preloaded ahead of a sanitizer runtime.
        std::string sanitizer = std::getenv("ASAN_OPTIONS") != nullptr ? std::getenv("ASAN_OPTIONS") : "";
        setenv("ASAN_OPTIONS", (sanitizer + (sanitizer.empty() ? "" : ":") + "verify_asan_link_order=0").c_str(), 1);
        execlp("faketime", "faketime", "-f", SpeedUp, KIV_DISCOVERYD_PROGRAM, static_cast<char*>(nullptr));
        _exit(127);
    }
    setpgid(daemon, daemon);
    close(terminal.slave);

    std::string output;
    time_t deadline = time(nullptr) + RunLimitSeconds;
    while (!collector.Held() && time(nullptr) < deadline && waitpid(daemon, nullptr, WNOHANG) == 0)
        terminal.Drain(output, 100);
    terminal.Drain(output, 100);

    // The daemon is the parent of the held collector run.
    std::vector<RecordingCollector::Call> calls = collector.Calls();
    pid_t daemonProcess = calls.empty() ? 0 : static_cast<pid_t>(std::atol(calls.back().runner.c_str()));
    bool alive = collector.Held() && daemonProcess > 0 && kill(daemonProcess, 0) == 0 &&
                 waitpid(daemon, nullptr, WNOHANG) == 0;
    WriteFile(work + "/alive", alive ? "yes" : "no");

    kill(-daemon, SIGTERM);
    int status = 0;
    waitpid(daemon, &status, 0);
    kill(-daemon, SIGKILL);
    terminal.Drain(output, 100);
    WriteFile(work + "/ended", WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status))
                                                   : "exit " + std::to_string(WEXITSTATUS(status)));
    WriteFile(work + "/stdout", output);
}

bool Written(const RecordingCollector::Observation& before, const RecordingCollector::Observation& after)
{
    return after.exists && (!before.exists || before.identity != after.identity || before.content != after.content);
}

std::string PortOf(const std::string& description)
{
    std::string::size_type start = description.find("<port>");
    std::string::size_type end = description.find("</port>");
    if (start == std::string::npos || end == std::string::npos || end < start)
        return "";
    return description.substr(start + 6, end - start - 6);
}

} // namespace

TEST(DiscoverydEndToEndTest, PublishesOnlyChangesOverManyCyclesAndSurvivesBadInput)
{
    if (KivTest::RunningUnderEmulation())
        GTEST_SKIP() << "the host's libfaketime cannot be preloaded into a program running under qemu-arm";
    std::string reason;
    if (!MountNamespace::Available(reason))
        GTEST_SKIP() << reason;
    std::string problem = KivTest::FaketimeProblem(SpeedUp);
    if (!problem.empty())
        GTEST_SKIP() << problem;

    KivTest::TemporaryDirectory work;
    for (const char* covered : {"/home", "/var/lib", "/dev/shm", "/usr/local/sbin"})
        ASSERT_NE(work.Path().rfind(covered, 0), 0u) << "the work directory would be hidden by the tmpfs on " << covered;
    RecordingCollector collector(work.Path(), ConfigurationDirectory, DescriptionFile);

    const std::string left80 = Configuration("Wall left", {{0, 80}});
    const std::string left8080 = Configuration("Wall left", {{2, 554}, {0, 8080}});
    const std::string twoManagementPorts = Configuration("Wall left", {{0, 8080}, {0, 9090}});
    const std::string right8080 = Configuration("Wall right", {{0, 8080}});
    const std::string broken = "<?xml version=\"1.0\"?>\n<configuration><services><service kind=\"0\" port=";
    const std::string first = KivTest::SampleStatusXml(3, "192.0.2.10");
    const std::string second = KivTest::SampleStatusXml(3, "192.0.2.20");

    struct Cycle
    {
        std::optional<std::string> configuration;
        std::optional<std::string> status;
        bool removeStatus;
        bool written;     // the description is written in this cycle
        const char* port; // the published port after this cycle
    };
    const std::vector<Cycle> cycles = {
        /* 1 first cycle            */ {left80, first, false, true, "80"},
        /* 2 nothing changed        */ {left80, std::nullopt, false, false, "80"},
        /* 3 port 80 -> 8080        */ {left8080, std::nullopt, false, true, "8080"},
        /* 4 nothing changed        */ {left8080, std::nullopt, false, false, "8080"},
        /* 5 broken configuration   */ {broken, std::nullopt, false, false, "8080"},
        /* 6 status file missing    */ {left8080, std::nullopt, true, false, "8080"},
        /* 7 network fragment       */ {left8080, second, false, true, "8080"},
        /* 8 two management ports   */ {twoManagementPorts, std::nullopt, false, true, "9090"},
        /* 9 ... rewrite every cycle */ {twoManagementPorts, std::nullopt, false, true, "9090"},
        /* 10                       */ {twoManagementPorts, std::nullopt, false, true, "9090"},
        /* 11 back to one port      */ {left8080, std::nullopt, false, true, "8080"},
        /* 12 description fragment  */ {right8080, std::nullopt, false, true, "8080"},
        /* 13 nothing changed       */ {right8080, std::nullopt, false, false, "8080"},
    };
    const unsigned planned = static_cast<unsigned>(cycles.size());
    for (unsigned cycle = 1; cycle <= planned; ++cycle) {
        const Cycle& plan = cycles[cycle - 1];
        ASSERT_TRUE(collector.PlanCycle(cycle, plan.configuration, plan.status, plan.removeStatus));
    }

    KivTest::ChildOutcome outcome = KivTest::RunInChild([&] { RunDaemonInNamespace(work.Path(), collector); });
    ASSERT_EQ(outcome.standardOutput, "") << KivTest::Describe(outcome);
    std::string daemonErrors = ReadFile(work.Path() + "/stderr");
    ASSERT_TRUE(collector.Held()) << "the daemon did not reach cycle " << planned + 1 << "; its stderr: " << daemonErrors;

    // The same daemon process ran the collector once per cycle, as "statuscollector -nolog".
    std::vector<RecordingCollector::Call> calls = collector.Calls();
    ASSERT_EQ(calls.size(), planned + 1);
    const std::string daemonName = std::string(KIV_DISCOVERYD_PROGRAM).substr(std::string(KIV_DISCOVERYD_PROGRAM).rfind('/') + 1);
    EXPECT_EQ(calls[0].runner.substr(calls[0].runner.find(' ') + 1), daemonName.substr(0, 15));
    for (unsigned index = 0; index < calls.size(); ++index) {
        EXPECT_EQ(calls[index].cycle, index + 1);
        EXPECT_EQ(calls[index].command, (std::vector<std::string>{CollectorPath, "-nolog"}));
        EXPECT_EQ(calls[index].runner, calls[0].runner) << "cycle " << index + 1 << " was run by another process";
    }
    EXPECT_EQ(ReadFile(work.Path() + "/alive"), "yes") << "the daemon did not survive the run";
    EXPECT_EQ(ReadFile(work.Path() + "/ended"), "signal " + std::to_string(SIGTERM));

    // The first cycle starts at once; each later one after a 300-second sleep.
    double started = std::strtod(ReadFile(work.Path() + "/started").c_str(), nullptr);
    EXPECT_LT(calls[0].time - started, PeriodSeconds) << "the first cycle waited for a period";
    for (unsigned index = 1; index < calls.size(); ++index)
        EXPECT_GE(calls[index].time - calls[index - 1].time, PeriodSeconds - 1) << "before cycle " << index + 1;

    // One line per completed cycle, whether or not the file was written.
    std::string expectedOutput;
    for (unsigned cycle = 1; cycle <= planned; ++cycle)
        expectedOutput += CycleLine;
    EXPECT_EQ(ReadFile(work.Path() + "/stdout"), expectedOutput);

    // Written in the first cycle, and later only when the port or a fragment changed.
    RecordingCollector::Observation before = collector.Observed(1);
    EXPECT_TRUE(before.recorded);
    EXPECT_FALSE(before.exists) << "a description existed before the first cycle";
    for (unsigned cycle = 1; cycle <= planned; ++cycle) {
        RecordingCollector::Observation after = collector.Observed(cycle + 1);
        const Cycle& plan = cycles[cycle - 1];
        ASSERT_TRUE(after.recorded);
        ASSERT_TRUE(after.exists) << "no description after cycle " << cycle;
        EXPECT_EQ(Written(before, after), plan.written) << "cycle " << cycle;
        EXPECT_EQ(PortOf(after.content), plan.port) << "cycle " << cycle << ":\n" << after.content;
        EXPECT_EQ(after.listing, std::vector<std::string>{"Management.xml"})
            << "cycle " << cycle << " left something else in /var/lib/discovery";
        before = after;
    }

    // What the description carries: the status loaded after the collector
    // ran in the same cycle, and the configuration of that cycle.
    std::string afterFirst = collector.Observed(2).content;
    EXPECT_NE(afterFirst.find("<type>cpp:Management</type>"), std::string::npos) << afterFirst;
    EXPECT_NE(afterFirst.find("<scope>http://standards.kivotrel.example/2011/videoprocessor/trx</scope>"),
              std::string::npos)
        << afterFirst;
    EXPECT_NE(afterFirst.find("Wall left"), std::string::npos) << afterFirst;
    EXPECT_NE(afterFirst.find("192.0.2.10"), std::string::npos) << afterFirst;
    std::string afterSeventh = collector.Observed(8).content;
    EXPECT_NE(afterSeventh.find("192.0.2.20"), std::string::npos) << afterSeventh;
    EXPECT_EQ(afterSeventh.find("192.0.2.10"), std::string::npos) << afterSeventh;
    std::string afterTwelfth = collector.Observed(13).content;
    EXPECT_NE(afterTwelfth.find("Wall right"), std::string::npos) << afterTwelfth;
    EXPECT_EQ(afterTwelfth.find("Wall left"), std::string::npos) << afterTwelfth;
}

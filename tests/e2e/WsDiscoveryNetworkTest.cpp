// SPDX-License-Identifier: Apache-2.0
// WS-Discovery on a real network that the test makes (WsdTestNetwork.h):
// in the "unit" namespace discoveryd runs end to end (private mount
// namespace, faketime speeding its 300-second cycle up 300 times, the
// reference status collector, a configuration in the test's scratch
// directory) beside discovery-responder serving what discoveryd publishes;
// from the "client" namespace discovery-browse, the test's own small
// senders and listeners, and independent clients from Debian's packages
// (wsdd, nmap) talk to it; "far" sends from off the unit's subnet through
// the client acting as a router. Every wait is bounded in time and count.

#include "WsdTestNetwork.h"

#include <KivTest/ChildProcess.h>
#include <KivTest/Faketime.h>
#include <KivTest/MountNamespace.h>
#include <KivTest/ShellCommand.h>
#include <KivTest/TemporaryDirectory.h>
#include <KivWsd/WsdLimits.h>
#include <KivWsd/WsdMessage.h>
#include <KivWsd/WsdReader.h>
#include <KivWsd/WsdWriter.h>

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <net/if.h>
#include <netinet/in.h>
#include <poll.h>
#include <sstream>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

// Under a sanitizer the responder's resident memory says more about the
// sanitizer than about the responder.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define KIV_TEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define KIV_TEST_SANITIZED 1
#endif
#endif
#ifndef KIV_TEST_SANITIZED
#define KIV_TEST_SANITIZED 0
#endif

using KivTest::ChildOutcome;
using KivTest::MountNamespace;
using KivTest::ReadFile;
using KivTest::ShellQuote;
using KivTest::WriteFile;
using KivTest::WsdTestNetwork;
using KivWsd::WsdVersion;

namespace {

const char DescriptionFile[] = "/var/lib/discovery/Management.xml";
const char ManagementAddress[] = "http://192.0.2.1:8080/";
const char TrxScope[] = "http://standards.kivotrel.example/2011/videoprocessor/trx";
const int ManagementPort = 8080;
/// Real seconds the unit may take to publish and answer its first probe.
const int StartLimitSeconds = 60;
/// Real seconds an announcement (Hello, Bye) may take to arrive; a
/// discoveryd cycle takes about one second under faketime.
const int AnnouncementLimitSeconds = 30;
/// Seconds discovery-browse waits for answers in these tests: a multicast
/// probe is answered after up to half a second, and a loaded machine may
/// add some.
const char BrowseTimeout[] = "1.5";

/// The unit's configuration with \p computerName and the management port.
std::string Configuration(const std::string& computerName)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<configuration>\n"
           "  <description>Wall left</description>\n"
           "  <timeZone>UTC</timeZone>\n"
           "  <computerName>" + computerName + "</computerName>\n"
           "  <services>\n"
           "    <service kind=\"0\" port=\"" + std::to_string(ManagementPort) + "\"/>\n"
           "  </services>\n</configuration>\n";
}

/// Replaces \p file whole, as an editor saving it would.
bool ReplaceFile(const std::string& file, const std::string& content)
{
    std::string temporary = file + ".new";
    return WriteFile(temporary, content) && std::rename(temporary.c_str(), file.c_str()) == 0;
}

/// A message ID of the test's own probes, distinct for each \p number.
std::string NumberedId(unsigned number)
{
    char text[64];
    std::snprintf(text, sizeof text, "urn:uuid:6b1d3c2a-%04x-4e5f-8a9b-%012x", number & 0xFFFF, number);
    return text;
}

/// A datagram socket of the calling process on an ephemeral port, for
/// probes to port 3702 of \p address with \p ttl.
int ProbeSocket(const std::string& address, int ttl, struct sockaddr_in& target)
{
    int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    setsockopt(socket, IPPROTO_IP, IP_TTL, &ttl, sizeof ttl);
    target = {};
    target.sin_family = AF_INET;
    target.sin_port = htons(KivWsd::WsdLimits::Port);
    inet_pton(AF_INET, address.c_str(), &target.sin_addr);
    return socket;
}

/// Reads what \p socket has within \p milliseconds and counts the
/// ProbeMatches among it.
unsigned CountMatches(int socket, int milliseconds)
{
    unsigned matches = 0;
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    std::vector<char> buffer(KivWsd::WsdLimits::MaximumOutgoingDatagram + 1);
    for (;;) {
        auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        struct pollfd ready = {socket, POLLIN, 0};
        if (poll(&ready, 1, left.count() > 0 ? static_cast<int>(left.count()) : 0) <= 0)
            return matches;
        ssize_t size = recv(socket, buffer.data(), buffer.size(), 0);
        KivWsd::WsdMessage message;
        std::string error;
        if (size > 0 && KivWsd::WsdReader::Read(buffer.data(), static_cast<std::size_t>(size),
                                                KivWsd::WsdLimits::MaximumOutgoingDatagram, message, error) &&
            message.action == KivWsd::WsdAction::ProbeMatches)
            ++matches;
    }
}

/// In the calling process's namespace: sends \p datagrams to port 3702 of
/// \p address with \p ttl, \p spacingMicroseconds apart, then listens
/// \p waitMilliseconds more; prints "answers N seconds S" (S: from the
/// first send to the end of listening).
void SendAndCount(const std::vector<std::string>& datagrams, const std::string& address, int ttl,
                  unsigned spacingMicroseconds, int waitMilliseconds)
{
    struct sockaddr_in target;
    int socket = ProbeSocket(address, ttl, target);
    unsigned matches = 0;
    auto start = std::chrono::steady_clock::now();
    for (const std::string& datagram : datagrams) {
        sendto(socket, datagram.data(), datagram.size(), 0, reinterpret_cast<struct sockaddr*>(&target), sizeof target);
        matches += CountMatches(socket, 0);
        if (spacingMicroseconds > 0)
            usleep(spacingMicroseconds);
    }
    matches += CountMatches(socket, waitMilliseconds);
    double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("answers %u seconds %.3f\n", matches, seconds);
    std::fflush(stdout);
    close(socket);
}

struct Counted
{
    unsigned answers = 0;
    double seconds = 0;
    bool read = false;
};

Counted ParseCounted(const ChildOutcome& outcome)
{
    Counted counted;
    counted.read = std::sscanf(outcome.standardOutput.c_str(), "answers %u seconds %lf", &counted.answers,
                               &counted.seconds) == 2;
    return counted;
}

std::string Probe(WsdVersion version, const std::string& messageId)
{
    return KivWsd::WsdWriter::Probe(version, messageId, {}, {}, "");
}

/// The value of \p field ("VmRSS", "RssAnon") in /proc/<process>/status,
/// in KiB; -1 when it cannot be read.
long MemoryKilobytes(pid_t process, const std::string& field)
{
    std::istringstream status(ReadFile("/proc/" + std::to_string(process) + "/status"));
    std::string line;
    while (std::getline(status, line))
        if (line.rfind(field + ":", 0) == 0)
            return std::atol(line.c_str() + field.size() + 1);
    return -1;
}

/// The announcements that a listener in the client namespace heard on
/// 239.255.255.250 port 3702 while the test did something to the unit.
/// Start() forks it; it stops after \p wanted datagrams holding
/// \p stopText, or after AnnouncementLimitSeconds.
class AnnouncementListener
{
public:
    AnnouncementListener(const std::string& space, const std::string& work) : space(space), work(work) {}
    ~AnnouncementListener() { Stop(); }

    /// Makes the listener note \p count's answer when it first hears a
    /// datagram holding its stop text (see CyclesAtFirstMatch).
    void CountCyclesWith(std::function<unsigned()> count) { cycleCounter = std::move(count); }

    /// True once the listener has joined the group.
    bool Start(const std::string& stopText, unsigned wanted)
    {
        std::string readyFile = work + "/listener.ready";
        std::string heardFile = work + "/listener.heard";
        unlink(readyFile.c_str());
        unlink(heardFile.c_str());
        unlink((work + "/listener.cycles").c_str());
        child = fork();
        if (child == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            if (WsdTestNetwork::Join(space))
                Listen(readyFile, heardFile, stopText, wanted);
            _exit(0);
        }
        for (int tenth = 0; tenth < 100; ++tenth) {
            struct stat information;
            if (stat(readyFile.c_str(), &information) == 0)
                return true;
            usleep(100000);
        }
        return false;
    }

    /// Waits for the listener to end and gives every datagram it heard.
    std::vector<std::string> Heard()
    {
        Stop();
        std::vector<std::string> datagrams;
        std::string all = ReadFile(work + "/listener.heard");
        std::size_t at = 0;
        while (at + 9 <= all.size()) {
            std::size_t size = std::strtoul(all.substr(at, 8).c_str(), nullptr, 10);
            datagrams.push_back(all.substr(at + 9, size));
            at += 9 + size;
        }
        return datagrams;
    }

    /// What the counter of CountCyclesWith answered when the first datagram
    /// with the stop text came in; -1 when none came.
    long CyclesAtFirstMatch() const
    {
        std::string noted = ReadFile(work + "/listener.cycles");
        return noted.empty() ? -1 : std::strtol(noted.c_str(), nullptr, 10);
    }

private:
    void Listen(const std::string& readyFile, const std::string& heardFile, const std::string& stopText,
                unsigned wanted)
    {
        int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        int one = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
        struct sockaddr_in local = {};
        local.sin_family = AF_INET;
        local.sin_port = htons(KivWsd::WsdLimits::Port);
        struct ip_mreqn group = {};
        inet_pton(AF_INET, KivWsd::WsdLimits::MulticastGroupIPv4, &group.imr_multiaddr);
        group.imr_ifindex = static_cast<int>(if_nametoindex(WsdTestNetwork::ClientInterface));
        if (bind(socket, reinterpret_cast<struct sockaddr*>(&local), sizeof local) != 0 ||
            setsockopt(socket, IPPROTO_IP, IP_ADD_MEMBERSHIP, &group, sizeof group) != 0)
            return;
        WriteFile(readyFile, "ready");
        std::string heard;
        unsigned found = 0;
        auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(AnnouncementLimitSeconds);
        std::vector<char> buffer(65536);
        while (found < wanted && std::chrono::steady_clock::now() < deadline) {
            struct pollfd ready = {socket, POLLIN, 0};
            if (poll(&ready, 1, 100) <= 0)
                continue;
            ssize_t size = recv(socket, buffer.data(), buffer.size(), 0);
            if (size <= 0)
                continue;
            std::string datagram(buffer.data(), static_cast<std::size_t>(size));
            char length[10];
            std::snprintf(length, sizeof length, "%08zu\n", datagram.size());
            heard += length + datagram;
            WriteFile(heardFile, heard);
            if (datagram.find(stopText) != std::string::npos) {
                if (found == 0 && cycleCounter)
                    WriteFile(work + "/listener.cycles", std::to_string(cycleCounter()));
                ++found;
            }
        }
    }

    void Stop()
    {
        if (child <= 0)
            return;
        int status = 0;
        for (int tenth = 0; tenth < (AnnouncementLimitSeconds + 5) * 10; ++tenth) {
            if (waitpid(child, &status, WNOHANG) == child) {
                child = -1;
                return;
            }
            usleep(100000);
        }
        kill(child, SIGKILL);
        waitpid(child, &status, 0);
        child = -1;
    }

    std::string space;
    std::string work;
    pid_t child = -1;
    std::function<unsigned()> cycleCounter;
};

/// The messages among \p datagrams that read as WS-Discovery.
std::vector<KivWsd::WsdMessage> ReadAll(const std::vector<std::string>& datagrams)
{
    std::vector<KivWsd::WsdMessage> messages;
    for (const std::string& datagram : datagrams) {
        KivWsd::WsdMessage message;
        std::string error;
        if (KivWsd::WsdReader::Read(datagram.data(), datagram.size(), KivWsd::WsdLimits::MaximumOutgoingDatagram,
                                    message, error))
            messages.push_back(message);
    }
    return messages;
}

/// The unit: a supervising child in the unit's network namespace and a
/// private mount namespace of its own, running discoveryd under faketime
/// and discovery-responder; it ends both (the responder with SIGTERM, so it
/// says Bye) when the test closes its pipe or dies.
class UnitUnderTest
{
public:
    UnitUnderTest(const std::string& space, const std::string& work) : space(space), work(work) {}
    ~UnitUnderTest() { Stop(); }

    std::string ConfigurationFile() const
    {
        return work + "/settings/syscontrol/1.0/configuration/configuration.xml";
    }

    bool Start(std::string& problem)
    {
        if (!MountNamespace::MakeDirectories(work + "/settings/syscontrol/1.0/configuration") ||
            !MountNamespace::MakeDirectories(work + "/state") || !ReplaceFile(ConfigurationFile(), Configuration("unit-7"))) {
            problem = "cannot prepare " + work;
            return false;
        }
        int control[2];
        if (pipe2(control, O_CLOEXEC) != 0) {
            problem = "no pipe";
            return false;
        }
        supervisor = fork();
        if (supervisor == 0) {
            close(control[1]);
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            Supervise(control[0]);
            _exit(0);
        }
        close(control[0]);
        controlWrite = control[1];
        for (int tenth = 0; tenth < StartLimitSeconds * 10; ++tenth) {
            std::string pids = ReadFile(work + "/pids");
            if (std::sscanf(pids.c_str(), "%d %d", &discoveryd, &responder) == 2)
                return true;
            if (waitpid(supervisor, nullptr, WNOHANG) == supervisor) {
                supervisor = -1;
                break;
            }
            usleep(100000);
        }
        problem = "the unit did not start: " + ReadFile(work + "/supervisor.log");
        return false;
    }

    pid_t Responder() const { return responder; }

    std::string ResponderErrors() const { return ReadFile(work + "/responder.stderr"); }

    /// The cycles discoveryd has finished: each prints the saved line.
    unsigned CompletedCycles() const
    {
        const std::string output = ReadFile(work + "/discoveryd.out");
        const std::string line = "saving management service description file";
        unsigned cycles = 0;
        for (std::size_t at = output.find(line); at != std::string::npos; at = output.find(line, at + line.size()))
            ++cycles;
        return cycles;
    }

    /// Ends the supervisor and what it runs, waiting a bounded time.
    void Stop()
    {
        if (controlWrite >= 0)
            close(controlWrite);
        controlWrite = -1;
        if (supervisor <= 0)
            return;
        for (int tenth = 0; tenth < 100; ++tenth) {
            if (waitpid(supervisor, nullptr, WNOHANG) == supervisor) {
                supervisor = -1;
                return;
            }
            usleep(100000);
        }
        kill(supervisor, SIGKILL);
        waitpid(supervisor, nullptr, 0);
        supervisor = -1;
    }

private:
    void Log(const std::string& text) const
    {
        std::string file = work + "/supervisor.log";
        WriteFile(file, ReadFile(file) + text + "\n");
    }

    pid_t Launch(const std::vector<std::string>& command, const std::string& output, bool fastClock) const
    {
        pid_t child = fork();
        if (child != 0)
            return child;
        setpgid(0, 0);
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        int file = open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
        dup2(nothing, STDIN_FILENO);
        dup2(file, STDOUT_FILENO);
        dup2(file, STDERR_FILENO);
        if (chdir("/") != 0)
            _exit(126);
        if (fastClock) {
            setenv("FAKETIME_NO_CACHE", "1", 1);
            const char* sanitizer = std::getenv("ASAN_OPTIONS");
            std::string options = sanitizer != nullptr ? sanitizer : "";
            setenv("ASAN_OPTIONS", (options + (options.empty() ? "" : ":") + "verify_asan_link_order=0").c_str(), 1);
        }
        setenv("STATUSCOLLECTOR_MODEL_CODE", "3", 1);
        std::vector<char*> arguments;
        for (const std::string& argument : command)
            arguments.push_back(const_cast<char*>(argument.c_str()));
        arguments.push_back(nullptr);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }

    /// The supervisor's body: the unit's file system, then both daemons.
    void Supervise(int control)
    {
        std::string fault;
        bool ready = WsdTestNetwork::Join(space) && MountNamespace::Enter(fault);
        for (const char* covered : {"/home", "/var/lib", "/dev/shm", "/usr/local/sbin", "/sys/class/drm"})
            ready = ready && MountNamespace::MountTmpfs(covered, fault);
        ready = ready && MountNamespace::MakeDirectories("/home/Kiv/.settings") &&
                symlink((work + "/settings").c_str(), "/home/Kiv/.settings/kivotrel") == 0 &&
                MountNamespace::MakeDirectories("/var/lib/discovery") &&
                MountNamespace::MakeDirectories("/sys/class/drm/card0-HDMI-A-1") &&
                WriteFile("/sys/class/drm/card0-HDMI-A-1/status", "connected\n") &&
                std::system(("install -m 0755 " + ShellQuote(KIV_STATUSCOLLECTOR_PROGRAM) +
                             " /usr/local/sbin/statuscollector")
                                .c_str()) == 0;
        if (!ready) {
            Log("setup: " + fault + " (" + std::strerror(errno) + ")");
            return;
        }
        pid_t daemon = Launch({"faketime", "-f", "+0 x300", KIV_DISCOVERYD_PROGRAM}, work + "/discoveryd.out", true);
        pid_t service = Launch({KIV_DISCOVERY_RESPONDER_PROGRAM, "--descriptions-dir", "/var/lib/discovery",
                                "--state-dir", work + "/state"},
                               work + "/responder.stderr", false);
        WriteFile(work + "/pids", std::to_string(daemon) + " " + std::to_string(service) + "\n");
        char byte;
        while (read(control, &byte, 1) > 0) {
        }
        kill(service, SIGTERM);
        for (int tenth = 0; tenth < 50 && waitpid(service, nullptr, WNOHANG) == 0; ++tenth)
            usleep(100000);
        kill(-service, SIGKILL);
        kill(-daemon, SIGKILL);
        waitpid(service, nullptr, 0);
        waitpid(daemon, nullptr, 0);
    }

    std::string space;
    std::string work;
    pid_t supervisor = -1;
    int controlWrite = -1;
    pid_t discoveryd = 0;
    pid_t responder = 0;
};

// A fresh network and unit for each test; skips where namespaces, root or
// faketime are missing.
class WsDiscoveryNetworkTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::string reason = WsdTestNetwork::Unavailable();
        std::string mountReason;
        if (reason.empty() && !MountNamespace::Available(mountReason))
            reason = mountReason;
        if (reason.empty())
            reason = KivTest::FaketimeProblem("+0 x300");
        if (!reason.empty())
            GTEST_SKIP() << reason;
        for (const char* covered : {"/home", "/var/lib", "/dev/shm", "/usr/local/sbin"})
            ASSERT_NE(work.Path().rfind(covered, 0), 0u)
                << "the work directory would be hidden by the tmpfs on " << covered;
        std::string problem;
        ASSERT_TRUE(network.Build(problem)) << problem;
        ASSERT_TRUE(unit.Start(problem)) << problem;
        // The first answer: discoveryd has published and the responder serves it.
        ChildOutcome found;
        for (int attempt = 0; attempt < StartLimitSeconds; ++attempt) {
            found = Browse("--timeout 1 --ipv4-only");
            if (found.exited && found.exitStatus == 0)
                break;
        }
        ASSERT_EQ(found.exitStatus, 0) << "the unit never answered: " << KivTest::Describe(found)
                                       << "\nresponder: " << unit.ResponderErrors();
    }

    /// discovery-browse in the client namespace, on the client's link.
    ChildOutcome Browse(const std::string& arguments)
    {
        return network.Run(network.Client(), ShellQuote(KIV_DISCOVERY_BROWSE_PROGRAM) + " --interface " +
                                                 WsdTestNetwork::ClientInterface + " " + arguments);
    }

    /// The metadata version that discovery-browse reports, or 0.
    unsigned MetadataVersion(const std::string& report)
    {
        std::string::size_type at = report.find("  metadata version: ");
        return at == std::string::npos ? 0u : static_cast<unsigned>(std::atol(report.c_str() + at + 20));
    }

    /// Sends \p datagrams from \p space to the unit's address (see SendAndCount).
    Counted Send(const std::string& space, const std::vector<std::string>& datagrams, int ttl, unsigned spacing,
                 int waitMilliseconds)
    {
        ChildOutcome outcome = WsdTestNetwork::RunInside(
            space, [&] { SendAndCount(datagrams, WsdTestNetwork::UnitAddress, ttl, spacing, waitMilliseconds); });
        Counted counted = ParseCounted(outcome);
        EXPECT_TRUE(counted.read) << KivTest::Describe(outcome);
        return counted;
    }

    /// The counter \p name of the \p protocol line ("Udp", "Icmp") of
    /// /proc/net/snmp inside \p space; -1 when it cannot be read.
    long SnmpCounter(const std::string& space, const std::string& protocol, const std::string& name)
    {
        ChildOutcome snmp = network.Run(space, "cat /proc/net/snmp");
        std::istringstream lines(snmp.standardOutput);
        std::string names;
        std::string values;
        while (std::getline(lines, names) && std::getline(lines, values)) {
            if (names.rfind(protocol + ": ", 0) != 0)
                continue;
            std::istringstream nameWords(names);
            std::istringstream valueWords(values);
            std::string word;
            std::string value;
            while (nameWords >> word && valueWords >> value)
                if (word == name)
                    return std::atol(value.c_str());
        }
        return -1;
    }

    KivTest::TemporaryDirectory work;
    WsdTestNetwork network;
    UnitUnderTest unit{network.Unit(), work.Path()};
};

} // namespace

TEST_F(WsDiscoveryNetworkTest, ProbeOfEitherVersionFindsTheUnitWithTypesScopesAddressesAndComputerName)
{
    for (const char* version : {"--version-2005", "--version-2009"}) {
        ChildOutcome outcome = Browse(std::string(version) + " --timeout " + BrowseTimeout);
        const std::string& report = outcome.standardOutput;
        ASSERT_EQ(outcome.exitStatus, 0) << version << ": " << KivTest::Describe(outcome);
        EXPECT_EQ(report.rfind("urn:uuid:", 0), 0u) << report;
        EXPECT_NE(report.find("\n  types: cpp:Management\n"), std::string::npos) << report;
        EXPECT_NE(report.find(std::string("\n  scopes: ") + TrxScope + "\n"), std::string::npos) << report;
        EXPECT_NE(report.find(std::string("\n  addresses: ") + ManagementAddress), std::string::npos) << report;
        EXPECT_NE(report.find(" http://[fe80::ff:fe00:1]:8080/"), std::string::npos)
            << "the IPv6 probe's answer names the link-local address of u0:\n" << report;
        EXPECT_NE(report.find(std::string("\n  answered in WS-Discovery: ") +
                              (std::string(version) == "--version-2005" ? "2005/04\n" : "1.1\n")),
                  std::string::npos)
            << report;
        EXPECT_GE(MetadataVersion(report), 1u) << report;
        EXPECT_NE(report.find("\n  computer name: \"unit-7\"\n"), std::string::npos) << report;
        EXPECT_NE(report.find("\n    u0 (number "), std::string::npos) << report;
        EXPECT_NE(report.find(", IPv4 192.0.2.1, subnet 255.255.255.0,"), std::string::npos) << report;
    }
}

TEST_F(WsDiscoveryNetworkTest, RawAnswersOfEitherVersionCarryTheEscapedMetadata)
{
    ChildOutcome outcome = Browse(std::string("--xml --ipv4-only --timeout ") + BrowseTimeout);
    ASSERT_EQ(outcome.exitStatus, 0) << KivTest::Describe(outcome);
    const std::string& answers = outcome.standardOutput;
    EXPECT_NE(answers.find("http://schemas.xmlsoap.org/ws/2005/04/discovery/ProbeMatches"), std::string::npos)
        << answers;
    EXPECT_NE(answers.find("http://docs.oasis-open.org/ws-dd/ns/discovery/2009/01/ProbeMatches"), std::string::npos)
        << answers;
    EXPECT_NE(answers.find("&lt;ComputerName&gt;unit-7&lt;/ComputerName&gt;"), std::string::npos) << answers;
    EXPECT_NE(answers.find(ManagementAddress), std::string::npos) << answers;
}

TEST_F(WsDiscoveryNetworkTest, TypedAndScopedProbesThatDoNotMatchGetNoAnswer)
{
    const std::string scope = TrxScope;
    struct Case
    {
        std::string arguments;
        int exitStatus;
    };
    const std::vector<Case> cases = {
        {"--type cpp:Management", 0},
        {"--type cpp:Elsewhere", 1},
        {"--type cpp:Management --type-namespace http://example.org/other", 1},
        {"--scope " + scope, 0},
        {"--scope http://standards.kivotrel.example/2011/videoprocessor", 0},
        {"--scope http://STANDARDS.kivotrel.example/2011/videoprocessor/trx/", 0},
        {"--scope http://standards.kivotrel.example/2011/videoprocessor/tr", 1},
        {"--scope http://standards.kivotrel.example/2011/videoprocessor/other", 1},
        {"--scope " + scope + " --match-by strcmp0", 0},
        {"--scope http://standards.kivotrel.example/2011/videoprocessor --match-by strcmp0", 1},
        {"--type cpp:Management --scope " + scope + " --scope http://example.org/absent", 1},
    };
    for (const Case& probe : cases) {
        for (const char* version : {"--version-2005", "--version-2009"}) {
            ChildOutcome outcome =
                Browse(probe.arguments + " " + version + " --ipv4-only --timeout " + BrowseTimeout);
            EXPECT_EQ(outcome.exitStatus, probe.exitStatus)
                << probe.arguments << " " << version << ": " << KivTest::Describe(outcome);
        }
    }
}

TEST_F(WsDiscoveryNetworkTest, ChangedComputerNameReachesTheClientAsHelloWithAHigherMetadataVersion)
{
    ChildOutcome before = Browse(std::string("--ipv4-only --timeout ") + BrowseTimeout);
    unsigned versionBefore = MetadataVersion(before.standardOutput);
    ASSERT_GE(versionBefore, 1u) << before.standardOutput;

    AnnouncementListener listener(network.Client(), work.Path());
    listener.CountCyclesWith([this] { return unit.CompletedCycles(); });
    ASSERT_TRUE(listener.Start("unit-8", 2)) << "the listener did not join the group";
    unsigned cyclesAtChange = unit.CompletedCycles();
    ASSERT_TRUE(ReplaceFile(unit.ConfigurationFile(), Configuration("unit-8")));
    std::vector<KivWsd::WsdMessage> heard = ReadAll(listener.Heard());
    // The first cycle that starts after the change reads the new name; one
    // that was already past its configuration load finishes first. The
    // Hello must come before the cycle after those two has finished.
    long cyclesAtHello = listener.CyclesAtFirstMatch();
    ASSERT_GE(cyclesAtHello, 0) << "no datagram with the new name was heard";
    EXPECT_LE(cyclesAtHello, static_cast<long>(cyclesAtChange) + 2)
        << "discoveryd finished " << cyclesAtHello - static_cast<long>(cyclesAtChange)
        << " cycles after the change before the Hello came";

    bool hello2005 = false;
    bool hello2009 = false;
    for (const KivWsd::WsdMessage& message : heard) {
        if (message.action != KivWsd::WsdAction::Hello || message.targets.size() != 1 ||
            message.targets[0].metadata.find("<ComputerName>unit-8</ComputerName>") == std::string::npos)
            continue;
        EXPECT_GT(message.targets[0].metadataVersion, versionBefore);
        EXPECT_TRUE(message.hasAppSequence);
        (message.version == WsdVersion::Discovery2005 ? hello2005 : hello2009) = true;
    }
    EXPECT_TRUE(hello2005) << heard.size() << " messages heard, no 2005/04 Hello with the new name";
    EXPECT_TRUE(hello2009) << heard.size() << " messages heard, no 1.1 Hello with the new name";

    ChildOutcome after = Browse(std::string("--ipv4-only --timeout ") + BrowseTimeout);
    EXPECT_NE(after.standardOutput.find("\n  computer name: \"unit-8\"\n"), std::string::npos) << after.standardOutput;
    EXPECT_GT(MetadataVersion(after.standardOutput), versionBefore) << after.standardOutput;
}

TEST_F(WsDiscoveryNetworkTest, StoppedResponderSaysByeInBothVersions)
{
    ChildOutcome found = Browse(std::string("--ipv4-only --timeout ") + BrowseTimeout);
    std::string endpoint = found.standardOutput.substr(0, found.standardOutput.find('\n'));
    ASSERT_EQ(endpoint.rfind("urn:uuid:", 0), 0u) << found.standardOutput;

    AnnouncementListener listener(network.Client(), work.Path());
    ASSERT_TRUE(listener.Start("/Bye<", 2)) << "the listener did not join the group";
    ASSERT_EQ(kill(unit.Responder(), SIGTERM), 0);
    std::vector<KivWsd::WsdMessage> heard = ReadAll(listener.Heard());

    bool bye2005 = false;
    bool bye2009 = false;
    for (const KivWsd::WsdMessage& message : heard) {
        if (message.action != KivWsd::WsdAction::Bye || message.targets.size() != 1)
            continue;
        EXPECT_EQ(message.targets[0].endpointAddress, endpoint);
        (message.version == WsdVersion::Discovery2005 ? bye2005 : bye2009) = true;
    }
    EXPECT_TRUE(bye2005) << heard.size() << " messages heard, no 2005/04 Bye";
    EXPECT_TRUE(bye2009) << heard.size() << " messages heard, no 1.1 Bye";
    EXPECT_EQ(Browse(std::string("--ipv4-only --timeout ") + BrowseTimeout).exitStatus, 1) << "a stopped responder still answered";
}

TEST_F(WsDiscoveryNetworkTest, UnicastProbeFromOffTheSubnetGetsNoAnswerThoughItArrives)
{
    // On the link, a unicast probe is answered at once.
    Counted onLink = Send(network.Client(), {Probe(WsdVersion::Discovery2005, NumberedId(1))}, 1, 0, 1000);
    EXPECT_EQ(onLink.answers, 1u);

    // From "far", routed through the client (so with a TTL above 1), the
    // probes reach the unit's socket, and the unit sends nothing back. Its
    // answers, sent with TTL 1, could not even pass the router, so the unit's
    // own count of UDP datagrams sent is what shows that it stayed silent.
    long deliveredBefore = SnmpCounter(network.Unit(), "Udp", "InDatagrams");
    long sentBefore = SnmpCounter(network.Unit(), "Udp", "OutDatagrams");
    Counted offLink = Send(network.Far(),
                           {Probe(WsdVersion::Discovery2005, NumberedId(2)),
                            Probe(WsdVersion::Discovery2009, NumberedId(3))},
                           64, 0, 2000);
    long deliveredAfter = SnmpCounter(network.Unit(), "Udp", "InDatagrams");
    long sentAfter = SnmpCounter(network.Unit(), "Udp", "OutDatagrams");
    EXPECT_EQ(offLink.answers, 0u);
    ASSERT_GE(deliveredBefore, 0);
    ASSERT_GE(sentBefore, 0);
    EXPECT_GE(deliveredAfter - deliveredBefore, 2) << "the probes from far did not reach the unit";
    EXPECT_EQ(sentAfter, sentBefore) << "the unit answered a probe from off its subnet";
}

TEST_F(WsDiscoveryNetworkTest, FloodOfProbesGetsAtMostTheConfiguredAnswersAndMemoryStaysFlat)
{
    const unsigned floodSize = 500;
    auto flood = [&](unsigned first) {
        std::vector<std::string> probes;
        for (unsigned number = first; number < first + floodSize; ++number)
            probes.push_back(Probe(number % 2 == 0 ? WsdVersion::Discovery2005 : WsdVersion::Discovery2009,
                                   NumberedId(number)));
        // 500 probes 4 ms apart: about two seconds of sending, well under five.
        return Send(network.Client(), probes, 1, 4000, 1000);
    };
    Counted warmUp = flood(1000);
    long rssBefore = MemoryKilobytes(unit.Responder(), "VmRSS");
    long anonymousBefore = MemoryKilobytes(unit.Responder(), "RssAnon");
    Counted measured = flood(2000);
    long rssAfter = MemoryKilobytes(unit.Responder(), "VmRSS");
    long anonymousAfter = MemoryKilobytes(unit.Responder(), "RssAnon");

    // One source: a bucket of PerSourceBurst answers, refilled at
    // PerSourceAnswersPerSecond, over the time the client listened.
    for (const Counted& counted : {warmUp, measured}) {
        double allowed = KivWsd::WsdLimits::PerSourceBurst +
                         KivWsd::WsdLimits::PerSourceAnswersPerSecond * (counted.seconds + 0.5);
        EXPECT_GE(counted.answers, 1u);
        EXPECT_LE(counted.answers, allowed) << "in " << counted.seconds << " s";
    }
    std::printf("responder memory around the second flood: VmRSS %ld -> %ld kB, RssAnon %ld -> %ld kB\n",
                rssBefore, rssAfter, anonymousBefore, anonymousAfter);
    if (KIV_TEST_SANITIZED) {
        std::printf("memory not compared: a sanitizer keeps freed memory and shadow pages of its own\n");
    } else {
        // After the warm-up (allocator pools, the full message ID memory and
        // source table), a second flood of 500 adds less than 512 KiB.
        const long marginKilobytes = 512;
        ASSERT_GT(rssBefore, 0);
        EXPECT_LT(rssAfter - rssBefore, marginKilobytes) << "VmRSS";
        EXPECT_LT(anonymousAfter - anonymousBefore, marginKilobytes) << "RssAnon";
    }
    EXPECT_EQ(kill(unit.Responder(), 0), 0) << "the responder did not survive the flood";
}

TEST_F(WsDiscoveryNetworkTest, MalformedDatagramsGetNoAnswerAndTheResponderKeepsAnswering)
{
    std::string valid = Probe(WsdVersion::Discovery2005, NumberedId(11));
    std::string::size_type declarationEnd = valid.find("?>");
    std::string body = declarationEnd == std::string::npos ? valid : valid.substr(declarationEnd + 2);
    std::string doctype = "<?xml version=\"1.0\"?><!DOCTYPE e:Envelope [<!ENTITY a \"aaaaaaaa\">]>" + body;
    std::string oversize = Probe(WsdVersion::Discovery2009, NumberedId(12)) +
                           std::string(KivWsd::WsdLimits::MaximumIncomingDatagram, ' ');
    std::string truncated = Probe(WsdVersion::Discovery2005, NumberedId(13));
    truncated.resize(truncated.size() - 20);
    std::string garbage;
    for (unsigned index = 0; index < 1000; ++index)
        garbage.push_back(static_cast<char>((index * 131 + 7) & 0xFF));
    std::string notSoap = "<Probe xmlns=\"http://schemas.xmlsoap.org/ws/2005/04/discovery\"/>";
    for (const std::string& datagram : {doctype, oversize, truncated, garbage, notSoap}) {
        Counted counted = Send(network.Client(), {datagram}, 1, 0, 700);
        EXPECT_EQ(counted.answers, 0u) << datagram.substr(0, 120);
    }
    Counted after = Send(network.Client(), {valid}, 1, 0, 1000);
    EXPECT_EQ(after.answers, 1u) << "the responder stopped answering; its log:\n" << unit.ResponderErrors();
    EXPECT_EQ(kill(unit.Responder(), 0), 0);
}

TEST_F(WsDiscoveryNetworkTest, WsddFromDebianHearsTheHelloWithManagementPortAndComputerName)
{
    if (KivTest::RunShellCommand("command -v wsdd").exitStatus != 0)
        GTEST_SKIP() << "wsdd is not installed (scripts/bootstrap test installs it)";
    // wsdd in discovery mode announces nothing of its own (--no-host) and
    // logs every message it handles (-v -v), each Hello as
    // "Hello from <endpoint> on <XAddr>".
    std::string log = work.Path() + "/wsdd.log";
    pid_t wsdd = fork();
    if (wsdd == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        int file = open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        dup2(file, STDOUT_FILENO);
        dup2(file, STDERR_FILENO);
        execlp("ip", "ip", "netns", "exec", network.Client().c_str(), "wsdd", "--discovery", "--no-host",
               "--interface", WsdTestNetwork::ClientInterface, "--ipv4only", "-v", "-v",
               static_cast<char*>(nullptr));
        _exit(127);
    }
    // wsdd logs when it has joined the group on the client's interface.
    for (int tenth = 0; tenth < 100 && ReadFile(log).find("joined multicast group") == std::string::npos; ++tenth)
        usleep(100000);
    ASSERT_TRUE(ReplaceFile(unit.ConfigurationFile(), Configuration("unit-8")));
    const std::string expected = std::string("on ") + ManagementAddress;
    for (int tenth = 0; tenth < AnnouncementLimitSeconds * 10; ++tenth) {
        std::string text = ReadFile(log);
        if (text.find(expected) != std::string::npos && text.find("unit-8") != std::string::npos)
            break;
        usleep(100000);
    }
    kill(wsdd, SIGTERM);
    int status = 0;
    for (int tenth = 0; tenth < 50 && waitpid(wsdd, &status, WNOHANG) == 0; ++tenth)
        usleep(100000);
    kill(wsdd, SIGKILL);
    waitpid(wsdd, &status, 0);

    std::string text = ReadFile(log);
    ChildOutcome found = Browse(std::string("--ipv4-only --timeout ") + BrowseTimeout);
    std::string endpoint = found.standardOutput.substr(0, found.standardOutput.find('\n'));
    EXPECT_NE(text.find("Hello from " + endpoint + " " + expected), std::string::npos) << text;
    EXPECT_NE(text.find("&lt;ComputerName&gt;unit-8&lt;/ComputerName&gt;"), std::string::npos) << text;
    // What wsdd made of the Hello, for docs/wsdiscovery.md.
    std::istringstream lines(text);
    std::string line;
    std::printf("wsdd printed (the lines about the Hello):\n");
    while (std::getline(lines, line))
        if (line.find("Hello") != std::string::npos)
            std::printf("%s\n", line.c_str());
}

TEST_F(WsDiscoveryNetworkTest, NmapWsddDiscoverScriptFromDebianFindsTheManagementPort)
{
    if (KivTest::RunShellCommand("command -v nmap").exitStatus != 0)
        GTEST_SKIP() << "nmap is not installed (scripts/bootstrap test installs it)";
    // The script probes port 3702 of the unit directly, in both versions,
    // without types, and prints the XAddrs and Types of each answer.
    ChildOutcome outcome = network.Run(network.Client(), "nmap -n -Pn -sU -p 3702 --script wsdd-discover " +
                                                             std::string(WsdTestNetwork::UnitAddress));
    ASSERT_EQ(outcome.exitStatus, 0) << KivTest::Describe(outcome);
    const std::string& text = outcome.standardOutput;
    EXPECT_NE(text.find(std::string("Address: ") + ManagementAddress), std::string::npos) << text;
    EXPECT_NE(text.find("Type: cpp:Management"), std::string::npos) << text;
    std::printf("nmap printed:\n%s\n", text.c_str());
}

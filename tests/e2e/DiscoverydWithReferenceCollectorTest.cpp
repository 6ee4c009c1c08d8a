// SPDX-License-Identifier: Apache-2.0
// One real cycle of discoveryd with the reference status collector, in a
// private mount and network namespace whose first interface has no address:
// the published network metadata still lists every interface.
//
// The namespace child makes the interfaces with `ip` (an ifb device without
// addresses first, then a veth pair, one end with IPv4, IPv6 and a default
// route), covers /home, /var/lib, /dev/shm, /usr/local/sbin and
// /sys/class/drm with tmpfs, installs the collector where the daemon runs it,
// and stops the daemon once the first description is published. The summary
// of "discovery-check summary" then names every interface too, and the
// daemon's mappings at that point name no account library (libpam, libcrypt
// and what they bring in): the daemon never checks a password.

#include <KivDiscoveryClient/DescriptionReader.h>
#include <KivTest/ChildProcess.h>
#include <KivTest/Emulation.h>
#include <KivTest/MountNamespace.h>
#include <KivTest/ShellCommand.h>
#include <KivTest/TemporaryDirectory.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using KivTest::MountNamespace;
using KivTest::ReadFile;
using KivTest::ShellQuote;

namespace {

const char DescriptionFile[] = "/var/lib/discovery/Management.xml";
/// Real time the first cycle may take before the test gives up on it.
const int CycleLimitSeconds = 120;
/// Exit status of a namespace child that cannot build its network here.
const int CannotSetUp = 77;

/// The interfaces of the namespace, in the order of their indexes.
const char MakeInterfaces[] = "set -e\n"
                               "ip link add k0 address 02:00:00:00:00:01 type ifb\n"
                               "ip link add v0 address 02:00:00:00:00:02 type veth peer name v1 address 02:00:00:00:00:03\n"
                               "ip link set v0 addrgenmode none\n"
                               "ip link set v1 addrgenmode none\n"
                               "ip link set v0 up\n"
                               "ip link set v1 up\n"
                               "ip addr add 192.0.2.10/24 dev v0\n"
                               "ip addr add 2001:db8::10/64 dev v0 nodad\n"
                               "ip route add default via 192.0.2.1 dev v0\n";

/// The network fragment that the publisher makes of the `ip_expectation.py`
/// lines "number|name|mac|ipv4|ipv6|gateway|subnet" ("-" for an item an
/// interface lacks, which the collector reports as an empty text).
std::string NetworkFragment(const std::string& lines)
{
    std::string fragment = "<Network>";
    std::istringstream text(lines);
    std::string line;
    while (std::getline(text, line)) {
        std::vector<std::string> fields;
        std::istringstream parts(line);
        std::string field;
        while (std::getline(parts, field, '|'))
            fields.push_back(field == "-" ? "" : field);
        fields.resize(7);
        fragment += "<NetworkDevice number=\\\"" + fields[0] + "\\\"><Name>" + fields[1] + "</Name><MAC>" +
                    fields[2] + "</MAC><IPv4>" + fields[3] + "</IPv4><IPv6>" + fields[4] + "</IPv6><Gateway>" +
                    fields[5] + "</Gateway><Subnet>" + fields[6] + "</Subnet></NetworkDevice>";
    }
    return fragment + "</Network>";
}

/// The body of the namespace child: writes "expected" (what ip reports),
/// "description" (the first published file), "maps" (the daemon's
/// /proc/<pid>/maps once it has published), "stdout" and "stderr" of the
/// daemon into \p work. Exits with CannotSetUp, saying why, when this
/// machine cannot make the namespaces or the interfaces.
void RunOneCycle(const std::string& work)
{
    std::string fault;
    if (!MountNamespace::Enter(fault) || unshare(CLONE_NEWNET) != 0 ||
        std::system(("(" + std::string(MakeInterfaces) + ") > /dev/null 2>&1").c_str()) != 0) {
        std::printf("cannot make a network namespace with an ifb device and a veth pair here %s\n", fault.c_str());
        std::fflush(stdout);
        _exit(CannotSetUp);
    }
    bool ready = true;
    for (const char* covered : {"/home", "/var/lib", "/dev/shm", "/usr/local/sbin", "/sys/class/drm"})
        ready = ready && MountNamespace::MountTmpfs(covered, fault);
    ready = ready && MountNamespace::MakeDirectories("/home/Kiv/.settings") &&
            MountNamespace::MakeDirectories("/home/Kiv/settings/syscontrol/1.0/configuration") &&
            symlink("/home/Kiv/settings", "/home/Kiv/.settings/kivotrel") == 0 &&
            MountNamespace::MakeDirectories("/sys/class/drm/card0-HDMI-A-1") &&
            KivTest::WriteFile("/sys/class/drm/card0-HDMI-A-1/status", "connected\n") &&
            KivTest::WriteFile("/home/Kiv/settings/syscontrol/1.0/configuration/configuration.xml",
                               "<configuration><services><service kind=\"0\" port=\"8080\"/></services>"
                               "</configuration>");
    std::string installCollector = "install -m 0755 " + ShellQuote(KIV_STATUSCOLLECTOR_PROGRAM) +
                                   " /usr/local/sbin/statuscollector";
    std::string expectation = "python3 " +
                              ShellQuote(std::string(KIV_SOURCE_DIR) + "/tests/tools/statuscollector/ip_expectation.py") +
                              " > " + ShellQuote(work + "/expected");
    ready = ready && std::system(installCollector.c_str()) == 0 && std::system(expectation.c_str()) == 0;
    if (!ready) {
        std::printf("setup: %s\n", fault.c_str());
        return;
    }

    pid_t daemon = fork();
    if (daemon == 0) {
        setpgid(0, 0);
        int output = open((work + "/stdout").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        int errors = open((work + "/stderr").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        dup2(output, STDOUT_FILENO);
        dup2(errors, STDERR_FILENO);
        if (chdir("/") != 0)
            _exit(126);
        setenv("STATUSCOLLECTOR_MODEL_CODE", "3", 1);
        execl(KIV_DISCOVERYD_PROGRAM, KIV_DISCOVERYD_PROGRAM, static_cast<char*>(nullptr));
        _exit(127);
    }
    setpgid(daemon, daemon);
    // The description is renamed into place whole, so once it exists it is complete.
    struct stat information;
    for (int tenth = 0; tenth < CycleLimitSeconds * 10 && stat(DescriptionFile, &information) != 0; ++tenth) {
        if (waitpid(daemon, nullptr, WNOHANG) != 0)
            break;
        usleep(100000);
    }
    std::string description = ReadFile(DescriptionFile);
    std::string maps = ReadFile("/proc/" + std::to_string(daemon) + "/maps");
    kill(-daemon, SIGKILL);
    waitpid(daemon, nullptr, 0);
    KivTest::WriteFile(work + "/description", description);
    KivTest::WriteFile(work + "/maps", maps);
}

/// Whether \p summary has the line "    <name> (number N): <rest>" for any N.
bool HasInterfaceLine(const std::string& summary, const std::string& name, const std::string& rest)
{
    std::istringstream lines(summary);
    std::string line;
    const std::string start = "    " + name + " (number ";
    const std::string end = "): " + rest;
    while (std::getline(lines, line)) {
        if (line.rfind(start, 0) == 0 && line.size() >= start.size() + end.size() &&
            line.compare(line.size() - end.size(), end.size(), end) == 0)
            return true;
    }
    return false;
}

// Runs the daemon's first cycle in its namespaces before each test; skips
// where they cannot be made.
class DiscoverydWithReferenceCollectorTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (KivTest::RunningUnderEmulation())
            GTEST_SKIP() << "namespaces and ip are not available to a program under qemu-arm";
        std::string reason;
        if (!MountNamespace::Available(reason))
            GTEST_SKIP() << reason;
        for (const char* covered : {"/home", "/var/lib", "/dev/shm", "/usr/local/sbin"})
            ASSERT_NE(work.Path().rfind(covered, 0), 0u)
                << "the work directory would be hidden by the tmpfs on " << covered;

        KivTest::ChildOutcome outcome = KivTest::RunInChild([&] { RunOneCycle(work.Path()); });
        if (outcome.exited && outcome.exitStatus == CannotSetUp)
            GTEST_SKIP() << outcome.standardOutput;
        ASSERT_EQ(outcome.standardOutput, "") << KivTest::Describe(outcome);
    }

    KivTest::TemporaryDirectory work;
};

} // namespace

TEST_F(DiscoverydWithReferenceCollectorTest, AnInterfaceWithoutAddressesDoesNotHideTheOnesAfterIt)
{
    std::string file = work.Path() + "/description";
    KivDiscoveryClient::DescriptionReader reader;
    ASSERT_TRUE(reader.Load(file.c_str())) << reader.ErrorMessage() << "\ndaemon's stderr: "
                                           << ReadFile(work.Path() + "/stderr");
    const std::string metadata = reader.MetaData();

    // The ifb device comes first and has a MAC but no address; the veth pair
    // comes after it (in the order of the indexes the kernel gave), one end
    // with addresses and the default route, the other without addresses.
    const std::string bare = "<Name>k0</Name><MAC>02:00:00:00:00:01</MAC><IPv4></IPv4><IPv6></IPv6>"
                             "<Gateway></Gateway><Subnet></Subnet></NetworkDevice>";
    const std::string addressed = "<Name>v0</Name><MAC>02:00:00:00:00:02</MAC><IPv4>192.0.2.10</IPv4>"
                                  "<IPv6>2001:db8::10</IPv6><Gateway>192.0.2.1</Gateway>"
                                  "<Subnet>255.255.255.0</Subnet></NetworkDevice>";
    const std::string peer = "<Name>v1</Name><MAC>02:00:00:00:00:03</MAC><IPv4></IPv4><IPv6></IPv6>"
                             "<Gateway></Gateway><Subnet></Subnet></NetworkDevice>";
    std::string::size_type bareAt = metadata.find(bare);
    EXPECT_NE(bareAt, std::string::npos) << metadata;
    EXPECT_NE(metadata.find(addressed, bareAt), std::string::npos) << metadata;
    EXPECT_NE(metadata.find(peer), std::string::npos) << metadata;
    EXPECT_NE(metadata.find(NetworkFragment(ReadFile(work.Path() + "/expected"))), std::string::npos)
        << "expected every interface that ip reports:\n"
        << NetworkFragment(ReadFile(work.Path() + "/expected")) << "\npublished:\n"
        << metadata;
    EXPECT_NE(metadata.find("</Network><Outputs><Output number=\\\"1\\\" i:type=\\\"Cablor6Type\\\">"
                            "<TranslationTable><Rows>1</Rows><Columns>1</Columns></TranslationTable></Output>"
                            "</Outputs></cpp:State>"),
              std::string::npos)
        << metadata;
    EXPECT_EQ(reader.Port(), 8080);

    // The summary that scripts/run prints names every interface.
    KivTest::ChildOutcome summary =
        KivTest::RunShellCommand(ShellQuote(KIV_DISCOVERY_CHECK_PROGRAM) + " summary " + ShellQuote(file));
    EXPECT_EQ(summary.exitStatus, 0) << KivTest::Describe(summary);
    std::string expected = ReadFile(work.Path() + "/expected");
    long interfaces = std::count(expected.begin(), expected.end(), '\n');
    EXPECT_NE(summary.standardOutput.find("  interfaces: " + std::to_string(interfaces) + "\n"), std::string::npos)
        << summary.standardOutput;
    EXPECT_TRUE(HasInterfaceLine(summary.standardOutput, "k0",
                                 "MAC 02:00:00:00:00:01, IPv4 none, subnet none, gateway none, IPv6 none"))
        << summary.standardOutput;
    EXPECT_TRUE(HasInterfaceLine(summary.standardOutput, "v0",
                                 "MAC 02:00:00:00:00:02, IPv4 192.0.2.10, subnet 255.255.255.0, gateway 192.0.2.1, "
                                 "IPv6 2001:db8::10"))
        << summary.standardOutput;
    EXPECT_EQ(summary.standardOutput.find("cut short"), std::string::npos) << summary.standardOutput;
}

TEST_F(DiscoverydWithReferenceCollectorTest, DaemonMapsNoAccountLibraryAfterItsFirstCycle)
{
    std::string maps = ReadFile(work.Path() + "/maps");
    ASSERT_NE(maps.find("libkivplr.so"), std::string::npos) << "no mappings read:\n" << maps;
    for (const char* library : {"/libpam.so", "/libpam_misc.so", "/libcrypt.so", "/libaudit.so", "/libcap-ng.so"})
        EXPECT_EQ(maps.find(library), std::string::npos) << library << " is mapped:\n" << maps;
}

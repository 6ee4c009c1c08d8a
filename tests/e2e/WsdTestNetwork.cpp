// SPDX-License-Identifier: Apache-2.0
#include "WsdTestNetwork.h"

#include <KivTest/Emulation.h>
#include <KivTest/ShellCommand.h>

#include <cstdio>
#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

namespace KivTest {

WsdTestNetwork::WsdTestNetwork()
{
    std::string suffix = std::to_string(getpid());
    names = {"kivwsd-unit-" + suffix, "kivwsd-client-" + suffix, "kivwsd-far-" + suffix};
}

WsdTestNetwork::~WsdTestNetwork()
{
    if (!made)
        return;
    std::string removal;
    for (const std::string& name : names)
        removal += "ip netns del " + name + " 2>/dev/null; ";
    RunShellCommand(removal);
}

std::string WsdTestNetwork::Unavailable()
{
    if (RunningUnderEmulation())
        return "network namespaces and ip are not available to a program under qemu-arm";
    if (geteuid() != 0)
        return "making network namespaces needs root (the CI runs these tests as root)";
    ChildOutcome probe = RunShellCommand("ip netns list");
    if (!probe.exited || probe.exitStatus != 0)
        return "`ip netns` does not work here: " + Describe(probe);
    return "";
}

bool WsdTestNetwork::Build(std::string& problem)
{
    made = true;
    const std::string& unit = names[0];
    const std::string& client = names[1];
    const std::string& far = names[2];
    // Duplicate address detection is switched off per interface before the
    // interface comes up, so its link-local address is usable at once.
    std::string script = "set -e\n"
                         "ip netns add " + unit + "\n"
                         "ip netns add " + client + "\n"
                         "ip netns add " + far + "\n"
                         "ip link add u0 address 02:00:00:00:00:01 netns " + unit +
                         " type veth peer name c0 address 02:00:00:00:00:02 netns " + client + "\n"
                         "ip link add c1 address 02:00:00:00:00:03 netns " + client +
                         " type veth peer name f0 address 02:00:00:00:00:04 netns " + far + "\n"
                         "ip netns exec " + unit + " sysctl -qw net.ipv6.conf.u0.accept_dad=0\n"
                         "ip netns exec " + client + " sysctl -qw net.ipv6.conf.c0.accept_dad=0"
                         " net.ipv6.conf.c1.accept_dad=0 net.ipv4.ip_forward=1\n"
                         "ip netns exec " + far + " sysctl -qw net.ipv6.conf.f0.accept_dad=0\n"
                         "ip -n " + unit + " addr add 192.0.2.1/24 dev u0\n"
                         "ip -n " + client + " addr add 192.0.2.2/24 dev c0\n"
                         "ip -n " + client + " addr add 198.51.100.1/24 dev c1\n"
                         "ip -n " + far + " addr add 198.51.100.2/24 dev f0\n"
                         "for space in " + unit + " " + client + " " + far + "; do ip -n $space link set lo up; done\n"
                         "ip -n " + unit + " link set u0 up\n"
                         "ip -n " + client + " link set c0 up\n"
                         "ip -n " + client + " link set c1 up\n"
                         "ip -n " + far + " link set f0 up\n"
                         "ip -n " + unit + " route add 198.51.100.0/24 via 192.0.2.2\n"
                         "ip -n " + far + " route add default via 198.51.100.1\n"
                         // Both ends of each link up and each side's link-local address in place.
                         "for attempt in $(seq 50); do\n"
                         "  if ip -n " + unit + " -6 addr show dev u0 scope link | grep -q inet6 &&"
                         " ip -n " + client + " -6 addr show dev c0 scope link | grep -q inet6 &&"
                         " ip -n " + unit + " link show u0 | grep -q LOWER_UP &&"
                         " ip -n " + client + " link show c0 | grep -q LOWER_UP; then exit 0; fi\n"
                         "  sleep 0.1\n"
                         "done\n"
                         "echo 'the links did not come up within 5 seconds'; exit 1\n";
    ChildOutcome outcome = RunShellCommand("(" + script + ") 2>&1");
    if (outcome.exited && outcome.exitStatus == 0)
        return true;
    problem = "cannot make the test network: " + Describe(outcome);
    return false;
}

ChildOutcome WsdTestNetwork::Run(const std::string& space, const std::string& commandLine, int limitSeconds) const
{
    return RunShellCommand("timeout -k 5 " + std::to_string(limitSeconds) + " ip netns exec " + space + " " +
                           commandLine);
}

bool WsdTestNetwork::Join(const std::string& space)
{
    int handle = open(("/run/netns/" + space).c_str(), O_RDONLY | O_CLOEXEC);
    bool joined = handle >= 0 && setns(handle, CLONE_NEWNET) == 0;
    if (handle >= 0)
        close(handle);
    return joined;
}

ChildOutcome WsdTestNetwork::RunInside(const std::string& space, const std::function<void()>& body)
{
    return RunInChild([&] {
        if (!Join(space)) {
            std::fprintf(stderr, "cannot join the network namespace %s\n", space.c_str());
            std::fflush(stderr);
            _exit(1);
        }
        body();
    });
}

} // namespace KivTest

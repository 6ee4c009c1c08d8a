// SPDX-License-Identifier: Apache-2.0
// WsdTestNetwork.h - the small network the WS-Discovery tests make for
// themselves: three network namespaces named after the test process,
//
//   unit  u0 192.0.2.1/24 ---- c0 192.0.2.2/24  client  c1 198.51.100.1/24 ---- f0 198.51.100.2/24  far
//
// with the client forwarding between its two links, so that "far" reaches
// the unit through a router, from off the unit's subnet. IPv6 link-local
// addresses come by themselves (duplicate address detection is off, so
// they are usable at once). Nothing touches the machine's own interfaces;
// the destructor deletes the namespaces on every path.
//
// Owned by one test fixture; used by its thread and the children it forks.
//
// Example:
//   KivTest::WsdTestNetwork network;
//   std::string problem;
//   if (!network.Build(problem))
//       GTEST_SKIP() << problem;
//   KivTest::ChildOutcome outcome = network.Run(network.Client(), "ip -br addr");
#ifndef KIV_TESTS_WSDTESTNETWORK_H
#define KIV_TESTS_WSDTESTNETWORK_H

#include <KivTest/ChildProcess.h>

#include <functional>
#include <string>
#include <vector>

namespace KivTest {

class WsdTestNetwork
{
public:
    static constexpr const char* UnitAddress = "192.0.2.1";
    static constexpr const char* ClientAddress = "192.0.2.2";
    static constexpr const char* FarAddress = "198.51.100.2";
    static constexpr const char* UnitInterface = "u0";
    static constexpr const char* ClientInterface = "c0";

    WsdTestNetwork();
    ~WsdTestNetwork();
    WsdTestNetwork(const WsdTestNetwork&) = delete;
    WsdTestNetwork& operator=(const WsdTestNetwork&) = delete;

    /// Why namespaces cannot be made here (not root, no `ip netns`, under
    /// emulation), or empty when they can.
    static std::string Unavailable();

    /// Makes the namespaces and links. False with \p problem (the commands'
    /// output) when any step fails; what was made is still removed later.
    bool Build(std::string& problem);

    const std::string& Unit() const { return names[0]; }
    const std::string& Client() const { return names[1]; }
    const std::string& Far() const { return names[2]; }

    /// Runs \p commandLine through the shell inside \p space, ended after
    /// \p limitSeconds at the latest.
    ChildOutcome Run(const std::string& space, const std::string& commandLine, int limitSeconds = 60) const;

    /// Runs \p body in a forked child that has joined \p space's network
    /// namespace; its output is captured as RunInChild does.
    static ChildOutcome RunInside(const std::string& space, const std::function<void()>& body);

    /// Moves the calling process into \p space's network namespace.
    static bool Join(const std::string& space);

private:
    std::vector<std::string> names;
    bool made = false;
};

} // namespace KivTest

#endif

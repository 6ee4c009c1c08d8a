// SPDX-License-Identifier: Apache-2.0
// ResponderLoop.h - the daemon's single-threaded event loop: the two UDP
// sockets, the rtnetlink monitor, the description watcher and a signalfd,
// waited on with poll, feeding one Responder; it is also the Responder's
// sender, routing each datagram to the socket of its family.
//
// Made once by main() and run until SIGTERM or SIGINT; SIGHUP lists the
// descriptions directory again. One thread.
//
// Example:
//   auto run = [](int argc, const char* const* argv) {   // main()
//       ResponderOptions options;
//       options.Parse(argc, argv);
//       ResponderLoop loop(options);
//       return loop.Run();   // 0 after a signal, 1 when it cannot start
//   };
#ifndef KIV_RESPONDER_RESPONDERLOOP_H
#define KIV_RESPONDER_RESPONDERLOOP_H

#include <KivResponder/DescriptionWatcher.h>
#include <KivResponder/IDatagramSender.h>
#include <KivResponder/InterfaceTable.h>
#include <KivResponder/LinuxDiscoverySocket.h>
#include <KivResponder/LinuxInterfaceMonitor.h>
#include <KivResponder/Responder.h>
#include <KivResponder/ResponderOptions.h>
#include <KivResponder/ResponderState.h>

#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/io/ILog.h>

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <utility>

namespace KivResponder {

class ResponderLoop : public IDatagramSender
{
public:
    /// The line on standard error once the sockets are up and the
    /// descriptions are loaded: tests and scripts wait for it.
    static constexpr const char* ReadyLine = "discovery-responder: ready";

    explicit ResponderLoop(const ResponderOptions& options);
    ~ResponderLoop() override;
    ResponderLoop(const ResponderLoop&) = delete;
    ResponderLoop& operator=(const ResponderLoop&) = delete;

    /// Starts, prints ReadyLine, and serves until SIGTERM or SIGINT, then
    /// says Bye for every target: exit status 0. When it cannot start (state
    /// directory unusable, port taken, no netlink or inotify) it says why on
    /// standard error and in the log: exit status 1.
    int Run();

    bool Send(const IpAddress& destination, std::uint16_t port, int interfaceIndex, const IpAddress& source,
              const std::string& data) override;

private:
    bool Start(std::string& error);
    void Serve();
    void SyncMemberships(std::uint64_t now);
    void ReceiveFrom(LinuxDiscoverySocket& socket, std::uint64_t now);
    void Log(std::uint32_t level, const std::string& line);
    static std::uint64_t Now();

    ResponderOptions options;
    KivPlr::SmartPtr<KivPlr::ILog> log;
    InterfaceTable table;
    ResponderState state;
    LinuxInterfaceMonitor monitor;
    LinuxDiscoverySocket socketV4;
    LinuxDiscoverySocket socketV6;
    DescriptionWatcher watcher;
    std::unique_ptr<Responder> responder;
    int signals = -1;
    std::set<int> joinedV4;
    std::set<int> joinedV6;
    std::set<std::pair<int, std::string>> servedAddresses;
    std::uint64_t lastSendFailureReport = 0;
};

} // namespace KivResponder

#endif

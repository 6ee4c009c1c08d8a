// SPDX-License-Identifier: Apache-2.0
#include <KivResponder/ResponderLoop.h>

#include <KivPlr/core/Path.h>
#include <KivPlr/core/Result.h>
#include <KivPlr/core/UuidGenerator.h>
#include <KivPlr/io/ILogManager.h>
#include <KivPlr/io/LogManager.h>
#include <KivWsd/WsdLimits.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <poll.h>
#include <random>
#include <sys/signalfd.h>
#include <sys/stat.h>
#include <unistd.h>

using KivPlr::LogLevelError;
using KivPlr::LogLevelInformation;
using KivPlr::LogLevelWarning;
using KivWsd::WsdLimits;

namespace KivResponder {

namespace {

/// The log channel keeps a pointer to its identity for as long as it is open.
const std::string LogIdentity = "discovery-responder";
/// Datagrams read from one socket before the others get their turn.
const int DatagramsPerTurn = 64;
/// A failed send is logged at most this often (the network may be down).
const std::uint64_t SendFailureReportNanoseconds = 60ull * 1000 * 1000 * 1000;

std::uint64_t RandomSeed()
{
    try {
        std::random_device device;
        return (static_cast<std::uint64_t>(device()) << 32) ^ device();
    } catch (const std::exception&) {
        return static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count()) ^
               static_cast<std::uint64_t>(::getpid());
    }
}

/// The logger reads its message as a format: text from outside keeps its "%".
std::string EscapePercent(const std::string& line)
{
    std::string escaped;
    for (char character : line) {
        escaped += character;
        if (character == '%')
            escaped += '%';
    }
    return escaped;
}

} // namespace

ResponderLoop::ResponderLoop(const ResponderOptions& responderOptions)
    : options(responderOptions), state(responderOptions.StateDirectory(), new KivPlr::UuidGenerator),
      socketV4(IpAddress::Family::V4), socketV6(IpAddress::Family::V6),
      watcher(responderOptions.DescriptionsDirectory())
{
}

ResponderLoop::~ResponderLoop()
{
    if (signals >= 0)
        ::close(signals);
}

std::uint64_t ResponderLoop::Now()
{
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
            .count());
}

void ResponderLoop::Log(std::uint32_t level, const std::string& line)
{
    KivPlr::_Result result = KivPlr::ResultFail;
    if (log)
        log->Write(level, EscapePercent(line), result);
}

bool ResponderLoop::Send(const IpAddress& destination, std::uint16_t port, int interfaceIndex, const IpAddress& source,
                         const std::string& data)
{
    LinuxDiscoverySocket& socket = destination.GetFamily() == IpAddress::Family::V4 ? socketV4 : socketV6;
    std::string error = "no socket for " + destination.Text();
    if (socket.IsOpen() && socket.Send(destination, port, interfaceIndex, source, data, error))
        return true;
    std::uint64_t now = Now();
    if (lastSendFailureReport == 0 || now - lastSendFailureReport >= SendFailureReportNanoseconds) {
        Log(LogLevelWarning, error);
        lastSendFailureReport = now;
    }
    return false;
}

bool ResponderLoop::Start(std::string& error)
{
    KivPlr::SmartPtr<KivPlr::ILogManager> logs(new KivPlr::LogManager);
    KivPlr::_Result result = KivPlr::ResultFail;
    logs->Open(KivPlr::Path(), LogIdentity, KivPlr::LogFacilityDaemon, log, result);

    std::vector<std::string> warnings;
    state.Load(warnings);
    for (const std::string& warning : warnings)
        Log(LogLevelWarning, "state file damaged: " + warning);
    if (!state.Start(error))
        return false;

    table.RestrictTo(options.Interfaces());
    if (!monitor.Open(error) || !monitor.Dump(table, error))
        return false;
    if (!socketV4.Open(WsdLimits::Port, error))
        return false;
    std::string problem;
    if (!socketV6.Open(WsdLimits::Port, problem)) {
        // A kernel without IPv6 is served over IPv4 alone; a taken port is
        // not accepted on either family.
        if (errno != EAFNOSUPPORT) {
            error = problem;
            return false;
        }
        Log(LogLevelWarning, problem + "; serving IPv4 only");
    }
    if (!watcher.Start(error))
        return false;

    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGTERM);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGHUP);
    if (::sigprocmask(SIG_BLOCK, &set, nullptr) != 0 ||
        (signals = ::signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC)) < 0) {
        error = std::string("cannot take the signals: ") + std::strerror(errno);
        return false;
    }

    responder.reset(new Responder(
        state, table, *this, [this](std::uint32_t level, const std::string& line) { Log(level, line); },
        RandomSeed()));
    std::uint64_t now = Now();
    SyncMemberships(now);
    responder->Rescan(options.DescriptionsDirectory(), now, true);
    return true;
}

void ResponderLoop::SyncMemberships(std::uint64_t now)
{
    std::set<int> served;
    std::set<std::pair<int, std::string>> addresses;
    std::string names;
    for (const auto& entry : table.Interfaces()) {
        if (!table.IsServed(entry.second))
            continue;
        served.insert(entry.first);
        names += (names.empty() ? "" : ", ") + entry.second.name;
        for (const auto& address : entry.second.addresses)
            addresses.insert({entry.first, address.address.Text()});
    }
    for (LinuxDiscoverySocket* socket : {&socketV4, &socketV6}) {
        if (!socket->IsOpen())
            continue;
        std::set<int>& joined = socket == &socketV4 ? joinedV4 : joinedV6;
        for (auto index = joined.begin(); index != joined.end();) {
            if (served.count(*index) == 0) {
                socket->Leave(*index);
                index = joined.erase(index);
            } else {
                ++index;
            }
        }
        for (int index : served) {
            std::string error;
            if (joined.count(index) != 0)
                continue;
            if (socket->Join(index, error))
                joined.insert(index);
            else
                Log(LogLevelWarning, error + " on " + table.Find(index)->name);
        }
    }
    bool gained = false;
    for (const auto& address : addresses)
        gained |= servedAddresses.count(address) == 0;
    if (addresses != servedAddresses)
        Log(LogLevelInformation, "serving " + (names.empty() ? std::string("no interface yet") : names));
    servedAddresses = addresses;
    // A new interface or address: the clients there have not heard of us.
    if (gained && responder)
        responder->AnnounceAll(now);
}

void ResponderLoop::ReceiveFrom(LinuxDiscoverySocket& socket, std::uint64_t now)
{
    for (int count = 0; count < DatagramsPerTurn; ++count) {
        Datagram datagram;
        LinuxDiscoverySocket::Received received = socket.Receive(datagram, WsdLimits::MaximumIncomingDatagram);
        if (received == LinuxDiscoverySocket::Received::Nothing)
            return;
        if (received == LinuxDiscoverySocket::Received::Oversized)
            responder->CountOversized();
        else if (received == LinuxDiscoverySocket::Received::Datagram)
            responder->HandleDatagram(datagram, now);
    }
}

void ResponderLoop::Serve()
{
    for (;;) {
        std::uint64_t now = Now();
        responder->SendDue(now);
        std::uint64_t due = responder->NextDue();
        int timeout = -1;
        if (due != Responder::Never) {
            now = Now();
            std::uint64_t wait = due > now ? due - now : 0;
            timeout = static_cast<int>(std::min<std::uint64_t>((wait + 999999) / 1000000, 60000));
        }
        pollfd waiting[5] = {{signals, POLLIN, 0},
                             {monitor.Descriptor(), POLLIN, 0},
                             {watcher.Descriptor(), POLLIN, 0},
                             {socketV4.Descriptor(), POLLIN, 0},
                             {socketV6.Descriptor(), POLLIN, 0}};
        int ready = ::poll(waiting, 5, timeout);
        if (ready < 0 && errno != EINTR) {
            Log(LogLevelError, std::string("poll failed: ") + std::strerror(errno));
            ::sleep(1);
            continue;
        }
        if (ready <= 0)
            continue;
        now = Now();
        // Any event counts as readable: an error (a netlink socket whose
        // buffer overran) is read, and so cleared, by the reader, where a
        // poll for POLLIN alone would wake at once again and again.
        if (waiting[0].revents != 0) {
            signalfd_siginfo information;
            bool stop = false;
            bool rescan = false;
            while (::read(signals, &information, sizeof information) == static_cast<ssize_t>(sizeof information)) {
                if (information.ssi_signo == SIGHUP)
                    rescan = true;
                else
                    stop = true;
            }
            if (stop)
                return;
            if (rescan)
                responder->Rescan(options.DescriptionsDirectory(), now);
        }
        if (waiting[1].revents != 0 && monitor.ReadNotifications(table))
            SyncMemberships(now);
        if (waiting[2].revents != 0) {
            std::set<std::string> names;
            bool rescan = false;
            watcher.ReadEvents(names, rescan);
            if (rescan)
                responder->Rescan(options.DescriptionsDirectory(), now);
            else
                for (const std::string& name : names)
                    responder->Refresh(options.DescriptionsDirectory(), name, now);
        }
        if (waiting[3].revents != 0)
            ReceiveFrom(socketV4, now);
        if (waiting[4].revents != 0)
            ReceiveFrom(socketV6, now);
    }
}

int ResponderLoop::Run()
{
    std::string error;
    if (!Start(error)) {
        std::fprintf(stderr, "discovery-responder: %s\n", error.c_str());
        Log(LogLevelError, "cannot start: " + error);
        return 1;
    }
    Log(LogLevelInformation, "started: instance " + std::to_string(state.InstanceId()) + ", " +
                                 std::to_string(responder->Targets().size()) + " descriptions in " +
                                 options.DescriptionsDirectory());
    std::fprintf(stderr, "%s\n", ReadyLine);
    std::fflush(stderr);
    Serve();
    responder->ByeAll();
    Log(LogLevelInformation, "stopped after " + std::to_string(responder->MessagesSent()) + " messages");
    return 0;
}

} // namespace KivResponder

// SPDX-License-Identifier: Apache-2.0
#include <KivBrowse/ProbeExchange.h>

#include <KivWsd/WsdLimits.h>
#include <KivWsd/WsdReader.h>
#include <KivWsd/WsdWriter.h>

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/random.h>
#include <sys/socket.h>
#include <unistd.h>

namespace KivBrowse {

namespace {

using KivWsd::WsdLimits;

/// A UDP socket closed when it goes.
struct Socket
{
    int descriptor = -1;
    Socket() = default;
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    ~Socket()
    {
        if (descriptor >= 0)
            close(descriptor);
    }
};

struct Interface
{
    std::string name;
    unsigned index = 0;
    bool hasIPv4 = false;
    bool hasIPv6 = false;
};

/// The up, multicast-capable interfaces other than loopback, or only
/// \p wanted when it is not empty, with the families they have addresses of.
std::vector<Interface> MulticastInterfaces(const std::string& wanted)
{
    std::vector<Interface> found;
    struct ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0)
        return found;
    for (struct ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) {
        unsigned flags = entry->ifa_flags;
        if ((flags & IFF_UP) == 0 || (flags & IFF_MULTICAST) == 0 || (flags & IFF_LOOPBACK) != 0 ||
            entry->ifa_addr == nullptr || (!wanted.empty() && wanted != entry->ifa_name))
            continue;
        int family = entry->ifa_addr->sa_family;
        if (family != AF_INET && family != AF_INET6)
            continue;
        auto known = std::find_if(found.begin(), found.end(),
                                  [&](const Interface& interface) { return interface.name == entry->ifa_name; });
        if (known == found.end()) {
            found.push_back(Interface{entry->ifa_name, if_nametoindex(entry->ifa_name)});
            known = found.end() - 1;
        }
        (family == AF_INET ? known->hasIPv4 : known->hasIPv6) = true;
    }
    freeifaddrs(list);
    return found;
}

/// "urn:uuid:" and a fresh random version 4 identifier.
std::string NewMessageId()
{
    unsigned char bytes[16] = {};
    std::size_t filled = 0;
    while (filled < sizeof bytes) {
        ssize_t got = getrandom(bytes + filled, sizeof bytes - filled, 0);
        if (got < 0 && errno != EINTR)
            break;
        filled += got > 0 ? static_cast<std::size_t>(got) : 0;
    }
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40);
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80);
    char text[37];
    char* out = text;
    for (std::size_t index = 0; index < sizeof bytes; ++index) {
        if (index == 4 || index == 6 || index == 8 || index == 10)
            *out++ = '-';
        out += std::snprintf(out, 3, "%02x", bytes[index]);
    }
    return "urn:uuid:" + std::string(text, 36);
}

bool OpenSocket(Socket& socket, int family, std::string& error)
{
    socket.descriptor = ::socket(family, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    int one = 1;
    int hops = 1;
    bool ready = socket.descriptor >= 0;
    if (ready && family == AF_INET) {
        struct sockaddr_in any = {};
        any.sin_family = AF_INET;
        ready = bind(socket.descriptor, reinterpret_cast<struct sockaddr*>(&any), sizeof any) == 0 &&
                setsockopt(socket.descriptor, IPPROTO_IP, IP_MULTICAST_TTL, &hops, sizeof hops) == 0 &&
                setsockopt(socket.descriptor, IPPROTO_IP, IP_TTL, &hops, sizeof hops) == 0;
    } else if (ready) {
        struct sockaddr_in6 any = {};
        any.sin6_family = AF_INET6;
        ready = setsockopt(socket.descriptor, IPPROTO_IPV6, IPV6_V6ONLY, &one, sizeof one) == 0 &&
                bind(socket.descriptor, reinterpret_cast<struct sockaddr*>(&any), sizeof any) == 0 &&
                setsockopt(socket.descriptor, IPPROTO_IPV6, IPV6_MULTICAST_HOPS, &hops, sizeof hops) == 0 &&
                setsockopt(socket.descriptor, IPPROTO_IPV6, IPV6_UNICAST_HOPS, &hops, sizeof hops) == 0;
    }
    if (!ready)
        error = std::string("cannot open a UDP socket for ") + (family == AF_INET ? "IPv4" : "IPv6") + ": " +
                std::strerror(errno);
    return ready;
}

/// Sends \p datagram to port 3702 of \p address (text) out of \p interfaceIndex
/// (0: as routed); says on standard error what went wrong.
bool Send(const Socket& socket, int family, const std::string& address, unsigned interfaceIndex,
          const std::string& datagram, const std::string& where)
{
    int sent = -1;
    if (family == AF_INET) {
        struct sockaddr_in target = {};
        target.sin_family = AF_INET;
        target.sin_port = htons(WsdLimits::Port);
        inet_pton(AF_INET, address.c_str(), &target.sin_addr);
        struct ip_mreqn outgoing = {};
        outgoing.imr_ifindex = static_cast<int>(interfaceIndex);
        if (interfaceIndex == 0 ||
            setsockopt(socket.descriptor, IPPROTO_IP, IP_MULTICAST_IF, &outgoing, sizeof outgoing) == 0)
            sent = static_cast<int>(sendto(socket.descriptor, datagram.data(), datagram.size(), 0,
                                           reinterpret_cast<struct sockaddr*>(&target), sizeof target));
    } else {
        struct sockaddr_in6 target = {};
        target.sin6_family = AF_INET6;
        target.sin6_port = htons(WsdLimits::Port);
        target.sin6_scope_id = interfaceIndex;
        inet_pton(AF_INET6, address.c_str(), &target.sin6_addr);
        int index = static_cast<int>(interfaceIndex);
        if (interfaceIndex == 0 ||
            setsockopt(socket.descriptor, IPPROTO_IPV6, IPV6_MULTICAST_IF, &index, sizeof index) == 0)
            sent = static_cast<int>(sendto(socket.descriptor, datagram.data(), datagram.size(), 0,
                                           reinterpret_cast<struct sockaddr*>(&target), sizeof target));
    }
    if (sent < 0)
        std::fprintf(stderr, "discovery-browse: cannot send the probe %s: %s\n", where.c_str(), std::strerror(errno));
    return sent >= 0;
}

} // namespace

bool ProbeExchange::Run(const BrowseOptions& options, FoundUnits& units, std::string& error)
{
    Socket sockets[2];
    const int families[2] = {AF_INET, AF_INET6};
    const bool wanted[2] = {options.UseIPv4(), options.UseIPv6()};
    const std::string& unicast = options.UnicastAddress();
    unsigned char unused[sizeof(struct in6_addr)];
    bool unicastIPv4 = !unicast.empty() && inet_pton(AF_INET, unicast.c_str(), unused) == 1;

    std::vector<Interface> interfaces;
    if (unicast.empty()) {
        interfaces = MulticastInterfaces(options.Interface());
        if (interfaces.empty()) {
            error = options.Interface().empty()
                        ? "no multicast-capable interface other than loopback is up"
                        : "interface " + options.Interface() + " is not up, not multicast-capable or has no address";
            return false;
        }
    }

    std::vector<std::string> probeIds;
    for (int which = 0; which < 2; ++which) {
        if (!wanted[which] || (!unicast.empty() && unicastIPv4 != (families[which] == AF_INET)))
            continue;
        if (!OpenSocket(sockets[which], families[which], error))
            return false;
        const char* group = families[which] == AF_INET ? WsdLimits::MulticastGroupIPv4 : WsdLimits::MulticastGroupIPv6;
        for (KivWsd::WsdVersion version : options.Versions()) {
            std::string messageId = NewMessageId();
            std::string probe =
                KivWsd::WsdWriter::Probe(version, messageId, options.Types(), options.Scopes(), options.MatchByUri(version));
            bool sent = false;
            if (!unicast.empty())
                sent = Send(sockets[which], families[which], unicast, 0, probe, "to " + unicast);
            for (const Interface& interface : interfaces)
                if (families[which] == AF_INET ? interface.hasIPv4 : interface.hasIPv6)
                    sent = Send(sockets[which], families[which], group, interface.index, probe,
                                std::string("on ") + interface.name + (families[which] == AF_INET ? " (IPv4)" : " (IPv6)")) ||
                           sent;
            if (sent)
                probeIds.push_back(messageId);
        }
    }
    if (probeIds.empty()) {
        error = "no probe could be sent";
        return false;
    }

    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(options.TimeoutMilliseconds());
    struct pollfd waiting[2];
    for (int which = 0; which < 2; ++which)
        waiting[which] = {sockets[which].descriptor, POLLIN, 0};
    std::vector<char> buffer(WsdLimits::MaximumOutgoingDatagram + 1);
    for (;;) {
        auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            break;
        int ready = poll(waiting, 2, static_cast<int>(left.count()) + 1);
        if (ready < 0 && errno != EINTR)
            break;
        for (int which = 0; ready > 0 && which < 2; ++which) {
            if ((waiting[which].revents & POLLIN) == 0)
                continue;
            ssize_t size = recv(sockets[which].descriptor, buffer.data(), buffer.size(), 0);
            KivWsd::WsdMessage answer;
            std::string problem;
            if (size <= 0 || static_cast<std::size_t>(size) > WsdLimits::MaximumOutgoingDatagram ||
                !KivWsd::WsdReader::Read(buffer.data(), static_cast<std::size_t>(size),
                                         WsdLimits::MaximumOutgoingDatagram, answer, problem) ||
                answer.action != KivWsd::WsdAction::ProbeMatches ||
                std::find(probeIds.begin(), probeIds.end(), answer.relatesTo) == probeIds.end())
                continue;
            units.Add(answer);
            answers.emplace_back(buffer.data(), static_cast<std::size_t>(size));
        }
    }
    return true;
}

} // namespace KivBrowse

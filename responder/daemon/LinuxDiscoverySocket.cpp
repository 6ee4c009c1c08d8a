// SPDX-License-Identifier: Apache-2.0
#include <KivResponder/LinuxDiscoverySocket.h>

#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace KivResponder {

namespace {

const char GroupV4[] = "239.255.255.250";
const char GroupV6[] = "ff02::c";

std::string FamilyName(IpAddress::Family family)
{
    return family == IpAddress::Family::V4 ? "IPv4" : "IPv6";
}

bool SetOption(int descriptor, int level, int name, int value)
{
    return ::setsockopt(descriptor, level, name, &value, sizeof value) == 0;
}

} // namespace

LinuxDiscoverySocket::LinuxDiscoverySocket(IpAddress::Family socketFamily) : family(socketFamily) {}

LinuxDiscoverySocket::~LinuxDiscoverySocket()
{
    if (descriptor >= 0)
        ::close(descriptor);
}

IpAddress LinuxDiscoverySocket::Group() const
{
    return IpAddress::FromText(family == IpAddress::Family::V4 ? GroupV4 : GroupV6);
}

bool LinuxDiscoverySocket::Open(std::uint16_t port, std::string& error)
{
    bool v4 = family == IpAddress::Family::V4;
    descriptor = ::socket(v4 ? AF_INET : AF_INET6, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (descriptor < 0) {
        error = "cannot make a UDP socket (" + FamilyName(family) + "): " + std::strerror(errno);
        return false;
    }
    // Other discovery software on the unit may listen on the port as well.
    bool set = SetOption(descriptor, SOL_SOCKET, SO_REUSEADDR, 1);
    if (v4) {
        set = set && SetOption(descriptor, IPPROTO_IP, IP_PKTINFO, 1) &&
              SetOption(descriptor, IPPROTO_IP, IP_MULTICAST_TTL, 1) && SetOption(descriptor, IPPROTO_IP, IP_TTL, 1) &&
              SetOption(descriptor, IPPROTO_IP, IP_MULTICAST_LOOP, 0);
    } else {
        set = set && SetOption(descriptor, IPPROTO_IPV6, IPV6_V6ONLY, 1) &&
              SetOption(descriptor, IPPROTO_IPV6, IPV6_RECVPKTINFO, 1) &&
              SetOption(descriptor, IPPROTO_IPV6, IPV6_MULTICAST_HOPS, 1) &&
              SetOption(descriptor, IPPROTO_IPV6, IPV6_UNICAST_HOPS, 1) &&
              SetOption(descriptor, IPPROTO_IPV6, IPV6_MULTICAST_LOOP, 0);
    }
    if (!set) {
        error = "cannot set the options of the UDP socket (" + FamilyName(family) + "): " + std::strerror(errno);
        ::close(descriptor);
        descriptor = -1;
        return false;
    }
    int bound;
    if (v4) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_ANY);
        bound = ::bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address);
    } else {
        sockaddr_in6 address{};
        address.sin6_family = AF_INET6;
        address.sin6_port = htons(port);
        address.sin6_addr = in6addr_any;
        bound = ::bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address);
    }
    if (bound != 0) {
        error = "cannot bind UDP port " + std::to_string(port) + " (" + FamilyName(family) + "): " +
                std::strerror(errno);
        ::close(descriptor);
        descriptor = -1;
        return false;
    }
    return true;
}

bool LinuxDiscoverySocket::Join(int index, std::string& error)
{
    int done;
    if (family == IpAddress::Family::V4) {
        ip_mreqn request{};
        ::inet_pton(AF_INET, GroupV4, &request.imr_multiaddr);
        request.imr_ifindex = index;
        done = ::setsockopt(descriptor, IPPROTO_IP, IP_ADD_MEMBERSHIP, &request, sizeof request);
    } else {
        ipv6_mreq request{};
        ::inet_pton(AF_INET6, GroupV6, &request.ipv6mr_multiaddr);
        request.ipv6mr_interface = static_cast<unsigned>(index);
        done = ::setsockopt(descriptor, IPPROTO_IPV6, IPV6_ADD_MEMBERSHIP, &request, sizeof request);
    }
    if (done == 0 || errno == EADDRINUSE)
        return true;
    error = "cannot join " + std::string(family == IpAddress::Family::V4 ? GroupV4 : GroupV6) + ": " +
            std::strerror(errno);
    return false;
}

void LinuxDiscoverySocket::Leave(int index)
{
    if (family == IpAddress::Family::V4) {
        ip_mreqn request{};
        ::inet_pton(AF_INET, GroupV4, &request.imr_multiaddr);
        request.imr_ifindex = index;
        ::setsockopt(descriptor, IPPROTO_IP, IP_DROP_MEMBERSHIP, &request, sizeof request);
    } else {
        ipv6_mreq request{};
        ::inet_pton(AF_INET6, GroupV6, &request.ipv6mr_multiaddr);
        request.ipv6mr_interface = static_cast<unsigned>(index);
        ::setsockopt(descriptor, IPPROTO_IPV6, IPV6_DROP_MEMBERSHIP, &request, sizeof request);
    }
}

LinuxDiscoverySocket::Received LinuxDiscoverySocket::Receive(Datagram& datagram, std::size_t maximumSize)
{
    receiveBuffer.resize(maximumSize + 1);
    sockaddr_storage sender{};
    alignas(cmsghdr) char control[256];
    iovec part{&receiveBuffer[0], receiveBuffer.size()};
    msghdr message{};
    message.msg_name = &sender;
    message.msg_namelen = sizeof sender;
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    ssize_t size;
    do {
        size = ::recvmsg(descriptor, &message, 0);
    } while (size < 0 && errno == EINTR);
    if (size < 0)
        return Received::Nothing;
    if ((message.msg_flags & MSG_TRUNC) != 0 || static_cast<std::size_t>(size) > maximumSize)
        return Received::Oversized;
    datagram = Datagram();
    datagram.source = IpAddress::FromSocketAddress(reinterpret_cast<sockaddr*>(&sender));
    if (sender.ss_family == AF_INET)
        datagram.sourcePort = ntohs(reinterpret_cast<sockaddr_in*>(&sender)->sin_port);
    else if (sender.ss_family == AF_INET6)
        datagram.sourcePort = ntohs(reinterpret_cast<sockaddr_in6*>(&sender)->sin6_port);
    for (cmsghdr* item = CMSG_FIRSTHDR(&message); item != nullptr; item = CMSG_NXTHDR(&message, item)) {
        if (item->cmsg_level == IPPROTO_IP && item->cmsg_type == IP_PKTINFO) {
            in_pktinfo information;
            std::memcpy(&information, CMSG_DATA(item), sizeof information);
            datagram.interfaceIndex = information.ipi_ifindex;
            datagram.destination = IpAddress::V4(reinterpret_cast<const unsigned char*>(&information.ipi_addr));
        } else if (item->cmsg_level == IPPROTO_IPV6 && item->cmsg_type == IPV6_PKTINFO) {
            in6_pktinfo information;
            std::memcpy(&information, CMSG_DATA(item), sizeof information);
            datagram.interfaceIndex = static_cast<int>(information.ipi6_ifindex);
            datagram.destination = IpAddress::V6(information.ipi6_addr.s6_addr);
        }
    }
    if (datagram.interfaceIndex <= 0 || datagram.source.IsEmpty() || datagram.destination.IsEmpty())
        return Received::Unusable;
    datagram.data.assign(receiveBuffer.data(), static_cast<std::size_t>(size));
    return Received::Datagram;
}

bool LinuxDiscoverySocket::Send(const IpAddress& destination, std::uint16_t port, int interfaceIndex,
                                const IpAddress& source, const std::string& data, std::string& error)
{
    sockaddr_storage target{};
    socklen_t targetSize;
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(in6_pktinfo))] = {};
    msghdr message{};
    iovec part{const_cast<char*>(data.data()), data.size()};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    cmsghdr* item = CMSG_FIRSTHDR(&message);
    if (family == IpAddress::Family::V4 && destination.GetFamily() == IpAddress::Family::V4) {
        auto* v4 = reinterpret_cast<sockaddr_in*>(&target);
        v4->sin_family = AF_INET;
        v4->sin_port = htons(port);
        std::memcpy(&v4->sin_addr, destination.Bytes(), 4);
        targetSize = sizeof(sockaddr_in);
        in_pktinfo information{};
        information.ipi_ifindex = interfaceIndex;
        if (source.GetFamily() == IpAddress::Family::V4)
            std::memcpy(&information.ipi_spec_dst, source.Bytes(), 4);
        message.msg_controllen = CMSG_SPACE(sizeof information);
        item->cmsg_level = IPPROTO_IP;
        item->cmsg_type = IP_PKTINFO;
        item->cmsg_len = CMSG_LEN(sizeof information);
        std::memcpy(CMSG_DATA(item), &information, sizeof information);
    } else if (family == IpAddress::Family::V6 && destination.GetFamily() == IpAddress::Family::V6) {
        auto* v6 = reinterpret_cast<sockaddr_in6*>(&target);
        v6->sin6_family = AF_INET6;
        v6->sin6_port = htons(port);
        std::memcpy(v6->sin6_addr.s6_addr, destination.Bytes(), 16);
        if (destination.IsLinkLocalV6() || destination.IsMulticast())
            v6->sin6_scope_id = static_cast<std::uint32_t>(interfaceIndex);
        targetSize = sizeof(sockaddr_in6);
        in6_pktinfo information{};
        information.ipi6_ifindex = static_cast<unsigned>(interfaceIndex);
        if (source.GetFamily() == IpAddress::Family::V6)
            std::memcpy(information.ipi6_addr.s6_addr, source.Bytes(), 16);
        message.msg_controllen = CMSG_SPACE(sizeof information);
        item->cmsg_level = IPPROTO_IPV6;
        item->cmsg_type = IPV6_PKTINFO;
        item->cmsg_len = CMSG_LEN(sizeof information);
        std::memcpy(CMSG_DATA(item), &information, sizeof information);
    } else {
        error = "no " + FamilyName(family) + " destination: " + destination.Text();
        return false;
    }
    message.msg_name = &target;
    message.msg_namelen = targetSize;
    ssize_t sent;
    do {
        sent = ::sendmsg(descriptor, &message, 0);
    } while (sent < 0 && errno == EINTR);
    if (sent < 0) {
        error = "cannot send to " + destination.Text() + " on interface " + std::to_string(interfaceIndex) + ": " +
                std::strerror(errno);
        return false;
    }
    return true;
}

} // namespace KivResponder

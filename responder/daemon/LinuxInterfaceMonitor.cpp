// SPDX-License-Identifier: Apache-2.0
#include <KivResponder/LinuxInterfaceMonitor.h>

#include <cerrno>
#include <cstring>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace KivResponder {

namespace {

/// How long a dump may take before the kernel counts as not answering.
const int DumpWaitMilliseconds = 5000;

} // namespace

LinuxInterfaceMonitor::~LinuxInterfaceMonitor()
{
    if (descriptor >= 0)
        ::close(descriptor);
}

bool LinuxInterfaceMonitor::Open(std::string& error)
{
    descriptor = ::socket(AF_NETLINK, SOCK_RAW | SOCK_NONBLOCK | SOCK_CLOEXEC, NETLINK_ROUTE);
    if (descriptor < 0) {
        error = std::string("cannot open a netlink socket: ") + std::strerror(errno);
        return false;
    }
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR;
    if (::bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        error = std::string("cannot subscribe to interface changes: ") + std::strerror(errno);
        ::close(descriptor);
        descriptor = -1;
        return false;
    }
    return true;
}

bool LinuxInterfaceMonitor::Request(std::uint16_t type, std::uint32_t sequence)
{
    struct
    {
        nlmsghdr header;
        rtgenmsg body;
    } request{};
    request.header.nlmsg_len = NLMSG_LENGTH(sizeof(rtgenmsg));
    request.header.nlmsg_type = type;
    request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    request.header.nlmsg_seq = sequence;
    request.body.rtgen_family = AF_UNSPEC;
    sockaddr_nl kernel{};
    kernel.nl_family = AF_NETLINK;
    return ::sendto(descriptor, &request, request.header.nlmsg_len, 0, reinterpret_cast<sockaddr*>(&kernel),
                    sizeof kernel) >= 0;
}

bool LinuxInterfaceMonitor::DumpOne(InterfaceTable& table, std::uint16_t type, std::string& error)
{
    std::uint32_t sequence = nextSequence++;
    if (!Request(type, sequence)) {
        error = std::string("cannot ask the kernel for its interfaces: ") + std::strerror(errno);
        return false;
    }
    for (;;) {
        pollfd waiting{descriptor, POLLIN, 0};
        int ready = ::poll(&waiting, 1, DumpWaitMilliseconds);
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0) {
            error = "the kernel did not list its interfaces";
            return false;
        }
        ssize_t size = ::recv(descriptor, buffer.data(), buffer.size(), 0);
        if (size < 0) {
            if (errno == EINTR || errno == EAGAIN || errno == ENOBUFS)
                continue;
            error = std::string("cannot read the interface list: ") + std::strerror(errno);
            return false;
        }
        table.Apply(buffer.data(), static_cast<std::size_t>(size));
        // The end of the dump, or the kernel's refusal of it.
        for (std::size_t offset = 0; offset + sizeof(nlmsghdr) <= static_cast<std::size_t>(size);) {
            nlmsghdr header;
            std::memcpy(&header, buffer.data() + offset, sizeof header);
            if (header.nlmsg_len < sizeof header)
                break;
            if (header.nlmsg_seq == sequence && header.nlmsg_type == NLMSG_DONE)
                return true;
            if (header.nlmsg_seq == sequence && header.nlmsg_type == NLMSG_ERROR) {
                nlmsgerr answer{};
                if (header.nlmsg_len >= NLMSG_LENGTH(sizeof answer))
                    std::memcpy(&answer, buffer.data() + offset + NLMSG_HDRLEN, sizeof answer);
                error = std::string("the kernel refused to list its interfaces: ") + std::strerror(-answer.error);
                return false;
            }
            offset += NLMSG_ALIGN(header.nlmsg_len);
        }
    }
}

bool LinuxInterfaceMonitor::Dump(InterfaceTable& table, std::string& error)
{
    table.Clear();
    return DumpOne(table, RTM_GETLINK, error) && DumpOne(table, RTM_GETADDR, error);
}

bool LinuxInterfaceMonitor::ReadNotifications(InterfaceTable& table)
{
    bool changed = false;
    bool lost = false;
    for (;;) {
        ssize_t size = ::recv(descriptor, buffer.data(), buffer.size(), 0);
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0 && errno == ENOBUFS) {
            lost = true;
            continue;
        }
        if (size <= 0)
            break;
        changed |= table.Apply(buffer.data(), static_cast<std::size_t>(size));
    }
    if (lost) {
        std::string ignored;
        Dump(table, ignored);
        changed = true;
    }
    return changed;
}

} // namespace KivResponder

// SPDX-License-Identifier: Apache-2.0
// LinuxDiscoverySocket.h - the responder's UDP socket of one address family
// on the discovery port: joins and leaves the discovery group per
// interface, receives with the arrival interface and destination address,
// and sends out of a chosen interface with TTL or hop limit 1.
//
// IPv4: 0.0.0.0:3702, group 239.255.255.250; IPv6: [::]:3702 (IPv6 only),
// group ff02::c. Owned by the daemon's loop; one thread.
//
// Example:
//   LinuxDiscoverySocket socket(IpAddress::Family::V4);
//   std::string error;
//   if (!socket.Open(3702, error)) { /* "cannot bind UDP port 3702 (IPv4): Address already in use" */ }
//   socket.Join(2, error);
//   Datagram datagram;
//   if (socket.Receive(datagram, 4096) == LinuxDiscoverySocket::Received::Datagram) { /* handle it */ }
#ifndef KIV_RESPONDER_LINUXDISCOVERYSOCKET_H
#define KIV_RESPONDER_LINUXDISCOVERYSOCKET_H

#include <KivResponder/Datagram.h>
#include <KivResponder/IpAddress.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace KivResponder {

class LinuxDiscoverySocket
{
public:
    /// What one Receive found.
    enum class Received { Nothing, Datagram, Oversized, Unusable };

    explicit LinuxDiscoverySocket(IpAddress::Family family);
    ~LinuxDiscoverySocket();
    LinuxDiscoverySocket(const LinuxDiscoverySocket&) = delete;
    LinuxDiscoverySocket& operator=(const LinuxDiscoverySocket&) = delete;

    /// Makes the non-blocking socket, sets its options and binds it to the
    /// wildcard address and \p port. False with \p error otherwise; the
    /// socket is then closed.
    bool Open(std::uint16_t port, std::string& error);
    bool IsOpen() const { return descriptor >= 0; }
    int Descriptor() const { return descriptor; }
    IpAddress::Family GetFamily() const { return family; }
    /// The discovery group of this family.
    IpAddress Group() const;

    /// Joins the discovery group on interface \p index; joining twice is no
    /// error. False with \p error when the kernel refuses.
    bool Join(int index, std::string& error);
    /// Leaves the group on interface \p index; nothing when not joined or
    /// the interface is gone.
    void Leave(int index);

    /// Reads one pending datagram without blocking. Datagram: \p datagram is
    /// filled. Oversized: it filled the buffer of maximumSize + 1 bytes and
    /// was dropped unread. Unusable: it came without its arrival information.
    /// Nothing: none pending (or a receive error).
    Received Receive(Datagram& datagram, std::size_t maximumSize);

    /// sendmsg to \p destination:\p port with IP_PKTINFO / IPV6_PKTINFO
    /// naming \p interfaceIndex and \p source (empty: any). False with
    /// \p error when the kernel refuses.
    bool Send(const IpAddress& destination, std::uint16_t port, int interfaceIndex, const IpAddress& source,
              const std::string& data, std::string& error);

private:
    IpAddress::Family family;
    int descriptor = -1;
    std::string receiveBuffer;
};

} // namespace KivResponder

#endif

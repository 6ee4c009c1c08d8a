// SPDX-License-Identifier: Apache-2.0
// Sockets on an ephemeral port over loopback only: no group is joined and
// nothing leaves the machine.
#include <KivResponder/LinuxDiscoverySocket.h>

#include <gtest/gtest.h>

#include <net/if.h>
#include <netinet/in.h>
#include <poll.h>
#include <string>
#include <sys/socket.h>

using KivResponder::Datagram;
using KivResponder::IpAddress;
using KivResponder::LinuxDiscoverySocket;

namespace {

std::uint16_t BoundPort(int descriptor)
{
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size);
    if (address.ss_family == AF_INET)
        return ntohs(reinterpret_cast<sockaddr_in*>(&address)->sin_port);
    return ntohs(reinterpret_cast<sockaddr_in6*>(&address)->sin6_port);
}

// Waits (bounded) until \p socket has a datagram, so that the test does not
// race the loopback delivery.
bool Readable(const LinuxDiscoverySocket& socket)
{
    pollfd waiting{socket.Descriptor(), POLLIN, 0};
    return poll(&waiting, 1, 5000) == 1;
}

} // namespace

TEST(LinuxDiscoverySocketTest, ReceiveGivesSourceDestinationAndArrivalInterface)
{
    LinuxDiscoverySocket receiver(IpAddress::Family::V4);
    LinuxDiscoverySocket sender(IpAddress::Family::V4);
    std::string error;
    ASSERT_TRUE(receiver.Open(0, error)) << error;
    ASSERT_TRUE(sender.Open(0, error)) << error;
    IpAddress loopback = IpAddress::FromText("127.0.0.1");
    int loopbackIndex = static_cast<int>(if_nametoindex("lo"));
    ASSERT_TRUE(sender.Send(loopback, BoundPort(receiver.Descriptor()), loopbackIndex, IpAddress(), "probe", error))
        << error;
    ASSERT_TRUE(Readable(receiver));
    Datagram datagram;
    ASSERT_EQ(receiver.Receive(datagram, 4096), LinuxDiscoverySocket::Received::Datagram);
    EXPECT_EQ(datagram.data, "probe");
    EXPECT_EQ(datagram.source, loopback);
    EXPECT_EQ(datagram.sourcePort, BoundPort(sender.Descriptor()));
    EXPECT_EQ(datagram.destination, loopback);
    EXPECT_EQ(datagram.interfaceIndex, loopbackIndex);
    EXPECT_EQ(receiver.Receive(datagram, 4096), LinuxDiscoverySocket::Received::Nothing);
}

TEST(LinuxDiscoverySocketTest, ADatagramThatFillsTheBufferIsReportedOversized)
{
    LinuxDiscoverySocket receiver(IpAddress::Family::V4);
    LinuxDiscoverySocket sender(IpAddress::Family::V4);
    std::string error;
    ASSERT_TRUE(receiver.Open(0, error)) << error;
    ASSERT_TRUE(sender.Open(0, error)) << error;
    std::uint16_t port = BoundPort(receiver.Descriptor());
    int loopbackIndex = static_cast<int>(if_nametoindex("lo"));
    IpAddress loopback = IpAddress::FromText("127.0.0.1");
    ASSERT_TRUE(sender.Send(loopback, port, loopbackIndex, IpAddress(), std::string(4097, 'x'), error)) << error;
    ASSERT_TRUE(sender.Send(loopback, port, loopbackIndex, IpAddress(), std::string(4096, 'y'), error)) << error;
    Datagram datagram;
    ASSERT_TRUE(Readable(receiver));
    EXPECT_EQ(receiver.Receive(datagram, 4096), LinuxDiscoverySocket::Received::Oversized);
    ASSERT_TRUE(Readable(receiver));
    ASSERT_EQ(receiver.Receive(datagram, 4096), LinuxDiscoverySocket::Received::Datagram);
    EXPECT_EQ(datagram.data.size(), 4096u);
}

TEST(LinuxDiscoverySocketTest, ASecondSocketOnTheSamePortIsAllowedForOtherListeners)
{
    LinuxDiscoverySocket first(IpAddress::Family::V4);
    std::string error;
    ASSERT_TRUE(first.Open(0, error)) << error;
    LinuxDiscoverySocket second(IpAddress::Family::V4);
    EXPECT_TRUE(second.Open(BoundPort(first.Descriptor()), error)) << error;
}

TEST(LinuxDiscoverySocketTest, APortHeldWithoutReuseCannotBeBound)
{
    int holder = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ASSERT_GE(holder, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    ASSERT_EQ(bind(holder, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    std::uint16_t port = BoundPort(holder);
    LinuxDiscoverySocket socket(IpAddress::Family::V4);
    std::string error;
    EXPECT_FALSE(socket.Open(port, error));
    EXPECT_EQ(error, "cannot bind UDP port " + std::to_string(port) + " (IPv4): Address already in use");
    EXPECT_FALSE(socket.IsOpen());
    close(holder);
}

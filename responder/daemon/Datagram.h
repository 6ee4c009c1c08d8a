// SPDX-License-Identifier: Apache-2.0
// Datagram.h - one UDP datagram as the responder received it: who sent it,
// to which address, on which interface, and its bytes.
//
// A plain value; filled by LinuxDiscoverySocket::Receive (or a test) and
// handed to Responder::HandleDatagram. Any thread.
//
// Example:
//   Datagram datagram;
//   datagram.source = IpAddress::FromText("192.0.2.20");
//   datagram.sourcePort = 51000;
//   datagram.destination = IpAddress::FromText("239.255.255.250");
//   datagram.interfaceIndex = 2;
//   datagram.data = "<?xml version=\"1.0\"?>...";   // the bytes received
#ifndef KIV_RESPONDER_DATAGRAM_H
#define KIV_RESPONDER_DATAGRAM_H

#include <KivResponder/IpAddress.h>

#include <cstdint>
#include <string>

namespace KivResponder {

struct Datagram
{
    IpAddress source;
    std::uint16_t sourcePort = 0;
    /// The address in the datagram's header: a group or one of ours.
    IpAddress destination;
    /// The interface it arrived on.
    int interfaceIndex = 0;
    std::string data;
};

} // namespace KivResponder

#endif

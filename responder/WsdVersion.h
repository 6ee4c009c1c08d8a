// SPDX-License-Identifier: Apache-2.0
// WsdVersion.h - the two WS-Discovery versions that are spoken on the wire.
//
// Discovery2005 is the 2005/04 draft with WS-Addressing 2004/08 (what video
// equipment and Windows send); Discovery2009 is the 1.1 standard with
// WS-Addressing 1.0. Both use SOAP 1.2. A plain value; any thread.
//
// Example:
//   #include <KivWsd/WsdReader.h>
//   #include <KivWsd/WsdWriter.h>
//   const std::string datagram = "<received/>";
//   KivWsd::WsdMessage probe;
//   std::string error;
//   std::string answer;
//   if (KivWsd::WsdReader::Read(datagram.data(), datagram.size(), probe, error) && probe.version == KivWsd::WsdVersion::Discovery2005)
//       answer = KivWsd::WsdWriter::ProbeMatches(probe.version, "urn:uuid:0b7e2c1a-5d3f-4c2e-9a61-3f0d2b8c4e71", probe.messageId, KivWsd::AppSequence(), {});
#ifndef KIV_WSD_WSDVERSION_H
#define KIV_WSD_WSDVERSION_H

namespace KivWsd {

enum class WsdVersion
{
    Discovery2005,  ///< http://schemas.xmlsoap.org/ws/2005/04/discovery
    Discovery2009   ///< http://docs.oasis-open.org/ws-dd/ns/discovery/2009/01
};

} // namespace KivWsd

#endif

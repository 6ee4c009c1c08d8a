// SPDX-License-Identifier: Apache-2.0
// WsdReader.h - the strict reader of one received WS-Discovery datagram:
// one pass of expat, no document tree, no document type declarations, no
// entities but the predefined ones, and a bound on everything it keeps.
//
// Stateless; any thread.
//
// Example:
//   #include <cstdio>
//   const std::string datagram = "<!DOCTYPE x><x/>";
//   KivWsd::WsdMessage message;
//   std::string error;
//   if (!KivWsd::WsdReader::Read(datagram.data(), datagram.size(), message, error))
//       std::fprintf(stderr, "dropped: %s\n", error.c_str());   // document type declarations are refused
#ifndef KIV_WSD_WSDREADER_H
#define KIV_WSD_WSDREADER_H

#include <KivWsd/WsdMessage.h>

#include <cstddef>
#include <string>

namespace KivWsd {

class WsdReader
{
public:
    /// Parses \p size bytes, at most WsdLimits::MaximumIncomingDatagram.
    /// Answers true with \p message filled, or false with a one-line
    /// \p error and \p message unspecified:
    /// "datagram of 5000 bytes is above the limit of 4096 bytes",
    /// "document type declarations are refused",
    /// "malformed XML at 1:57: mismatched tag",
    /// "not a WS-Discovery message: ...".
    /// Accepted: a SOAP 1.2 envelope whose addressing headers and body are
    /// all of one of the two versions, a wsa:Action that names the body's
    /// element and a wsa:MessageID; unknown header blocks, attributes and
    /// extension elements are skipped. Lists longer than
    /// WsdLimits::MaximumListEntries, more than WsdLimits::MaximumTargets
    /// matches, an identifier or URI longer than WsdLimits::MaximumUriLength,
    /// a Types entry whose prefix is not declared are refused.
    static bool Read(const char* data, std::size_t size, WsdMessage& message, std::string& error);

    /// The same with another size limit: a client reading answers passes
    /// WsdLimits::MaximumOutgoingDatagram, since answers with metadata may
    /// be that big.
    static bool Read(const char* data, std::size_t size, std::size_t maximumSize, WsdMessage& message,
                     std::string& error);
};

} // namespace KivWsd

#endif

// SPDX-License-Identifier: Apache-2.0
// IDatagramSender.h - where the responder hands the datagrams it sends: the
// two LinuxDiscoverySocket objects in the daemon, a recorder in tests.
//
// The caller keeps ownership of the sender; it must outlive the Responder
// that uses it. One thread.
//
// Example:
//   class Recorder : public IDatagramSender {
//   public:
//       bool Send(const IpAddress&, std::uint16_t, int, const IpAddress&, const std::string& data) override
//       { sent.push_back(data); return true; }
//       std::vector<std::string> sent;
//   };
#ifndef KIV_RESPONDER_IDATAGRAMSENDER_H
#define KIV_RESPONDER_IDATAGRAMSENDER_H

#include <KivResponder/IpAddress.h>

#include <cstdint>
#include <string>

namespace KivResponder {

class IDatagramSender
{
public:
    /// Sends \p data to \p destination port \p port out of interface
    /// \p interfaceIndex, from \p source (empty: the kernel picks the
    /// interface's address), always from the discovery port. False when the
    /// system refused it.
    virtual bool Send(const IpAddress& destination, std::uint16_t port, int interfaceIndex, const IpAddress& source,
                      const std::string& data) = 0;

protected:
    /// Never deleted through this interface.
    virtual ~IDatagramSender() = default;
};

} // namespace KivResponder

#endif

// SPDX-License-Identifier: Apache-2.0
// LinuxInterfaceMonitor.h - the rtnetlink socket that fills an
// InterfaceTable: a dump of links and addresses at start, then the kernel's
// notifications as interfaces and addresses come and go.
//
// Owned by the daemon's loop; one thread.
//
// Example:
//   LinuxInterfaceMonitor monitor;
//   InterfaceTable table;
//   std::string error;
//   if (!monitor.Open(error) || !monitor.Dump(table, error)) { /* cannot start */ }
//   // when monitor.Descriptor() is readable:
//   bool changed = monitor.ReadNotifications(table);
#ifndef KIV_RESPONDER_LINUXINTERFACEMONITOR_H
#define KIV_RESPONDER_LINUXINTERFACEMONITOR_H

#include <KivResponder/InterfaceTable.h>

#include <cstdint>
#include <string>
#include <vector>

namespace KivResponder {

class LinuxInterfaceMonitor
{
public:
    LinuxInterfaceMonitor() = default;
    ~LinuxInterfaceMonitor();
    LinuxInterfaceMonitor(const LinuxInterfaceMonitor&) = delete;
    LinuxInterfaceMonitor& operator=(const LinuxInterfaceMonitor&) = delete;

    /// A non-blocking NETLINK_ROUTE socket subscribed to link, IPv4 address
    /// and IPv6 address changes. False with \p error otherwise.
    bool Open(std::string& error);
    int Descriptor() const { return descriptor; }

    /// Empties \p table and fills it from a dump of every link and then
    /// every address (waiting at most a few seconds for the kernel).
    /// Notifications that arrive meanwhile are applied too. False with
    /// \p error when the kernel does not answer.
    bool Dump(InterfaceTable& table, std::string& error);

    /// Applies every pending notification to \p table without blocking.
    /// When the kernel dropped some (the socket's buffer overran), the table
    /// is dumped afresh. True when the table changed.
    bool ReadNotifications(InterfaceTable& table);

private:
    bool Request(std::uint16_t type, std::uint32_t sequence);
    bool DumpOne(InterfaceTable& table, std::uint16_t type, std::string& error);

    int descriptor = -1;
    std::uint32_t nextSequence = 1;
    std::vector<unsigned char> buffer = std::vector<unsigned char>(64 * 1024);
};

} // namespace KivResponder

#endif

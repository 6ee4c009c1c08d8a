// SPDX-License-Identifier: Apache-2.0
// FakeSyslogSocket.h - a datagram socket that stands in for the system
// logger, so that a test sees exactly what syslog(3) sends.
//
// Bind it at /dev/log only inside a private mount namespace with its own
// /dev (see MountNamespace); the C library's logger then talks to it:
//
// Example:
//   #include <syslog.h>
//   FakeSyslogSocket logger("/dev/log");
//   syslog(LOG_ERR, "disk full");
//   std::vector<std::string> sent = logger.Receive();   // {"<11>Nov 21 ... prog: disk full"}
//
// One owner, one thread.
#ifndef KIV_TESTS_FAKESYSLOGSOCKET_H
#define KIV_TESTS_FAKESYSLOGSOCKET_H

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace KivTest {

class FakeSyslogSocket
{
public:
    /// Binds a new AF_UNIX datagram socket at \p path; Bound() says whether
    /// that worked.
    explicit FakeSyslogSocket(const std::string& path);
    /// Closes the socket and removes its name.
    ~FakeSyslogSocket();

    FakeSyslogSocket(const FakeSyslogSocket&) = delete;
    FakeSyslogSocket& operator=(const FakeSyslogSocket&) = delete;

    bool Bound() const { return descriptor >= 0; }
    /// Why binding failed, for a failure message.
    const std::string& Fault() const { return fault; }

    /// Every datagram that arrived since the last call, oldest first,
    /// without waiting for more.
    std::vector<std::string> Receive();

private:
    std::string path;
    std::string fault;
    int descriptor;
};

/// One message as the C library's logger formats it:
/// "<priority>Mmm dd hh:mm:ss identity: text" (or "identity[pid]: text").
struct SyslogMessage
{
    int priority = -1;    ///< facility | level; -1 when the datagram did not parse
    std::string identity; ///< the tag before ": " (and before "[pid]")
    bool hasProcessId = false;
    std::string text;     ///< everything after ": "
};

/// Splits \p datagram into its parts; priority -1 when it is not in the
/// logger's format.
SyslogMessage ParseSyslogMessage(const std::string& datagram);

/// What the logger sent while \p body ran in a forked child whose /dev is a
/// private tmpfs with a FakeSyslogSocket at /dev/log.
struct SyslogCapture
{
    bool available = false;             ///< false: no private mount namespace here
    std::string reason;                 ///< why not, for GTEST_SKIP; or what failed
    bool succeeded = false;             ///< the child ran \p body and exited normally
    std::vector<std::string> datagrams; ///< in the order they were sent
};

/// Runs \p body in a child inside a private mount namespace (a tmpfs over
/// /dev, a fake logger socket at /dev/log) and collects every datagram the
/// logger sent. The machine's /dev/log is never touched.
SyslogCapture CaptureSyslog(const std::function<void()>& body);

/// The captured datagrams, parsed.
std::vector<SyslogMessage> ParsedMessages(const SyslogCapture& capture);

} // namespace KivTest

/// In a test: skips when no private mount namespace could be made, and
/// fails (returning) when the capturing child did not run through.
#define KIV_SKIP_OR_FAIL_UNLESS_CAPTURED(capture)                 \
    do {                                                          \
        if (!(capture).available)                                 \
            GTEST_SKIP() << (capture).reason;                     \
        ASSERT_TRUE((capture).succeeded) << (capture).reason;     \
    } while (0)

namespace KivTest {

} // namespace KivTest

#endif

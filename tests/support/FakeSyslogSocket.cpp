// SPDX-License-Identifier: Apache-2.0
#include <KivTest/FakeSyslogSocket.h>

#include <KivTest/ChildProcess.h>
#include <KivTest/MountNamespace.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace KivTest {

FakeSyslogSocket::FakeSyslogSocket(const std::string& socketPath)
    : path(socketPath), descriptor(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0))
{
    if (descriptor < 0) {
        fault = std::string("socket: ") + std::strerror(errno);
        return;
    }
    struct sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        fault = "socket path too long: " + path;
    } else {
        std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
        if (bind(descriptor, reinterpret_cast<struct sockaddr*>(&address), sizeof address) == 0)
            return;
        fault = "bind " + path + ": " + std::strerror(errno);
    }
    close(descriptor);
    descriptor = -1;
}

FakeSyslogSocket::~FakeSyslogSocket()
{
    if (descriptor >= 0) {
        close(descriptor);
        unlink(path.c_str());
    }
}

std::vector<std::string> FakeSyslogSocket::Receive()
{
    std::vector<std::string> datagrams;
    if (descriptor < 0)
        return datagrams;
    for (;;) {
        char buffer[8192];
        ssize_t size = recv(descriptor, buffer, sizeof buffer, MSG_DONTWAIT);
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0)
            break;
        datagrams.emplace_back(buffer, static_cast<std::size_t>(size));
    }
    return datagrams;
}

SyslogMessage ParseSyslogMessage(const std::string& datagram)
{
    SyslogMessage message;
    std::string::size_type close = datagram.find('>');
    // "<N>" then the 15-character time stamp and a space.
    const std::string::size_type stampLength = 16;
    if (datagram.empty() || datagram[0] != '<' || close == std::string::npos || close < 2 ||
        datagram.size() < close + 1 + stampLength)
        return message;
    std::string number = datagram.substr(1, close - 1);
    if (number.find_first_not_of("0123456789") != std::string::npos)
        return message;
    std::string rest = datagram.substr(close + 1 + stampLength);
    std::string::size_type colon = rest.find(": ");
    if (colon == std::string::npos)
        return message;
    message.identity = rest.substr(0, colon);
    message.text = rest.substr(colon + 2);
    std::string::size_type bracket = message.identity.find('[');
    if (bracket != std::string::npos) {
        message.hasProcessId = true;
        message.identity.erase(bracket);
    }
    message.priority = std::atoi(number.c_str());
    return message;
}

namespace {

// Exit statuses of the capturing child.
constexpr int NoNamespace = 77;
constexpr int NoSocket = 78;

} // namespace

SyslogCapture CaptureSyslog(const std::function<void()>& body)
{
    ChildOutcome outcome = RunInChild([&body] {
        std::string fault;
        if (!MountNamespace::Enter(fault) || !MountNamespace::MountTmpfs("/dev", fault)) {
            std::fputs(fault.c_str(), stderr);
            std::fflush(stderr);
            _exit(NoNamespace);
        }
        FakeSyslogSocket logger("/dev/log");
        if (!logger.Bound()) {
            std::fputs(logger.Fault().c_str(), stderr);
            std::fflush(stderr);
            _exit(NoSocket);
        }
        body();
        // One datagram per line; the logger adds no line feed of its own.
        for (const std::string& datagram : logger.Receive())
            std::printf("%s\n", datagram.c_str());
    });
    SyslogCapture capture;
    capture.available = !(outcome.exited && outcome.exitStatus == NoNamespace);
    capture.succeeded = outcome.exited && outcome.exitStatus == 0;
    capture.reason = capture.available ? Describe(outcome)
                                       : "no private mount namespace for a fake /dev/log here (" +
                                             outcome.standardError + ")";
    std::string::size_type start = 0;
    while (capture.succeeded && start < outcome.standardOutput.size()) {
        std::string::size_type end = outcome.standardOutput.find('\n', start);
        if (end == std::string::npos)
            end = outcome.standardOutput.size();
        capture.datagrams.push_back(outcome.standardOutput.substr(start, end - start));
        start = end + 1;
    }
    return capture;
}

std::vector<SyslogMessage> ParsedMessages(const SyslogCapture& capture)
{
    std::vector<SyslogMessage> messages;
    for (const std::string& datagram : capture.datagrams)
        messages.push_back(ParseSyslogMessage(datagram));
    return messages;
}

} // namespace KivTest

// SPDX-License-Identifier: Apache-2.0
#include <KivTest/FatalMessage.h>

#include <KivPlr/core/FatalError.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cwchar>
#include <unistd.h>

namespace KivTest {

namespace {

int messagePipe = -1;

// Runs at exit in the child: the fatal-error routine has stored its message.
void ReportFatalMessage()
{
    const wchar_t* message = KivPlr::LastFatalErrorMessage;
    if (message == nullptr || messagePipe < 0)
        return;
    std::size_t bytes = std::wcslen(message) * sizeof(wchar_t);
    const char* data = reinterpret_cast<const char*>(message);
    while (bytes > 0) {
        ssize_t written = write(messagePipe, data, bytes);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            break;
        data += written;
        bytes -= static_cast<std::size_t>(written);
    }
}

} // namespace

std::wstring FatalMessageOf(const std::function<void()>& body)
{
    int ends[2];
    if (pipe(ends) != 0)
        return L"<pipe failed>";
    ChildOutcome outcome = RunInChild([&] {
        close(ends[0]);
        messagePipe = ends[1];
        std::atexit(ReportFatalMessage);
        body();
    });
    close(ends[1]);
    std::string bytes;
    char buffer[4096];
    for (;;) {
        ssize_t count = read(ends[0], buffer, sizeof buffer);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        bytes.append(buffer, static_cast<std::size_t>(count));
    }
    close(ends[0]);
    if (!outcome.exited || outcome.exitStatus != 1 || bytes.empty())
        return L"<no fatal error>";
    std::wstring message(bytes.size() / sizeof(wchar_t), L'\0');
    bytes.copy(reinterpret_cast<char*>(&message[0]), message.size() * sizeof(wchar_t));
    return message;
}

} // namespace KivTest

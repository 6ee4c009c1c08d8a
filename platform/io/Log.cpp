// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/io/Log.h>

#include <KivPlr/core/FatalError.h>

#include <cstdint>
#include <syslog.h>

namespace KivPlr {

namespace {

int Priority(std::uint32_t level)
{
    switch (level) {
    case LogLevelWarning:
        return LOG_WARNING;
    case LogLevelError:
        return LOG_ERR;
    default:
        return LOG_INFO;
    }
}

} // namespace

Log::~Log()
{
    closelog();
}

void Log::Write(std::uint32_t level, const std::string& message, _Result& result)
{
    if (IsNullReference(&result))
        FatalError(L"Log: result NULL reference.");
    // The message is deliberately the format string: writers of this log
    // double their "%" and may use the logger's own conversions such as %m.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    syslog(Priority(level), message.c_str());
#pragma GCC diagnostic pop
    result = ResultPass;
}

void Log::Close(_Result& result)
{
    if (IsNullReference(&result))
        FatalError(L"Log: result NULL reference.");
    closelog();
    result = ResultPass;
}

} // namespace KivPlr

// SPDX-License-Identifier: Apache-2.0
// Log.h - the Linux log: writes with syslog and closes with closelog.
//
// Made by LogManager::Open and owned through SmartPtr<ILog>. It holds no
// state: identity, options and facility live in the C library's process-wide
// logger. Destroying a Log closes that channel, whatever other logs exist.
//
// Example:
//   static const std::string identity = "discoveryd";   // must outlive the channel
//   SmartPtr<ILogManager> logs(new LogManager);
//   _Result result = ResultFail;
//   SmartPtr<ILog> log;
//   logs->Open(Path(), identity, LogFacilityDaemon, log, result);
//   log->Write(LogLevelError, "cannot read the configuration", result);
//
// syslog and closelog are thread-safe in the C library.
#ifndef KIVPLR_LOG_H
#define KIVPLR_LOG_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/io/ILog.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API Log : private Object, public ILog
{
public:
    using ILog::Write;
    /// syslog at LOG_INFO (levels 0 and unknown ones), LOG_WARNING (1) or
    /// LOG_ERR (2), with \p message as the format string; 200.
    void Write(std::uint32_t level, const std::string& message, _Result& result) override;
    void Close(_Result& result) override;

private:
    /// Closes the process-wide channel.
    ~Log() override;
};

} // namespace KivPlr

#endif

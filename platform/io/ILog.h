// SPDX-License-Identifier: Apache-2.0
// ILog.h - a channel to the system log through which messages are written at
// one of three levels.
//
// An ILogManager opens the channel and hands out the log through SmartPtr.
// The channel itself is process-wide: every log writes through the same one,
// and destroying any log closes it.
//
// Example:
//   static const std::string identity = "discoveryd";   // must outlive the channel
//   SmartPtr<ILogManager> logs(Platform::GetInstance()->CreateLogManager());
//   _Result result = ResultFail;
//   SmartPtr<ILog> log;
//   logs->Open(Path(), identity, LogFacilityDaemon, log, result);
//   log->Write(LogLevelWarning, "fan speed low", result);
//
// The system logger's calls are thread-safe; opening and closing from several
// threads race on the one channel.
#ifndef KIVPLR_ILOG_H
#define KIVPLR_ILOG_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>

#include <cstdint>
#include <string>

namespace KivPlr {

/// Levels of Write: information, warning, error. Any other value writes as
/// information.
constexpr std::uint32_t LogLevelInformation = 0;
constexpr std::uint32_t LogLevelWarning = 1;
constexpr std::uint32_t LogLevelError = 2;

class KIVPLR_API ILog : public virtual IObject
{
public:
    /// Writes \p message at \p level; 200. The message is the logger's format
    /// string: a "%" in it starts a conversion, so double every "%" of text
    /// you did not write yourself.
    virtual void Write(std::uint32_t level, const std::string& message, _Result& result) = 0;
    /// The same for a C string (a null one writes an empty message).
    virtual void Write(std::uint32_t level, const char* message, _Result& result);
    /// Closes the process-wide channel; 200. A later write opens it again
    /// with the C library's defaults (its own identity).
    virtual void Close(_Result& result) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~ILog() override = default;
};

} // namespace KivPlr

#endif

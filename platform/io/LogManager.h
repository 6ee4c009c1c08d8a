// SPDX-License-Identifier: Apache-2.0
// LogManager.h - the Linux log manager: openlog with LOG_CONS and a mapped
// facility, then a new Log.
//
// Made by LinuxPlatform::CreateLogManager, owned through SmartPtr. No state
// of its own; the channel it opens is the C library's process-wide one.
//
// Example:
//   static const std::string identity = "discoveryd";   // must outlive the channel
//   SmartPtr<ILogManager> logs(new LogManager);
//   _Result result = ResultFail;
//   SmartPtr<ILog> log;
//   logs->Open(Path(), identity, LogFacilityUser, log, result);
#ifndef KIVPLR_LOGMANAGER_H
#define KIVPLR_LOGMANAGER_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/io/ILogManager.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API LogManager : private Object, public ILogManager
{
public:
    /// openlog(identity, LOG_CONS, facility): LOG_USER for 0 and unknown
    /// values, LOG_DAEMON for 1, LOG_KERN for 2.
    void Open(const Path& name, const std::string& identity, std::uint32_t facility, SmartPtr<ILog>& log,
              _Result& result) override;

private:
    ~LogManager() override = default;
};

} // namespace KivPlr

#endif

// SPDX-License-Identifier: Apache-2.0
// ILogManager.h - opens the system log channel and hands out the ILog that
// writes to it.
//
// Made by the platform factory, owned through SmartPtr:
//
// Example:
//   static const std::string identity = "discoveryd";   // must outlive the channel
//   SmartPtr<ILogManager> logs(Platform::GetInstance()->CreateLogManager());
//   _Result result = ResultFail;
//   SmartPtr<ILog> log;
//   logs->Open(Path(), identity, LogFacilityDaemon, log, result);
//
// The channel is process-wide: the last Open decides its identity and
// facility for every log.
#ifndef KIVPLR_ILOGMANAGER_H
#define KIVPLR_ILOGMANAGER_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>
#include <KivPlr/core/Path.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/io/ILog.h>

#include <cstdint>
#include <string>

namespace KivPlr {

/// Facilities of Open: user programs, daemons, and the kernel's facility.
/// Any other value opens as a user program.
constexpr std::uint32_t LogFacilityUser = 0;
constexpr std::uint32_t LogFacilityDaemon = 1;
constexpr std::uint32_t LogFacilityKernel = 2;

class KIVPLR_API ILogManager : public virtual IObject
{
public:
    /// Opens (or re-opens) the channel with \p identity and \p facility and
    /// puts a new log into \p log, releasing the one it held (which closes
    /// the channel again: see ILog). \p name is not used on Linux. The
    /// characters of \p identity are not copied: keep the string alive and
    /// unchanged while the channel is in use. 200.
    virtual void Open(const Path& name, const std::string& identity, std::uint32_t facility, SmartPtr<ILog>& log,
                      _Result& result) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~ILogManager() override = default;
};

} // namespace KivPlr

#endif

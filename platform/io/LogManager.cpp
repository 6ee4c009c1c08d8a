// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/io/LogManager.h>

#include <KivPlr/core/FatalError.h>
#include <KivPlr/io/Log.h>

#include <cstdint>
#include <syslog.h>

namespace KivPlr {

namespace {

int Facility(std::uint32_t facility)
{
    switch (facility) {
    case LogFacilityDaemon:
        return LOG_DAEMON;
    case LogFacilityKernel:
        // Deliberately the kernel's facility; callers that pass 2 rely on
        // their messages being filed with the kernel's.
        return LOG_KERN;
    default:
        return LOG_USER;
    }
}

} // namespace

void LogManager::Open(const Path&, const std::string& identity, std::uint32_t facility, SmartPtr<ILog>& log,
                      _Result& result)
{
    if (IsNullReference(&result))
        FatalError(L"LogManager: result NULL reference.");
    if (IsNullReference(&identity))
        FatalError(L"LogManager: identity NULL reference.");
    if (IsNullReference(&log))
        FatalError(L"LogManager: log NULL reference.");
    // The C library keeps this pointer, not a copy: the caller's string must
    // outlive the channel.
    openlog(identity.c_str(), LOG_CONS, Facility(facility));
    log = new Log;
    result = ResultPass;
}

} // namespace KivPlr

// SPDX-License-Identifier: Apache-2.0
// ISystemClock.h - the machine's wall clock, read and set as a TimePoint.
//
// Made by the platform factory (CreateSystemClock); owned through SmartPtr.
// It holds no state, so any thread may use it.
//
// Example:
//   SmartPtr<IPlatform> platform(Platform::GetInstance());
//   SmartPtr<ISystemClock> wallClock(platform->CreateSystemClock());
//   TimePoint now;
//   wallClock->GetTime(now);
//   std::string text = wallClock->ToText(now);   // "Fri Mar  1 13:05:00 2024\n"
#ifndef KIVPLR_ISYSTEMCLOCK_H
#define KIVPLR_ISYSTEMCLOCK_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>
#include <KivPlr/time/TimePoint.h>

#include <string>

namespace KivPlr {

class KIVPLR_API ISystemClock : public virtual IObject
{
public:
    /// The current wall-clock time (UTC), to the microsecond. A null \p now
    /// reference is fatal, as is a null \p result of SetTime (which then
    /// leaves the clock alone).
    virtual void GetTime(TimePoint& now) = 0;
    /// Sets the wall clock to \p time: 200 on success, 500 when the system
    /// refuses (no permission, a value it does not take) or \p time cannot be
    /// expressed as a struct timeval.
    virtual void SetTime(const TimePoint& time, _Result& result) = 0;
    /// \p time in asctime's layout, with the trailing newline.
    virtual std::string ToText(const TimePoint& time) = 0;
    /// The time point that ToText wrote (fatal on text it cannot read, see
    /// TimePoint's text constructor).
    virtual TimePoint FromText(const std::string& text) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~ISystemClock() override = default;
};

} // namespace KivPlr

#endif

// SPDX-License-Identifier: Apache-2.0
// IClock.h - a stopwatch: the time elapsed since the clock was created.
//
// Made by the platform factory (CreateClock) over the monotonic clock, so a
// change of the system time does not move it; owned through SmartPtr. The
// clock holds no mutable state after creation; any thread may read it.
//
// Example:
//   SmartPtr<IPlatform> platform(Platform::GetInstance());
//   SmartPtr<IClock> stopwatch(platform->CreateClock());
//   // the work to be timed
//   std::int64_t spent = stopwatch->GetElapsedMilliseconds();
#ifndef KIVPLR_ICLOCK_H
#define KIVPLR_ICLOCK_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>
#include <KivPlr/time/TimeDuration.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API IClock : public virtual IObject
{
public:
    /// Nanoseconds since the clock was created.
    virtual std::int64_t GetElapsedNanoseconds() = 0;
    /// Whole microseconds since creation (truncated toward zero).
    virtual std::int64_t GetElapsedMicroseconds() = 0;
    /// Whole milliseconds since creation (truncated toward zero).
    virtual std::int64_t GetElapsedMilliseconds() = 0;
    /// Whole seconds since creation (truncated toward zero).
    virtual std::int64_t GetElapsedSeconds() = 0;
    /// The elapsed time as a finite TimeDuration, to the nanosecond.
    virtual TimeDuration GetElapsedTime() = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IClock() override = default;
};

} // namespace KivPlr

#endif

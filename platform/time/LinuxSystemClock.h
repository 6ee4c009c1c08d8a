// SPDX-License-Identifier: Apache-2.0
// LinuxSystemClock.h - the wall clock through gettimeofday and settimeofday.
//
// Made by the platform factory (CreateSystemClock) with no arguments; owned
// through SmartPtr. It holds nothing, so any thread may use it. Setting the
// time needs CAP_SYS_TIME.
//
// Example:
//   SmartPtr<ISystemClock> wallClock(new LinuxSystemClock);
//   TimePoint now;
//   wallClock->GetTime(now);
//   _Result result = ResultFail;
//   wallClock->SetTime(Epoch() + TimeDuration(0, 0, 1700000000, 0), result);   // 500 without the capability
#ifndef KIVPLR_LINUXSYSTEMCLOCK_H
#define KIVPLR_LINUXSYSTEMCLOCK_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/time/ISystemClock.h>

#include <sys/time.h>

namespace KivPlr {

class KIVPLR_API LinuxSystemClock : private Object, public ISystemClock
{
public:
    /// gettimeofday, then FromTimeval.
    /// Errors of gettimeofday are not checked.
    void GetTime(TimePoint& now) override;
    /// ToTimeval, then settimeofday(&tv, NULL): 200 when it returns >= 0,
    /// 500 when it returns a negative value or ToTimeval refused \p time (then
    /// settimeofday is not called). The system's error code is not kept.
    void SetTime(const TimePoint& time, _Result& result) override;
    std::string ToText(const TimePoint& time) override;
    TimePoint FromText(const std::string& text) override;

    /// tv_sec = days since 1970-01-01 x 86 400 + the whole seconds of the time
    /// of day; tv_usec = the nanoseconds of its second / 1000 (truncated).
    /// False, with \p tv untouched, when the date or the time of day is a
    /// special value or tv_sec does not fit time_t (32 bits on ARM: after
    /// 2038-01-19 03:14:07). A null \p tv reference is fatal.
    static bool ToTimeval(const TimePoint& time, struct timeval& tv);
    /// Epoch() + TimeDuration(0, 0, tv_sec, tv_usec x 1000): the date and the
    /// time of day (0 to 24 h). Whole days are split off before the
    /// nanoseconds are counted, so times past 2262 (beyond a 64-bit count of
    /// nanoseconds since 1970) come out right on a 64-bit time_t too, up to
    /// the last day number a Date holds (2^31 - 1 days, year 5 881 580).
    static TimePoint FromTimeval(const struct timeval& tv);

private:
    ~LinuxSystemClock() override = default;
};

} // namespace KivPlr

#endif

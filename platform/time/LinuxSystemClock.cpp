// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/time/LinuxSystemClock.h>

#include <KivPlr/core/FatalError.h>
#include <KivPlr/time/Epoch.h>

#include <cstdint>
#include <limits>

namespace KivPlr {

void LinuxSystemClock::GetTime(TimePoint& now)
{
    if (IsNullReference(&now))
        FatalError(L"LinuxSystemClock: now NULL reference.");
    struct timeval tv = {};
    gettimeofday(&tv, nullptr);
    now = FromTimeval(tv);
}

void LinuxSystemClock::SetTime(const TimePoint& time, _Result& result)
{
    // Checked before the clock is touched: a caller without a result must
    // not set the time and then die not knowing whether it did.
    if (IsNullReference(&result))
        FatalError(L"LinuxSystemClock: result NULL reference.");
    struct timeval tv = {};
    if (!ToTimeval(time, tv)) {
        result = ResultFail;
        return;
    }
    result = settimeofday(&tv, nullptr) >= 0 ? ResultPass : ResultFail;
}

std::string LinuxSystemClock::ToText(const TimePoint& time)
{
    return time.ToText();
}

TimePoint LinuxSystemClock::FromText(const std::string& text)
{
    return TimePoint(text);
}

bool LinuxSystemClock::ToTimeval(const TimePoint& time, struct timeval& tv)
{
    if (IsNullReference(&tv))
        FatalError(L"LinuxSystemClock: tv NULL reference.");
    Date date = time.GetDate();
    TimeDuration timeOfDay = time.GetTimeOfDay();
    if (date.GetKind() != KindFinite || timeOfDay.IsSpecial())
        return false;
    std::int64_t seconds = static_cast<std::int64_t>((date - Epoch()).GetDays()) * TimeDuration::SecondsPerDay +
                           timeOfDay.GetTotalSeconds();
    if (seconds < std::numeric_limits<time_t>::min() || seconds > std::numeric_limits<time_t>::max())
        return false;
    tv.tv_sec = static_cast<time_t>(seconds);
    tv.tv_usec = static_cast<suseconds_t>(timeOfDay.GetFraction() / TimeDuration::NanosecondsPerMicrosecond);
    return true;
}

TimePoint LinuxSystemClock::FromTimeval(const struct timeval& tv)
{
    // Whole days are taken off first: a 64-bit count of nanoseconds reaches
    // only 292 years, a 64-bit time_t much further. Within that range this is
    // exactly Epoch() + TimeDuration(0, 0, tv_sec, tv_usec x 1000).
    // The microseconds take the sign of the seconds, as the duration
    // constructor's sign rule has it.
    std::int64_t seconds = static_cast<std::int64_t>(tv.tv_sec);
    std::int64_t fraction = static_cast<std::int64_t>(tv.tv_usec) * TimeDuration::NanosecondsPerMicrosecond;
    std::int64_t days = seconds / TimeDuration::SecondsPerDay;
    std::int64_t rest = (seconds - days * TimeDuration::SecondsPerDay) * TimeDuration::NanosecondsPerSecond +
                        (seconds < 0 ? -fraction : fraction);
    Date date = Epoch() + DateDuration(static_cast<std::int32_t>(days));
    return date + TimeDuration::Nanoseconds(rest);
}

} // namespace KivPlr

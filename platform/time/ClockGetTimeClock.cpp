// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/time/ClockGetTimeClock.h>

#include <KivPlr/time/TimeDuration.h>

namespace KivPlr {

ClockGetTimeClock::ClockGetTimeClock(const SmartPtr<ILock>& lock,
                                     const SmartPtr<IPosixTimespecProvider>& provider)
    : lock(lock), provider(provider), start()
{
    this->provider->GetCurrentTime(start);
}

std::int64_t ClockGetTimeClock::GetElapsedNanoseconds()
{
    struct timespec now = start;
    provider->GetCurrentTime(now);
    std::int64_t seconds = static_cast<std::int64_t>(now.tv_sec) - static_cast<std::int64_t>(start.tv_sec);
    std::int64_t nanoseconds = static_cast<std::int64_t>(now.tv_nsec) - static_cast<std::int64_t>(start.tv_nsec);
    // TimeDuration's arithmetic wraps instead of overflowing.
    TimeDuration elapsed = TimeDuration::Nanoseconds(seconds) * TimeDuration::NanosecondsPerSecond +
                           TimeDuration::Nanoseconds(nanoseconds);
    return elapsed.GetTotalNanoseconds();
}

struct timespec ClockGetTimeClock::GetStartTime() const
{
    return start;
}

ILock* ClockGetTimeClock::GetLock() const
{
    return lock.Get();
}

IPosixTimespecProvider* ClockGetTimeClock::GetProvider() const
{
    return provider.Get();
}

} // namespace KivPlr

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/time/ClockBase.h>

namespace KivPlr {

namespace {

constexpr std::int64_t NanosecondsPerMillisecond = 1000000;

} // namespace

std::int64_t ClockBase::GetElapsedMicroseconds()
{
    return GetElapsedNanoseconds() / TimeDuration::NanosecondsPerMicrosecond;
}

std::int64_t ClockBase::GetElapsedMilliseconds()
{
    return GetElapsedNanoseconds() / NanosecondsPerMillisecond;
}

std::int64_t ClockBase::GetElapsedSeconds()
{
    return GetElapsedNanoseconds() / TimeDuration::NanosecondsPerSecond;
}

TimeDuration ClockBase::GetElapsedTime()
{
    return TimeDuration::Nanoseconds(GetElapsedNanoseconds());
}

} // namespace KivPlr

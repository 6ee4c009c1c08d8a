// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/time/TimeDuration.h>

#include <KivPlr/core/FatalError.h>

namespace KivPlr {

namespace {

// 64-bit arithmetic that wraps around instead of overflowing.
std::int64_t WrappingAdd(std::int64_t left, std::int64_t right)
{
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(left) + static_cast<std::uint64_t>(right));
}

std::int64_t WrappingSubtract(std::int64_t left, std::int64_t right)
{
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(left) - static_cast<std::uint64_t>(right));
}

std::int64_t WrappingMultiply(std::int64_t left, std::int64_t right)
{
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(left) * static_cast<std::uint64_t>(right));
}

// Adds a component's magnitude away from zero: subtracted while the running
// total is negative, added otherwise.
std::int64_t Extend(std::int64_t total, std::int64_t component)
{
    return total < 0 ? WrappingSubtract(total, component) : WrappingAdd(total, component);
}

bool SignsConsistent(std::int32_t hours, std::int32_t minutes, std::int64_t seconds, std::int64_t nanoseconds)
{
    if (hours != 0)
        return minutes >= 0 && seconds >= 0 && nanoseconds >= 0;
    if (minutes != 0)
        return seconds >= 0 && nanoseconds >= 0;
    if (seconds != 0)
        return nanoseconds >= 0;
    return true;
}

} // namespace

TimeDuration::TimeDuration() : kind(KindNotAValue), count(0)
{
}

TimeDuration::TimeDuration(ValueKind kind) : kind(kind), count(0)
{
}

TimeDuration::TimeDuration(ValueKind kind, std::int64_t count) : kind(kind), count(count)
{
}

TimeDuration::TimeDuration(std::int32_t hours, std::int32_t minutes, std::int64_t seconds,
                           std::int64_t nanoseconds)
    : kind(KindFinite), count(0)
{
    if (!SignsConsistent(hours, minutes, seconds, nanoseconds))
        FatalError(L"invalid parameter, signs are not consistent");
    std::int64_t total = WrappingMultiply(hours, NanosecondsPerHour);
    total = Extend(total, WrappingMultiply(minutes, NanosecondsPerMinute));
    total = Extend(total, WrappingMultiply(seconds, NanosecondsPerSecond));
    count = Extend(total, nanoseconds);
}

TimeDuration::~TimeDuration() = default;

TimeDuration TimeDuration::Nanoseconds(std::int64_t count)
{
    return TimeDuration(KindFinite, count);
}

ValueKind TimeDuration::GetKind() const
{
    return kind;
}

std::int64_t TimeDuration::GetHours() const
{
    return count / NanosecondsPerHour;
}

std::int64_t TimeDuration::GetMinutes() const
{
    return (count / NanosecondsPerMinute) % 60;
}

std::int64_t TimeDuration::GetSeconds() const
{
    return (count / NanosecondsPerSecond) % 60;
}

std::int64_t TimeDuration::GetTotalSeconds() const
{
    return count / NanosecondsPerSecond;
}

std::int64_t TimeDuration::GetFraction() const
{
    return count % NanosecondsPerSecond;
}

std::int64_t TimeDuration::GetTotalMicroseconds() const
{
    return count / NanosecondsPerMicrosecond;
}

std::int64_t TimeDuration::GetTotalNanoseconds() const
{
    return count;
}

bool TimeDuration::IsSpecial() const
{
    return kind != KindFinite;
}

bool TimeDuration::IsPositiveInfinity() const
{
    return kind == KindPositiveInfinity;
}

bool TimeDuration::IsNegativeInfinity() const
{
    return kind == KindNegativeInfinity;
}

bool TimeDuration::IsNegative() const
{
    return count < 0;
}

TimeDuration TimeDuration::operator+(const TimeDuration& other) const
{
    return TimeDuration(kind, WrappingAdd(count, other.count));
}

TimeDuration TimeDuration::operator-(const TimeDuration& other) const
{
    return TimeDuration(kind, WrappingSubtract(count, other.count));
}

TimeDuration& TimeDuration::operator-=(const TimeDuration& other)
{
    count = WrappingSubtract(count, other.count);
    return *this;
}

TimeDuration TimeDuration::operator/(std::int64_t divisor) const
{
    if (divisor == 0)
        return TimeDuration();
    if (divisor == -1)
        return TimeDuration(kind, WrappingSubtract(0, count));
    return TimeDuration(kind, count / divisor);
}

TimeDuration TimeDuration::operator*(std::int64_t factor) const
{
    return TimeDuration(kind, WrappingMultiply(count, factor));
}

bool TimeDuration::operator==(const TimeDuration& other) const
{
    return KindEqual(kind, count, other.kind, other.count);
}

bool TimeDuration::operator<(const TimeDuration& other) const
{
    return KindLess(kind, count, other.kind, other.count);
}

void TimeDuration::RoundTo(std::int64_t unit, std::int64_t half, int mode)
{
    std::int64_t quotient = count / unit;
    std::int64_t remainder = count % unit;
    if ((mode == RoundUp && remainder != 0) || (mode == RoundHalfUp && remainder >= half))
        quotient = WrappingAdd(quotient, 1);
    count = WrappingMultiply(quotient, unit);
}

void TimeDuration::RoundToMicroseconds(int mode)
{
    RoundTo(NanosecondsPerMicrosecond, NanosecondsPerMicrosecond / 2, mode);
}

void TimeDuration::RoundToSeconds(int mode)
{
    RoundTo(NanosecondsPerSecond, NanosecondsPerSecond / 2, mode);
}

void TimeDuration::RoundToMinutes(int mode)
{
    RoundTo(NanosecondsPerMinute, NanosecondsPerMinute / 2, mode);
}

void TimeDuration::RoundToHours(int mode)
{
    RoundTo(NanosecondsPerHour, NanosecondsPerHour / 2, mode);
}

} // namespace KivPlr

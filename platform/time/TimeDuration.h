// SPDX-License-Identifier: Apache-2.0
// TimeDuration.h - a signed span of time counted in nanoseconds (64 bits),
// or one of the special values +infinity, -infinity and "not a value".
//
// A plain value class: copy it freely; it is not a platform object. Any
// number of threads may use their own copies; one object is not synchronised.
//
// Example:
//   TimeDuration lunch(1, 30, 0, 0);               // 1 h 30 min
//   TimeDuration late(-2, 15, 0, 0);               // -2 h 15 min
//   lunch.RoundToHours(TimeDuration::RoundHalfUp); // 2 h
//   bool positive = lunch > TimeDuration::Nanoseconds(0);
//
// Arithmetic wraps around at 64 bits instead of overflowing. A default
// TimeDuration is "not a value" (kind 3); it equals only another one and is
// unordered against finite values. Division by zero gives "not a value"
// rather than a division fault.
#ifndef KIVPLR_TIMEDURATION_H
#define KIVPLR_TIMEDURATION_H

#include <KivPlr/core/Export.h>
#include <KivPlr/time/ValueKind.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API TimeDuration : public KindOrdered<TimeDuration>
{
public:
    /// Rounding modes of the RoundTo operations. Any other mode truncates.
    static constexpr int RoundUp = 0;
    static constexpr int RoundTruncate = 1;
    static constexpr int RoundHalfUp = 2;

    static constexpr std::int64_t NanosecondsPerMicrosecond = 1000;
    static constexpr std::int64_t NanosecondsPerSecond = 1000000000;
    static constexpr std::int64_t NanosecondsPerMinute = 60 * NanosecondsPerSecond;
    static constexpr std::int64_t NanosecondsPerHour = 60 * NanosecondsPerMinute;
    static constexpr std::int64_t SecondsPerDay = 86400;
    static constexpr std::int64_t NanosecondsPerDay = SecondsPerDay * NanosecondsPerSecond;

    /// "Not a value": kind 3, 0 ns.
    TimeDuration();
    /// The given kind with 0 ns (KindPositiveInfinity, ...).
    explicit TimeDuration(ValueKind kind);
    /// A finite duration. The first non-zero component, in the order hours,
    /// minutes, seconds, nanoseconds, carries the sign of the whole; every
    /// later component must be >= 0, otherwise the process ends ("invalid
    /// parameter, signs are not consistent"). (-1, 30, 0, 0) is -1 h 30 min;
    /// (0, 0, 0, -5) is -5 ns. The products are 64-bit and wrap around.
    TimeDuration(std::int32_t hours, std::int32_t minutes, std::int64_t seconds, std::int64_t nanoseconds);
    virtual ~TimeDuration();

    TimeDuration(const TimeDuration&) = default;
    TimeDuration& operator=(const TimeDuration&) = default;

    /// A finite duration of \p count nanoseconds.
    static TimeDuration Nanoseconds(std::int64_t count);

    ValueKind GetKind() const;

    /// Whole hours (truncated toward zero).
    std::int64_t GetHours() const;
    /// Minutes of the hour, -59..59, with the sign of the duration.
    std::int64_t GetMinutes() const;
    /// Seconds of the minute, -59..59, with the sign of the duration.
    std::int64_t GetSeconds() const;
    /// Whole seconds in total (truncated toward zero).
    std::int64_t GetTotalSeconds() const;
    /// Nanoseconds of the second, with the sign of the duration.
    std::int64_t GetFraction() const;
    /// Whole microseconds in total (truncated toward zero).
    std::int64_t GetTotalMicroseconds() const;
    /// The raw nanosecond count (0 for a special value made by kind).
    std::int64_t GetTotalNanoseconds() const;

    /// True for every kind but KindFinite.
    bool IsSpecial() const;
    bool IsPositiveInfinity() const;
    bool IsNegativeInfinity() const;
    /// The sign bit of the nanosecond count, whatever the kind.
    bool IsNegative() const;

    /// Counts added or subtracted with 64-bit wrap-around; the result has the
    /// kind of the left operand.
    TimeDuration operator+(const TimeDuration& other) const;
    TimeDuration operator-(const TimeDuration& other) const;
    TimeDuration& operator-=(const TimeDuration& other);
    /// The count divided (truncating) by \p divisor; -1 negates (the most
    /// negative count stays as it is). Kind of the left operand; a divisor of
    /// 0 gives "not a value".
    TimeDuration operator/(std::int64_t divisor) const;
    /// The count multiplied with 64-bit wrap-around; kind of the left operand.
    TimeDuration operator*(std::int64_t factor) const;

    /// Equal kinds and, for finite values, equal counts.
    bool operator==(const TimeDuration& other) const;
    /// Ordered by the kind rules of ValueKind.h, finite values by count;
    /// !=, >, <= and >= follow from == and < (KindOrdered).
    bool operator<(const TimeDuration& other) const;

    /// Rounds the count to a multiple of the unit. The quotient and remainder
    /// are those of truncating 64-bit division. RoundUp adds one to the
    /// quotient when the remainder is non-zero, RoundHalfUp when it is at
    /// least half the unit; any other mode truncates. For a negative count the
    /// remainder is negative, so RoundUp moves -1.5 us to 0 and RoundHalfUp
    /// truncates; callers round non-negative durations. The kind is kept.
    void RoundToMicroseconds(int mode);
    void RoundToSeconds(int mode);
    void RoundToMinutes(int mode);
    void RoundToHours(int mode);

private:
    TimeDuration(ValueKind kind, std::int64_t count);
    void RoundTo(std::int64_t unit, std::int64_t half, int mode);

    ValueKind kind;
    std::int64_t count;
};

} // namespace KivPlr

#endif

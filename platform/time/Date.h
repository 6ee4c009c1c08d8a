// SPDX-License-Identifier: Apache-2.0
// Date.h - a calendar day counted from 1970-01-01 (day 0), or +infinity /
// -infinity.
//
// A plain value class: copy it freely; it is not a platform object and one
// object is not synchronised. The constructor from year, month and day checks
// its arguments and ends the process on a date it cannot count:
//
// Example:
//   Date leapDay(2000, 2, 29);              // day 11016
//   Date later = leapDay + DateDuration(1); // 2000-03-01
//   DateDuration span = later - Epoch();    // 11017 days
//
// The day number is computed in closed form (no loop over years). Years run
// from 1970 to 32767: a later year ends the process like an earlier one does
// ("year out of range"). Only the low byte of the month is checked (1..12);
// a month past 12 that passes, such as 257, counts the months before it in a
// continuing yearly cycle (month 13 would be January of the next cycle, 257
// is May of the 22nd), and its length is that of its place in the cycle.
// A month that would take the day number past 32 bits is "month out of range".
#ifndef KIVPLR_DATE_H
#define KIVPLR_DATE_H

#include <KivPlr/core/Export.h>
#include <KivPlr/time/DateDuration.h>
#include <KivPlr/time/ValueKind.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API Date : public KindOrdered<Date>
{
public:
    static constexpr std::int32_t FirstYear = 1970;
    static constexpr std::int32_t LastYear = 32767;

    /// 1970-01-01 (kind 0, day 0).
    Date();
    /// The given kind with day 0 (KindPositiveInfinity, ...).
    explicit Date(ValueKind kind);
    /// The day of \p year, \p month, \p day. Checked in this order, each
    /// breach ending the process: year below 1970 or above 32767 ("year out
    /// of range"); low byte of \p month not in 1..12 ("month out of range");
    /// \p day below 1 or past the month's length in that year ("day out of
    /// range"); a day number beyond the 32-bit range ("month out of range").
    Date(std::int32_t year, std::int32_t month, std::int32_t day);
    virtual ~Date();

    Date(const Date&) = default;
    Date& operator=(const Date&) = default;

    /// A finite date with the given day number (negative numbers are days
    /// before 1970 and are counted like the others).
    static Date FromDayNumber(std::int32_t dayNumber);

    ValueKind GetKind() const;
    /// Days since 1970-01-01.
    std::int32_t GetDayNumber() const;
    /// The Gregorian year, month (1..12) and day (1..31) of the day number,
    /// whatever the kind. A null reference for any of them is fatal.
    void GetYearMonthDay(std::int32_t& year, std::int32_t& month, std::int32_t& day) const;
    /// 0 for Sunday up to 6 for Saturday (1970-01-01 was a Thursday, 4).
    std::int32_t GetWeekday() const;

    /// Equal kinds and, for finite dates, equal day numbers.
    bool operator==(const Date& other) const;
    /// Ordered by the kind rules of ValueKind.h, finite dates by day number;
    /// !=, >, <= and >= follow from == and < (KindOrdered).
    bool operator<(const Date& other) const;

    /// Left day number minus right day number (32-bit wrap-around), kind 0.
    DateDuration operator-(const Date& other) const;
    /// The day number moved by the span's days; the kind of this date.
    Date operator+(const DateDuration& span) const;
    Date operator-(const DateDuration& span) const;

    /// year % 400 == 0, or year % 100 != 0 and year % 4 == 0.
    static bool IsLeapYear(std::int32_t year);
    /// Days of \p month in \p year; months outside 1..12 take the length of
    /// their place in the yearly cycle ((month - 1) mod 12, never negative).
    static std::int32_t GetMonthLength(std::int32_t year, std::int32_t month);
    /// Days from 1970-01-01 to January 1 of \p year, any year at all:
    /// 365 per year plus the leap days in between, in closed form.
    static std::int64_t CountDaysBeforeYear(std::int32_t year);

private:
    Date(ValueKind kind, std::int32_t dayNumber);

    ValueKind kind;
    std::int32_t dayNumber;
};

} // namespace KivPlr

#endif

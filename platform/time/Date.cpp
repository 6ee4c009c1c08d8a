// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/time/Date.h>

#include <KivPlr/core/FatalError.h>

#include <cstdint>
#include <limits>

namespace KivPlr {

namespace {

constexpr std::int32_t MonthsPerYear = 12;
constexpr std::int32_t DaysPerCommonYear = 365;

// Days before each month of a common year; a leap year adds one from March.
constexpr std::int32_t DaysBeforeMonthOfCommonYear[MonthsPerYear] = {0,   31,  59,  90,  120, 151,
                                                                     181, 212, 243, 273, 304, 334};
constexpr std::int32_t MonthLengthOfCommonYear[MonthsPerYear] = {31, 28, 31, 30, 31, 30,
                                                                 31, 31, 30, 31, 30, 31};

// Floor division and its non-negative remainder, for day numbers below 0.
std::int64_t FloorDivide(std::int64_t value, std::int64_t divisor)
{
    std::int64_t quotient = value / divisor;
    return (value % divisor < 0) ? quotient - 1 : quotient;
}

std::int64_t FloorModulo(std::int64_t value, std::int64_t divisor)
{
    std::int64_t remainder = value % divisor;
    return remainder < 0 ? remainder + divisor : remainder;
}

// Leap years from year 1 up to year - 1; negative for years before 1, so
// that differences of two counts are right for any pair of years.
std::int64_t CountLeapYearsBefore(std::int64_t year)
{
    std::int64_t previous = year - 1;
    return FloorDivide(previous, 4) - FloorDivide(previous, 100) + FloorDivide(previous, 400);
}

// The place of a month in the yearly cycle, 0 for January.
std::int32_t CyclePosition(std::int32_t month)
{
    return static_cast<std::int32_t>(FloorModulo(static_cast<std::int64_t>(month) - 1, MonthsPerYear));
}

std::int32_t DaysInYear(std::int32_t year)
{
    return Date::IsLeapYear(year) ? DaysPerCommonYear + 1 : DaysPerCommonYear;
}

// Days of the months 1 .. month-1 of the given year, the months past 12
// continuing the cycle. No month comes before month 1.
std::int64_t CountDaysBeforeMonth(std::int32_t year, std::int32_t month)
{
    if (month <= 1)
        return 0;
    std::int64_t previousMonths = static_cast<std::int64_t>(month) - 1;
    std::int64_t wholeYears = previousMonths / MonthsPerYear;
    std::int32_t position = static_cast<std::int32_t>(previousMonths % MonthsPerYear);
    std::int64_t days = DaysBeforeMonthOfCommonYear[position];
    if (position >= 2 && Date::IsLeapYear(year))
        ++days;
    return wholeYears * DaysInYear(year) + days;
}

std::int32_t WrappingAdd(std::int32_t left, std::int32_t right)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(left) + static_cast<std::uint32_t>(right));
}

std::int32_t WrappingSubtract(std::int32_t left, std::int32_t right)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(left) - static_cast<std::uint32_t>(right));
}

} // namespace

Date::Date() : kind(KindFinite), dayNumber(0)
{
}

Date::Date(ValueKind kind) : kind(kind), dayNumber(0)
{
}

Date::Date(ValueKind kind, std::int32_t dayNumber) : kind(kind), dayNumber(dayNumber)
{
}

Date::Date(std::int32_t year, std::int32_t month, std::int32_t day) : kind(KindFinite), dayNumber(0)
{
    // Beyond 32767 a 16-bit year counter could never reach the year; the
    // range ends there rather than at an arbitrary wider limit.
    if (year < FirstYear || year > LastYear)
        FatalError(L"year out of range");
    // Only the low byte is checked: 257 passes as 1 and is counted as 257.
    if (static_cast<std::uint8_t>(month) < 1 || static_cast<std::uint8_t>(month) > MonthsPerYear)
        FatalError(L"month out of range");
    if (day < 1 || day > GetMonthLength(year, month))
        FatalError(L"day out of range");
    std::int64_t days = CountDaysBeforeYear(year) + CountDaysBeforeMonth(year, month) + (day - 1);
    if (days > std::numeric_limits<std::int32_t>::max())
        FatalError(L"month out of range");
    dayNumber = static_cast<std::int32_t>(days);
}

Date::~Date() = default;

Date Date::FromDayNumber(std::int32_t dayNumber)
{
    return Date(KindFinite, dayNumber);
}

ValueKind Date::GetKind() const
{
    return kind;
}

std::int32_t Date::GetDayNumber() const
{
    return dayNumber;
}

void Date::GetYearMonthDay(std::int32_t& year, std::int32_t& month, std::int32_t& day) const
{
    if (IsNullReference(&year))
        FatalError(L"Date: year NULL reference.");
    if (IsNullReference(&month))
        FatalError(L"Date: month NULL reference.");
    if (IsNullReference(&day))
        FatalError(L"Date: day NULL reference.");
    // Count from 0001-01-01 in 400-year cycles of 146097 days, then centuries
    // (36524 days), four-year groups (1461 days) and years; the last century
    // and the last year of a group are one day longer, hence the caps at 3.
    constexpr std::int64_t DaysFromYearOneToEpoch = 719162;
    std::int64_t days = dayNumber + DaysFromYearOneToEpoch;
    std::int64_t cycles = FloorDivide(days, 146097);
    std::int64_t rest = days - cycles * 146097;
    std::int64_t centuries = rest / 36524 < 3 ? rest / 36524 : 3;
    rest -= centuries * 36524;
    std::int64_t groups = rest / 1461;
    rest -= groups * 1461;
    std::int64_t years = rest / DaysPerCommonYear < 3 ? rest / DaysPerCommonYear : 3;
    rest -= years * DaysPerCommonYear;
    year = static_cast<std::int32_t>(1 + cycles * 400 + centuries * 100 + groups * 4 + years);
    month = 1;
    while (month < MonthsPerYear && rest >= GetMonthLength(year, month)) {
        rest -= GetMonthLength(year, month);
        ++month;
    }
    day = static_cast<std::int32_t>(rest) + 1;
}

std::int32_t Date::GetWeekday() const
{
    constexpr std::int64_t WeekdayOfEpoch = 4;
    return static_cast<std::int32_t>(FloorModulo(dayNumber + WeekdayOfEpoch, 7));
}

bool Date::operator==(const Date& other) const
{
    return KindEqual(kind, dayNumber, other.kind, other.dayNumber);
}

bool Date::operator<(const Date& other) const
{
    return KindLess(kind, dayNumber, other.kind, other.dayNumber);
}

DateDuration Date::operator-(const Date& other) const
{
    return DateDuration(WrappingSubtract(dayNumber, other.dayNumber));
}

Date Date::operator+(const DateDuration& span) const
{
    return Date(kind, WrappingAdd(dayNumber, span.GetDays()));
}

Date Date::operator-(const DateDuration& span) const
{
    return Date(kind, WrappingSubtract(dayNumber, span.GetDays()));
}

bool Date::IsLeapYear(std::int32_t year)
{
    return year % 400 == 0 || (year % 100 != 0 && year % 4 == 0);
}

std::int32_t Date::GetMonthLength(std::int32_t year, std::int32_t month)
{
    std::int32_t position = CyclePosition(month);
    if (position == 1 && IsLeapYear(year))
        return MonthLengthOfCommonYear[position] + 1;
    return MonthLengthOfCommonYear[position];
}

std::int64_t Date::CountDaysBeforeYear(std::int32_t year)
{
    return (static_cast<std::int64_t>(year) - FirstYear) * DaysPerCommonYear + CountLeapYearsBefore(year) -
           CountLeapYearsBefore(FirstYear);
}

} // namespace KivPlr

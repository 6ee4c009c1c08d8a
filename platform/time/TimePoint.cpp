// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/time/TimePoint.h>

#include <KivPlr/core/FatalError.h>

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace KivPlr {

namespace {

const char* const MonthNames[] = {"January", "February", "March",     "April",   "May",      "June",
                                  "July",    "August",   "September", "October", "November", "December"};
const char* const ShortWeekdayNames[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
const char* const ShortMonthNames[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

constexpr std::size_t MonthOffset = 4;
constexpr std::size_t DayOffset = 8;
constexpr std::size_t HoursOffset = 11;
constexpr std::size_t MinutesOffset = 14;
constexpr std::size_t SecondsOffset = 17;
constexpr std::size_t YearOffset = 20;

// strtol (base 10) from a fixed offset; 0 when the offset lies past the end.
// The string's own terminating NUL stops strtol at the end of the text.
long ReadNumber(const std::string& text, std::size_t offset)
{
    if (offset >= text.size())
        return 0;
    return std::strtol(text.c_str() + offset, nullptr, 10);
}

std::int32_t Saturate(long value)
{
    if (value > std::numeric_limits<std::int32_t>::max())
        return std::numeric_limits<std::int32_t>::max();
    if (value < std::numeric_limits<std::int32_t>::min())
        return std::numeric_limits<std::int32_t>::min();
    return static_cast<std::int32_t>(value);
}

// The month 1..12 whose name's first three letters stand at offset 4 of the
// lower-cased text, or 0.
std::int32_t FindMonth(const std::string& lowerText)
{
    if (lowerText.size() < MonthOffset + 3)
        return 0;
    for (std::int32_t index = 0; index < 12; ++index) {
        bool matches = true;
        for (std::size_t letter = 0; letter < 3; ++letter) {
            char expected = static_cast<char>(std::tolower(static_cast<unsigned char>(MonthNames[index][letter])));
            if (lowerText[MonthOffset + letter] != expected)
                matches = false;
        }
        if (matches)
            return index + 1;
    }
    return 0;
}

TimePoint ParseAsctime(const std::string& text)
{
    std::string lowerText = text;
    for (char& character : lowerText)
        character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    std::int32_t month = FindMonth(lowerText);
    if (month == 0)
        FatalError(L"Month not found");
    std::int32_t year = Saturate(ReadNumber(text, YearOffset));
    // The day is kept in a signed 8-bit value, like the field it fills.
    std::int32_t day = static_cast<std::int8_t>(Saturate(ReadNumber(text, DayOffset)));
    std::int32_t hours = Saturate(ReadNumber(text, HoursOffset));
    std::int32_t minutes = Saturate(ReadNumber(text, MinutesOffset));
    std::int64_t seconds = Saturate(ReadNumber(text, SecondsOffset));
    // The date first, so that its checks come before the sign check.
    Date date(year, month, day);
    return TimePoint(date, TimeDuration(hours, minutes, seconds, 0));
}

} // namespace

TimePoint::TimePoint() : date(), timeOfDay(TimeDuration::Nanoseconds(0))
{
}

TimePoint::TimePoint(const Date& date, const TimeDuration& timeOfDay) : date(date), timeOfDay(timeOfDay)
{
}

TimePoint::TimePoint(const std::string& asctimeText) : TimePoint(ParseAsctime(asctimeText))
{
}

TimePoint::~TimePoint() = default;

Date TimePoint::GetDate() const
{
    return date;
}

TimeDuration TimePoint::GetTimeOfDay() const
{
    return timeOfDay;
}

struct tm TimePoint::ToTm() const
{
    std::int32_t year = 0;
    std::int32_t month = 0;
    std::int32_t day = 0;
    date.GetYearMonthDay(year, month, day);
    struct tm fields = {};
    fields.tm_year = year - 1900;
    fields.tm_mon = month - 1;
    fields.tm_mday = day;
    fields.tm_wday = date.GetWeekday();
    fields.tm_hour = static_cast<int>(timeOfDay.GetHours());
    fields.tm_min = static_cast<int>(timeOfDay.GetMinutes());
    fields.tm_sec = static_cast<int>(timeOfDay.GetSeconds());
    return fields;
}

std::string TimePoint::ToText() const
{
    return FormatAsctime(ToTm());
}

std::string TimePoint::FormatAsctime(const struct tm& fields)
{
    const char* weekday = (fields.tm_wday >= 0 && fields.tm_wday < 7) ? ShortWeekdayNames[fields.tm_wday] : "???";
    const char* month = (fields.tm_mon >= 0 && fields.tm_mon < 12) ? ShortMonthNames[fields.tm_mon] : "???";
    long long year = static_cast<long long>(fields.tm_year) + 1900;
    char buffer[96];
    int length = std::snprintf(buffer, sizeof buffer, "%.3s %.3s%3d %.2d:%.2d:%.2d %lld\n", weekday, month,
                               fields.tm_mday, fields.tm_hour, fields.tm_min, fields.tm_sec, year);
    // Every field together takes at most 76 characters, so nothing is cut.
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof buffer)
        return std::string();
    return std::string(buffer, static_cast<std::size_t>(length));
}

bool TimePoint::operator==(const TimePoint& other) const
{
    return date == other.date && timeOfDay == other.timeOfDay;
}

bool TimePoint::operator<(const TimePoint& other) const
{
    if (date < other.date)
        return true;
    if (other.date < date)
        return false;
    return timeOfDay < other.timeOfDay;
}

TimePoint operator+(const Date& base, const TimeDuration& offset)
{
    if (offset.IsSpecial())
        return TimePoint(base, offset);
    std::int64_t nanoseconds = offset.GetTotalNanoseconds();
    std::int64_t days = nanoseconds / TimeDuration::NanosecondsPerDay;
    std::int64_t rest = nanoseconds % TimeDuration::NanosecondsPerDay;
    if (rest < 0) {
        --days;
        rest += TimeDuration::NanosecondsPerDay;
    }
    return TimePoint(base + DateDuration(static_cast<std::int32_t>(days)), TimeDuration::Nanoseconds(rest));
}

} // namespace KivPlr

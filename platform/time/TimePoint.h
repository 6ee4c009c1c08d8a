// SPDX-License-Identifier: Apache-2.0
// TimePoint.h - a moment in calendar time: a Date and the TimeDuration since
// that date's midnight; read from and written as asctime text.
//
// A plain value class: copy it freely; it is not a platform object and one
// object is not synchronised. The system clock produces and consumes it.
//
// Example:
//   TimePoint start(Date(2024, 3, 1), TimeDuration(13, 5, 0, 0));
//   std::string text = start.ToText();        // "Fri Mar  1 13:05:00 2024\n"
//   TimePoint again(text);                    // equal to start
//   std::int32_t seconds = 1700000000;
//   TimePoint now = Epoch() + TimeDuration(0, 0, seconds, 0);
//
// The text reader reads fixed offsets of asctime's layout and ends the
// process on text it cannot take apart (see TimePoint(const std::string&)).
#ifndef KIVPLR_TIMEPOINT_H
#define KIVPLR_TIMEPOINT_H

#include <KivPlr/core/Export.h>
#include <KivPlr/time/Date.h>
#include <KivPlr/time/TimeDuration.h>
#include <KivPlr/time/ValueKind.h>

#include <ctime>
#include <string>

namespace KivPlr {

class KIVPLR_API TimePoint : public KindOrdered<TimePoint>
{
public:
    /// 1970-01-01 00:00:00.
    TimePoint();
    /// \p date and \p timeOfDay as given; the time of day is not brought into
    /// 0..24 h (Epoch() + duration does that).
    TimePoint(const Date& date, const TimeDuration& timeOfDay);
    /// Reads asctime's layout ("Thu Jan  1 00:00:00 1970\n"). The text is
    /// copied and lower-cased; the three characters at offset 4 name the
    /// month ("jan" .. "dec", first match); then strtol (base 10) reads the
    /// year at offset 20, the day at 8 (kept as a signed 8-bit value), hours
    /// at 11, minutes at 14 and seconds at 17 of the original text. The weekday
    /// is not read. The result is TimePoint(Date(year, month, day),
    /// TimeDuration(hours, minutes, seconds, 0)), so those checks apply.
    /// Ends the process with "Month not found" when no month name matches
    /// (text shorter than 7 characters included). Nothing is read past the
    /// end of the text: a field that starts past it reads as 0, so a text
    /// shorter than 24 characters, which cannot hold a four-digit year at
    /// offset 20, ends the process with "year out of range" once its month
    /// matched. Numbers beyond 32 bits saturate (strtol's 64-bit long on
    /// the host, like its 32-bit long on ARM), so both read alike.
    explicit TimePoint(const std::string& asctimeText);
    virtual ~TimePoint();

    TimePoint(const TimePoint&) = default;
    TimePoint& operator=(const TimePoint&) = default;

    /// A copy of the date part.
    Date GetDate() const;
    /// A copy of the time-of-day part.
    TimeDuration GetTimeOfDay() const;

    /// The fields in a struct tm (year, month, day and weekday of the date;
    /// hours, minutes of the hour and seconds of the minute of the time of
    /// day, not normalised) written in asctime's layout with the trailing
    /// newline. The kind of the date is not written; an infinite date shows
    /// its day number's date.
    std::string ToText() const;

    /// The struct tm that ToText writes (tm_yday and tm_isdst are 0).
    struct tm ToTm() const;

    /// asctime's layout of \p fields: "%.3s %.3s%3d %.2d:%.2d:%.2d %d\n" with
    /// "???" for a weekday or month out of range, like the C library's
    /// asctime, but into a string of its own: safe from any thread and not
    /// cut off at 26 characters for years past 9999.
    static std::string FormatAsctime(const struct tm& fields);

    /// Equal dates (kind rules) and equal times of day (kind rules). Fields
    /// are compared, not instants: (d, 25 h) differs from (d + 1, 1 h).
    bool operator==(const TimePoint& other) const;
    /// By date; equal dates by time of day. !=, >, <= and >= follow.
    bool operator<(const TimePoint& other) const;

private:
    Date date;
    TimeDuration timeOfDay;
};

/// \p base plus \p offset, split into whole days (rounded toward -infinity)
/// and the time of day left over (0 to just under 24 h). The date has the
/// kind of \p base. A special \p offset is kept as the time of day as it is.
KIVPLR_API TimePoint operator+(const Date& base, const TimeDuration& offset);

} // namespace KivPlr

#endif

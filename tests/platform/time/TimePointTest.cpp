// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/time/Epoch.h>
#include <KivPlr/time/TimePoint.h>
#include <KivTest/FatalMessage.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <random>
#include <string>

using namespace KivPlr;

namespace {

constexpr std::int64_t Second = 1000000000LL;

// The C library's asctime of the same fields.
std::string GlibcAsctime(const struct tm& fields)
{
    const char* text = asctime(&fields);
    return text != nullptr ? std::string(text) : std::string("<asctime failed>");
}

TimePoint At(std::int32_t dayNumber, std::int64_t secondsOfDay)
{
    return TimePoint(Date::FromDayNumber(dayNumber), TimeDuration(0, 0, secondsOfDay, 0));
}

// A whole second between 1970-01-01 and the end of 9999.
TimePoint RandomWholeSecond(std::mt19937& random)
{
    std::uniform_int_distribution<std::int32_t> days(0, Date(9999, 12, 31).GetDayNumber());
    std::uniform_int_distribution<std::int64_t> seconds(0, 86399);
    std::int32_t day = days(random);
    return At(day, seconds(random));
}

const char EpochText[] = "Thu Jan  1 00:00:00 1970\n";

} // namespace

TEST(TimePointTest, KeepsItsDateAndTimeOfDay)
{
    TimePoint point(Date(2024, 3, 1), TimeDuration(13, 5, 7, 9));
    EXPECT_TRUE(point.GetDate() == Date(2024, 3, 1));
    EXPECT_TRUE(point.GetTimeOfDay() == TimeDuration(13, 5, 7, 9));
}

TEST(TimePointTest, DefaultIsMidnightOfTheEpoch)
{
    TimePoint point;
    EXPECT_TRUE(point.GetDate() == Epoch());
    EXPECT_TRUE(point.GetTimeOfDay() == TimeDuration::Nanoseconds(0));
}

TEST(TimePointTest, CopyingCopiesBothParts)
{
    TimePoint original{Date(KindPositiveInfinity), TimeDuration(KindNegativeInfinity)};
    TimePoint copy(original);
    EXPECT_EQ(copy.GetDate().GetKind(), KindPositiveInfinity);
    EXPECT_EQ(copy.GetTimeOfDay().GetKind(), KindNegativeInfinity);
    TimePoint assigned;
    assigned = original;
    EXPECT_TRUE(assigned == original);
}

TEST(TimePointTest, TextHasTheAsctimeLayout)
{
    EXPECT_EQ(TimePoint(Date(2024, 3, 1), TimeDuration(13, 5, 0, 0)).ToText(), "Fri Mar  1 13:05:00 2024\n");
    EXPECT_EQ(TimePoint().ToText(), EpochText);
    EXPECT_EQ(TimePoint(Date(2000, 12, 31), TimeDuration(23, 59, 59, 999999999)).ToText(),
              "Sun Dec 31 23:59:59 2000\n");
}

TEST(TimePointTest, TextEqualsGlibcAsctimeOfTheSameFields)
{
    std::mt19937 random(1970);
    for (int sample = 0; sample < 10000; ++sample) {
        TimePoint point = RandomWholeSecond(random);
        struct tm fields = point.ToTm();
        ASSERT_EQ(point.ToText(), GlibcAsctime(fields)) << point.GetDate().GetDayNumber();
    }
}

TEST(TimePointTest, TextEqualsGlibcAsctimeOfGmtime)
{
    // gmtime is the C library's own calendar: the fields, not only the layout,
    // must agree. time_t limits the range on 32-bit ARM.
    std::mt19937 random(2038);
    std::int64_t last = sizeof(time_t) < 8 ? 2147483647LL : 253402300799LL; // 9999-12-31 23:59:59
    std::uniform_int_distribution<std::int64_t> values(0, last);
    for (int sample = 0; sample < 10000; ++sample) {
        time_t value = static_cast<time_t>(values(random));
        struct tm fields;
        ASSERT_NE(gmtime_r(&value, &fields), nullptr);
        std::int64_t seconds = static_cast<std::int64_t>(value);
        TimePoint point = At(static_cast<std::int32_t>(seconds / 86400), seconds % 86400);
        ASSERT_EQ(point.ToText(), GlibcAsctime(fields)) << static_cast<std::int64_t>(value);
    }
}

TEST(TimePointTest, TextOfYearsPast9999IsNotCutOff)
{
    TimePoint point(Date(32767, 12, 31), TimeDuration(23, 59, 59, 0));
    EXPECT_EQ(point.ToText(), GlibcAsctime(point.ToTm()));
    EXPECT_EQ(point.ToText().size(), 26u);
}

TEST(TimePointTest, TimeOfDayIsWrittenWithoutNormalising)
{
    TimePoint point(Date(1970, 1, 1), TimeDuration(30, 0, 5, 0));
    struct tm fields = point.ToTm();
    EXPECT_EQ(fields.tm_hour, 30);
    EXPECT_EQ(point.ToText(), "Thu Jan  1 30:00:05 1970\n");
}

TEST(TimePointTest, FieldsOutOfRangeAreWrittenLikeAsctime)
{
    struct tm fields = {};
    fields.tm_wday = 9;
    fields.tm_mon = -1;
    fields.tm_mday = 5;
    fields.tm_year = 100;
    EXPECT_EQ(TimePoint::FormatAsctime(fields), GlibcAsctime(fields));
    EXPECT_EQ(TimePoint::FormatAsctime(fields), "??? ???  5 00:00:00 2000\n");
}

TEST(TimePointTest, ReadsTheEpochFromText)
{
    TimePoint point{std::string(EpochText)};
    EXPECT_TRUE(point == TimePoint());
    EXPECT_EQ(point.GetTimeOfDay().GetKind(), KindFinite);
}

TEST(TimePointTest, ReadsEveryMonthNameWhateverItsCase)
{
    const char* const names[] = {"jan", "FEB", "Mar", "aPr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "DEC"};
    for (int month = 1; month <= 12; ++month) {
        std::string text = std::string("xxx ") + names[month - 1] + "  1 00:00:00 2001\n";
        EXPECT_TRUE(TimePoint(text).GetDate() == Date(2001, month, 1)) << text;
    }
}

TEST(TimePointTest, ReadsTheFieldsAtTheirOffsets)
{
    TimePoint point(std::string("Fri Mar  1 13:05:07 2024\n"));
    EXPECT_TRUE(point.GetDate() == Date(2024, 3, 1));
    EXPECT_TRUE(point.GetTimeOfDay() == TimeDuration(13, 5, 7, 0));
    // The weekday is not read.
    EXPECT_TRUE(TimePoint(std::string("Mon Mar  1 13:05:07 2024\n")) == point);
}

TEST(TimePointTest, ReaderRoundTripsTheWriter)
{
    std::mt19937 random(9999);
    for (int sample = 0; sample < 10000; ++sample) {
        TimePoint point = RandomWholeSecond(random);
        std::string text = point.ToText();
        ASSERT_TRUE(TimePoint(text) == point) << text;
    }
}

TEST(TimePointTest, UnknownMonthEndsTheProcess)
{
    EXPECT_FATAL_MESSAGE(TimePoint(std::string("Thu Foo  1 00:00:00 1970\n")), L"Month not found");
    // Month names are compared at offset 4 only.
    EXPECT_FATAL_MESSAGE(TimePoint(std::string("Jan Thu  1 00:00:00 1970\n")), L"Month not found");
}

TEST(TimePointTest, TextTooShortForAMonthEndsTheProcess)
{
    for (std::size_t length = 0; length < 7; ++length) {
        std::string text = std::string(EpochText).substr(0, length);
        SCOPED_TRACE(length);
        EXPECT_FATAL_MESSAGE(TimePoint{text}, L"Month not found");
    }
}

TEST(TimePointTest, TextShorterThan24CharactersEndsTheProcessWithoutReadingPastItsEnd)
{
    // Fields past the end read as 0, and offset 20 cannot hold four digits.
    // The ASan lane checks that no byte beyond the text is touched.
    for (std::size_t length = 7; length < 24; ++length) {
        std::string text = std::string("Sat Jan 31 23:59:59 2000").substr(0, length);
        SCOPED_TRACE(length);
        EXPECT_FATAL_MESSAGE(TimePoint{text}, L"year out of range");
    }
}

TEST(TimePointTest, CharactersLeftPastTheEndOfAShortenedTextAreNotRead)
{
    // Shortening a string only moves its terminating NUL: the old characters,
    // a whole valid date among them, stay in the buffer behind it. A reader
    // that went by the fixed offsets alone would find the year there.
    for (std::size_t length = 7; length < 20; ++length) {
        std::string text = "Sat Jan 31 23:59:59 2000";
        text.resize(length);
        SCOPED_TRACE(length);
        EXPECT_FATAL_MESSAGE(TimePoint{text}, L"year out of range");
    }
}

TEST(TimePointTest, TextOfExactly24CharactersIsEnough)
{
    TimePoint point(std::string("Sat Jan 31 23:59:59 2000"));
    EXPECT_TRUE(point == TimePoint(Date(2000, 1, 31), TimeDuration(23, 59, 59, 0)));
}

TEST(TimePointTest, DayIsKeptAsASignedEightBitValue)
{
    // "257" at offset 8 wraps to 1.
    EXPECT_TRUE(TimePoint(std::string("Thu Jan 257 0:00:00 1970")).GetDate() == Date(1970, 1, 1));
    EXPECT_FATAL_MESSAGE(TimePoint(std::string("Thu Jan 128 0:00:00 1970")), L"day out of range");
}

TEST(TimePointTest, ReadDateIsChecked)
{
    EXPECT_FATAL_MESSAGE(TimePoint(std::string("Thu Jan  1 00:00:00 1969\n")), L"year out of range");
    EXPECT_FATAL_MESSAGE(TimePoint(std::string("Thu Feb 30 00:00:00 2000\n")), L"day out of range");
    EXPECT_FATAL_MESSAGE(TimePoint(std::string("Thu Feb  0 00:00:00 2000\n")), L"day out of range");
}

TEST(TimePointTest, HugeNumbersSaturateAlikeOnEveryLane)
{
    EXPECT_FATAL_MESSAGE(TimePoint(std::string("Thu Jan  1 00:00:00 4294969266\n")), L"year out of range");
    // The day at offset 8 runs on into the year: 5 000 000 000 001 970.
    EXPECT_FATAL_MESSAGE(TimePoint(std::string("Thu Jan 5000000000001970\n")), L"day out of range");
}

TEST(TimePointTest, TimeOfDayIsReadWithoutRangeChecks)
{
    TimePoint point(std::string("Thu Jan  1 99:99:99 1970\n"));
    EXPECT_TRUE(point.GetTimeOfDay() == TimeDuration(99, 99, 99, 0));
}

TEST(TimePointTest, InconsistentSignsInTheTextEndTheProcess)
{
    EXPECT_FATAL_MESSAGE(TimePoint(std::string("Thu Jan  1 01:-1:00 1970\n")),
                         L"invalid parameter, signs are not consistent");
}

TEST(TimePointTest, AddingADurationToADateSplitsWholeDays)
{
    TimePoint point = Epoch() + TimeDuration(0, 0, 86401, 500000);
    EXPECT_TRUE(point.GetDate() == Date(1970, 1, 2));
    EXPECT_EQ(point.GetTimeOfDay().GetTotalNanoseconds(), Second + 500000);
}

TEST(TimePointTest, AddingANegativeDurationGoesBackToTheDayBefore)
{
    TimePoint point = Date(2000, 1, 1) + TimeDuration(0, 0, -1, 0);
    EXPECT_TRUE(point.GetDate() == Date(1999, 12, 31));
    EXPECT_TRUE(point.GetTimeOfDay() == TimeDuration(23, 59, 59, 0));
    TimePoint exact = Date(2000, 1, 2) + TimeDuration(-24, 0, 0, 0);
    EXPECT_TRUE(exact.GetDate() == Date(2000, 1, 1));
    EXPECT_TRUE(exact.GetTimeOfDay() == TimeDuration::Nanoseconds(0));
}

TEST(TimePointTest, AddingASpecialDurationKeepsIt)
{
    TimePoint point = Date(2000, 1, 1) + TimeDuration(KindPositiveInfinity);
    EXPECT_TRUE(point.GetDate() == Date(2000, 1, 1));
    EXPECT_TRUE(point.GetTimeOfDay().IsPositiveInfinity());
}

TEST(TimePointTest, ComparesByDateThenTimeOfDay)
{
    TimePoint early(Date(2000, 1, 1), TimeDuration(23, 0, 0, 0));
    TimePoint late(Date(2000, 1, 2), TimeDuration(1, 0, 0, 0));
    TimePoint later(Date(2000, 1, 2), TimeDuration(2, 0, 0, 0));
    EXPECT_TRUE(early < late);
    EXPECT_TRUE(late < later);
    EXPECT_TRUE(later > early);
    EXPECT_TRUE(late != later);
    EXPECT_TRUE(late == TimePoint(Date(2000, 1, 2), TimeDuration(1, 0, 0, 0)));
    // Fields, not instants.
    EXPECT_FALSE(TimePoint(Date(2000, 1, 1), TimeDuration(25, 0, 0, 0)) == late);
}

TEST(TimePointTest, InfiniteDatesBoundEveryFinitePoint)
{
    TimePoint finite(Date(2000, 1, 1), TimeDuration(1, 0, 0, 0));
    TimePoint future(Date(KindPositiveInfinity), TimeDuration::Nanoseconds(0));
    TimePoint past(Date(KindNegativeInfinity), TimeDuration::Nanoseconds(0));
    EXPECT_TRUE(past < finite);
    EXPECT_TRUE(finite < future);
    EXPECT_TRUE(past < future);
    EXPECT_FALSE(future < future);
}

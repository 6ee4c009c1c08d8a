// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/time/Date.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <ctime>
#include <random>

using namespace KivPlr;

namespace {

bool IndependentLeapYear(std::int64_t year)
{
    if (year % 400 == 0)
        return true;
    if (year % 100 == 0)
        return false;
    return year % 4 == 0;
}

int IndependentMonthLength(std::int64_t year, int month)
{
    switch (month) {
    case 2:
        return IndependentLeapYear(year) ? 29 : 28;
    case 4:
    case 6:
    case 9:
    case 11:
        return 30;
    default:
        return 31;
    }
}

// Days from 1970-01-01, counted in 400-year eras of years that begin in
// March, so that the leap day is the last day of its year.
std::int64_t IndependentDayNumber(std::int64_t year, int month, int day)
{
    year -= month <= 2 ? 1 : 0;
    std::int64_t era = (year >= 0 ? year : year - 399) / 400;
    std::int64_t yearOfEra = year - era * 400;
    std::int64_t dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
    std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468;
}

// The C library's own count, where time_t reaches the date.
bool TimegmDayNumber(int year, int month, int day, std::int64_t& dayNumber)
{
    if (sizeof(time_t) < 8 && year > 2037)
        return false;
    struct tm fields = {};
    fields.tm_year = year - 1900;
    fields.tm_mon = month - 1;
    fields.tm_mday = day;
    dayNumber = static_cast<std::int64_t>(timegm(&fields)) / 86400;
    return true;
}

void ExpectYearMonthDay(const Date& date, std::int32_t year, std::int32_t month, std::int32_t day)
{
    std::int32_t readYear = 0, readMonth = 0, readDay = 0;
    date.GetYearMonthDay(readYear, readMonth, readDay);
    EXPECT_EQ(readYear, year) << date.GetDayNumber();
    EXPECT_EQ(readMonth, month) << date.GetDayNumber();
    EXPECT_EQ(readDay, day) << date.GetDayNumber();
}

} // namespace

TEST(DateTest, FirstOfJanuary1970IsDayZero)
{
    EXPECT_EQ(Date(1970, 1, 1).GetDayNumber(), 0);
}

TEST(DateTest, FirstOfJanuary2000IsDay10957)
{
    EXPECT_EQ(Date(2000, 1, 1).GetDayNumber(), 10957);
}

TEST(DateTest, DefaultIsTheFirstOfJanuary1970)
{
    Date date;
    EXPECT_EQ(date.GetKind(), KindFinite);
    EXPECT_EQ(date.GetDayNumber(), 0);
}

TEST(DateTest, YearBefore1970EndsTheProcess)
{
    EXPECT_FATAL_MESSAGE(Date(1969, 12, 31), L"year out of range");
    EXPECT_FATAL_MESSAGE(Date(0, 1, 1), L"year out of range");
    EXPECT_FATAL_MESSAGE(Date(-2147483647 - 1, 1, 1), L"year out of range");
}

TEST(DateTest, YearAfter32767EndsTheProcess)
{
    EXPECT_FATAL_MESSAGE(Date(32768, 1, 1), L"year out of range");
    EXPECT_FATAL_MESSAGE(Date(65536 + 1970, 1, 1), L"year out of range");
    EXPECT_FATAL_MESSAGE(Date(2147483647, 12, 31), L"year out of range");
}

TEST(DateTest, Year32767IsTheLastYear)
{
    Date last(32767, 12, 31);
    EXPECT_EQ(last.GetDayNumber(), IndependentDayNumber(32767, 12, 31));
}

TEST(DateTest, LeapDayOf2000IsValid)
{
    Date leapDay(2000, 2, 29);
    EXPECT_EQ(leapDay.GetDayNumber(), 11016);
    EXPECT_EQ((Date(2000, 3, 1) - leapDay).GetDays(), 1);
}

TEST(DateTest, LeapDayOf2100EndsTheProcess)
{
    EXPECT_FATAL_MESSAGE(Date(2100, 2, 29), L"day out of range");
    EXPECT_FATAL_MESSAGE(Date(2023, 2, 29), L"day out of range");
}

TEST(DateTest, DayOutsideTheMonthEndsTheProcess)
{
    EXPECT_FATAL_MESSAGE(Date(2024, 1, 0), L"day out of range");
    EXPECT_FATAL_MESSAGE(Date(2024, 1, -1), L"day out of range");
    EXPECT_FATAL_MESSAGE(Date(2024, 1, 32), L"day out of range");
    EXPECT_FATAL_MESSAGE(Date(2024, 4, 31), L"day out of range");
    EXPECT_FATAL_MESSAGE(Date(2024, 2, 30), L"day out of range");
}

TEST(DateTest, MonthZeroOrThirteenEndsTheProcess)
{
    EXPECT_FATAL_MESSAGE(Date(2024, 0, 1), L"month out of range");
    EXPECT_FATAL_MESSAGE(Date(2024, 13, 1), L"month out of range");
    // Low bytes 0 and 255.
    EXPECT_FATAL_MESSAGE(Date(2024, 256, 1), L"month out of range");
    EXPECT_FATAL_MESSAGE(Date(2024, -1, 1), L"month out of range");
}

TEST(DateTest, YearIsCheckedBeforeMonthAndMonthBeforeDay)
{
    EXPECT_FATAL_MESSAGE(Date(1969, 13, 40), L"year out of range");
    EXPECT_FATAL_MESSAGE(Date(2000, 13, 40), L"month out of range");
}

TEST(DateTest, Month257PassesTheCheckAndCountsTheMonthsBeforeIt)
{
    // The low byte of 257 is 1. The 256 months before it are 21 whole years
    // of the date's year plus January to April.
    std::int64_t expected = 0;
    for (int month = 1; month < 257; ++month)
        expected += IndependentMonthLength(1970, (month - 1) % 12 + 1);
    Date date(1970, 257, 1);
    EXPECT_EQ(date.GetDayNumber(), expected);
    EXPECT_EQ(date.GetDayNumber(), 21 * 365 + 31 + 28 + 31 + 30);

    std::int64_t expectedInLeapYear = Date::CountDaysBeforeYear(2000);
    for (int month = 1; month < 257; ++month)
        expectedInLeapYear += IndependentMonthLength(2000, (month - 1) % 12 + 1);
    EXPECT_EQ(Date(2000, 257, 10).GetDayNumber(), expectedInLeapYear + 9);
}

TEST(DateTest, MonthPastTwelveTakesTheLengthOfItsPlaceInTheCycle)
{
    // 257 is May of its cycle: 31 days.
    EXPECT_EQ(Date::GetMonthLength(1970, 257), 31);
    EXPECT_EQ(Date(1970, 257, 31).GetDayNumber(), Date(1970, 257, 1).GetDayNumber() + 30);
    EXPECT_FATAL_MESSAGE(Date(1970, 257, 32), L"day out of range");
    // 258 (low byte 2) is June of its cycle: 30 days, not February's 28.
    EXPECT_EQ(Date::GetMonthLength(1970, 258), 30);
    EXPECT_EQ(Date(1970, 258, 30).GetDayNumber(), Date(1970, 258, 1).GetDayNumber() + 29);
    EXPECT_FATAL_MESSAGE(Date(1970, 258, 31), L"day out of range");
    // 266 (low byte 10) is February of its cycle.
    EXPECT_EQ(Date::GetMonthLength(2000, 266), 29);
    EXPECT_FATAL_MESSAGE(Date(2001, 266, 29), L"day out of range");
}

TEST(DateTest, NegativeMonthWithAValidLowByteCountsNoMonthsBeforeIt)
{
    // -255 is 0xFFFFFF01: low byte 1. Its place in the cycle is September.
    EXPECT_EQ(Date::GetMonthLength(1980, -255), 30);
    EXPECT_EQ(Date(1980, -255, 30).GetDayNumber(), Date(1980, 1, 30).GetDayNumber());
    EXPECT_FATAL_MESSAGE(Date(1980, -255, 31), L"day out of range");
}

TEST(DateTest, MonthTakingTheDayNumberPast32BitsEndsTheProcess)
{
    // Low byte 1, but about 179 million years of months.
    EXPECT_FATAL_MESSAGE(Date(1970, 0x7FFFFF01, 1), L"month out of range");
    // A large month that still fits is counted.
    std::int64_t months = 0x00FFFF01 - 1;
    std::int64_t expected = (months / 12) * 365 + 0;
    EXPECT_EQ(Date(1970, 0x00FFFF01, 1).GetDayNumber(), expected);
}

TEST(DateTest, EveryDateFrom1970To2400MatchesIndependentCalendars)
{
    std::int64_t previous = -1;
    for (int year = 1970; year <= 2400; ++year) {
        for (int month = 1; month <= 12; ++month) {
            for (int day = 1; day <= IndependentMonthLength(year, month); ++day) {
                std::int32_t dayNumber = Date(year, month, day).GetDayNumber();
                ASSERT_EQ(dayNumber, IndependentDayNumber(year, month, day)) << year << "-" << month << "-" << day;
                ASSERT_EQ(dayNumber, previous + 1) << year << "-" << month << "-" << day;
                std::int64_t timegmDays = 0;
                if (TimegmDayNumber(year, month, day, timegmDays)) {
                    ASSERT_EQ(dayNumber, timegmDays) << year << "-" << month << "-" << day;
                }
                previous = dayNumber;
            }
        }
    }
    EXPECT_EQ(previous, Date(2400, 12, 31).GetDayNumber());
}

TEST(DateTest, EveryYearUpTo32767MatchesTheSixteenBitYearCounter)
{
    // The year-by-year sum, with the counter kept in 16 bits.
    std::int64_t daysBefore = 0;
    for (std::int16_t year = 1970;; ++year) {
        ASSERT_EQ(Date(year, 1, 1).GetDayNumber(), daysBefore) << year;
        ASSERT_EQ(Date::CountDaysBeforeYear(year), daysBefore) << year;
        if (year == 32767)
            break;
        daysBefore += IndependentLeapYear(year) ? 366 : 365;
    }
}

TEST(DateTest, SampledDatesUpTo32767MatchTheIndependentCalendar)
{
    std::mt19937 random(20240301);
    std::uniform_int_distribution<int> years(1970, 32767);
    std::uniform_int_distribution<int> months(1, 12);
    for (int sample = 0; sample < 20000; ++sample) {
        int year = years(random);
        int month = months(random);
        int day = std::uniform_int_distribution<int>(1, IndependentMonthLength(year, month))(random);
        ASSERT_EQ(Date(year, month, day).GetDayNumber(), IndependentDayNumber(year, month, day))
            << year << "-" << month << "-" << day;
    }
    for (int year : {2401, 2500, 4000, 9999, 10000, 20000, 32767}) {
        EXPECT_EQ(Date(year, 2, 28).GetDayNumber(), IndependentDayNumber(year, 2, 28)) << year;
        EXPECT_EQ(Date(year, 12, 31).GetDayNumber(), IndependentDayNumber(year, 12, 31)) << year;
    }
}

TEST(DateTest, DaysBeforeYearAreCountedForAnyYear)
{
    EXPECT_EQ(Date::CountDaysBeforeYear(1970), 0);
    EXPECT_EQ(Date::CountDaysBeforeYear(1), IndependentDayNumber(1, 1, 1));
    EXPECT_EQ(Date::CountDaysBeforeYear(0), IndependentDayNumber(0, 1, 1));
    EXPECT_EQ(Date::CountDaysBeforeYear(-400), IndependentDayNumber(-400, 1, 1));
    EXPECT_EQ(Date::CountDaysBeforeYear(2147483647), IndependentDayNumber(2147483647, 1, 1));
}

TEST(DateTest, YearMonthDayAreReadBackFromTheDayNumber)
{
    for (int year = 1970; year <= 2400; ++year) {
        for (int month = 1; month <= 12; ++month) {
            for (int day = 1; day <= IndependentMonthLength(year, month); ++day) {
                std::int32_t readYear = 0, readMonth = 0, readDay = 0;
                Date(year, month, day).GetYearMonthDay(readYear, readMonth, readDay);
                ASSERT_EQ(readYear, year);
                ASSERT_EQ(readMonth, month);
                ASSERT_EQ(readDay, day);
            }
        }
    }
    ExpectYearMonthDay(Date(32767, 12, 31), 32767, 12, 31);
    ExpectYearMonthDay(Date(10000, 2, 29), 10000, 2, 29);
}

TEST(DateTest, DayNumbersBefore1970ReadBackAsProlepticGregorianDates)
{
    ExpectYearMonthDay(Date::FromDayNumber(-1), 1969, 12, 31);
    ExpectYearMonthDay(Date::FromDayNumber(-719162), 1, 1, 1);
    for (std::int32_t dayNumber : {-2147483647 - 1, -1000000000, -1, 1000000000, 2147483647}) {
        std::int32_t year = 0, month = 0, day = 0;
        Date::FromDayNumber(dayNumber).GetYearMonthDay(year, month, day);
        EXPECT_EQ(IndependentDayNumber(year, month, day), dayNumber);
        EXPECT_GE(day, 1);
        EXPECT_LE(day, IndependentMonthLength(year, month));
    }
}

TEST(DateTest, WeekdayFollowsTheSevenDayCycleFromThursday)
{
    EXPECT_EQ(Date(1970, 1, 1).GetWeekday(), 4);
    EXPECT_EQ(Date(2000, 1, 1).GetWeekday(), 6);
    EXPECT_EQ(Date(2024, 3, 1).GetWeekday(), 5);
    EXPECT_EQ(Date::FromDayNumber(-1).GetWeekday(), 3);
    EXPECT_EQ(Date::FromDayNumber(-7).GetWeekday(), 4);
}

TEST(DateTest, LeapYearRule)
{
    EXPECT_TRUE(Date::IsLeapYear(2000));
    EXPECT_TRUE(Date::IsLeapYear(2004));
    EXPECT_FALSE(Date::IsLeapYear(2100));
    EXPECT_FALSE(Date::IsLeapYear(2001));
    EXPECT_TRUE(Date::IsLeapYear(2400));
}

TEST(DateTest, DifferenceOfDatesIsTheDifferenceOfDayNumbers)
{
    DateDuration span = Date(2024, 3, 1) - Date(2024, 1, 1);
    EXPECT_EQ(span.GetKind(), KindFinite);
    EXPECT_EQ(span.GetDays(), 60);
    EXPECT_EQ((Date(2024, 1, 1) - Date(2024, 3, 1)).GetDays(), -60);
}

TEST(DateTest, AddingAndSubtractingDaysKeepsTheDatesKind)
{
    EXPECT_TRUE(Date(2024, 2, 28) + DateDuration(2) == Date(2024, 3, 1));
    EXPECT_TRUE(Date(2024, 3, 1) - DateDuration(2) == Date(2024, 2, 28));
    Date infinite(KindPositiveInfinity);
    EXPECT_EQ((infinite + DateDuration(5)).GetKind(), KindPositiveInfinity);
    EXPECT_EQ((infinite + DateDuration(5)).GetDayNumber(), 5);
    EXPECT_EQ((Date(KindNegativeInfinity) - DateDuration(5)).GetKind(), KindNegativeInfinity);
}

TEST(DateTest, DayArithmeticWrapsAtThirtyTwoBits)
{
    Date last = Date::FromDayNumber(2147483647);
    EXPECT_EQ((last + DateDuration(1)).GetDayNumber(), -2147483647 - 1);
    EXPECT_EQ((Date::FromDayNumber(-2) - last).GetDays(), 2147483647);
}

TEST(DateTest, FiniteDatesCompareByDayNumber)
{
    EXPECT_TRUE(Date(2024, 1, 1) < Date(2024, 1, 2));
    EXPECT_TRUE(Date(2024, 1, 2) > Date(2024, 1, 1));
    EXPECT_TRUE(Date(2024, 1, 1) == Date(2024, 1, 1));
    EXPECT_TRUE(Date(2024, 1, 1) != Date(2024, 1, 2));
    EXPECT_TRUE(Date(2024, 1, 1) <= Date(2024, 1, 1));
    EXPECT_TRUE(Date(2024, 1, 1) >= Date(2023, 12, 31));
}

TEST(DateTest, NegativeInfinityIsLessThanPositiveInfinity)
{
    EXPECT_TRUE(Date(KindNegativeInfinity) < Date(KindPositiveInfinity));
    EXPECT_FALSE(Date(KindPositiveInfinity) < Date(KindNegativeInfinity));
    EXPECT_TRUE(Date(KindNegativeInfinity) < Date(1970, 1, 1));
    EXPECT_TRUE(Date(32767, 12, 31) < Date(KindPositiveInfinity));
}

TEST(DateTest, TwoPositiveInfinitiesAreEqualAndNeitherIsLess)
{
    Date first(KindPositiveInfinity);
    Date second = first + DateDuration(10);
    EXPECT_TRUE(first == second);
    EXPECT_FALSE(first < second);
    EXPECT_FALSE(second < first);
    EXPECT_FALSE(first == Date(1970, 1, 1));
}

TEST(DateTest, GetYearMonthDayWithANullReferenceIsFatal)
{
    const Date date(2024, 2, 29);
    std::int32_t year = 0, month = 0, day = 0;
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<std::int32_t>(
                             [&](std::int32_t& none) { date.GetYearMonthDay(none, month, day); }),
                         L"Date: year NULL reference.");
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<std::int32_t>(
                             [&](std::int32_t& none) { date.GetYearMonthDay(year, none, day); }),
                         L"Date: month NULL reference.");
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<std::int32_t>(
                             [&](std::int32_t& none) { date.GetYearMonthDay(year, month, none); }),
                         L"Date: day NULL reference.");
}

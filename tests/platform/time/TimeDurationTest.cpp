// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/time/TimeDuration.h>
#include <KivTest/FatalMessage.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

using namespace KivPlr;

namespace {

constexpr std::int64_t Hour = 3600000000000LL;
constexpr std::int64_t Minute = 60000000000LL;
constexpr std::int64_t Second = 1000000000LL;
constexpr std::int64_t Int64Max = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t Int64Min = std::numeric_limits<std::int64_t>::min();

// What a 64-bit register holds after the product wraps around.
std::int64_t WrappedProduct(std::uint64_t left, std::uint64_t right)
{
    return static_cast<std::int64_t>(left * right);
}

TimeDuration Rounded(std::int64_t nanoseconds, void (TimeDuration::*round)(int), int mode)
{
    TimeDuration duration = TimeDuration::Nanoseconds(nanoseconds);
    (duration.*round)(mode);
    return duration;
}

} // namespace

TEST(TimeDurationTest, DefaultIsNotAValueWithZeroNanoseconds)
{
    TimeDuration duration;
    EXPECT_EQ(duration.GetKind(), KindNotAValue);
    EXPECT_EQ(duration.GetTotalNanoseconds(), 0);
    EXPECT_TRUE(duration.IsSpecial());
}

TEST(TimeDurationTest, KindConstructorGivesThatKindWithZeroNanoseconds)
{
    for (ValueKind kind : {KindFinite, KindPositiveInfinity, KindNegativeInfinity, KindNotAValue}) {
        TimeDuration duration(kind);
        EXPECT_EQ(duration.GetKind(), kind);
        EXPECT_EQ(duration.GetTotalNanoseconds(), 0);
    }
}

TEST(TimeDurationTest, DefaultEqualsOnlyAnotherNotAValue)
{
    EXPECT_TRUE(TimeDuration() == TimeDuration());
    EXPECT_TRUE(TimeDuration() == TimeDuration(KindNotAValue));
    EXPECT_FALSE(TimeDuration() == TimeDuration::Nanoseconds(0));
    EXPECT_FALSE(TimeDuration() == TimeDuration(KindFinite));
    EXPECT_FALSE(TimeDuration() == TimeDuration(KindPositiveInfinity));
    EXPECT_FALSE(TimeDuration() == TimeDuration(KindNegativeInfinity));
    EXPECT_TRUE(TimeDuration() != TimeDuration::Nanoseconds(0));
}

TEST(TimeDurationTest, ComponentsAddUpToNanoseconds)
{
    TimeDuration duration(1, 2, 3, 4);
    EXPECT_EQ(duration.GetKind(), KindFinite);
    EXPECT_EQ(duration.GetTotalNanoseconds(), Hour + 2 * Minute + 3 * Second + 4);
}

TEST(TimeDurationTest, NegativeHoursCarryTheSignOfTheWhole)
{
    EXPECT_EQ(TimeDuration(-2, 15, 0, 0).GetTotalNanoseconds(), -(2 * Hour + 15 * Minute));
    EXPECT_EQ(TimeDuration(-1, 30, 0, 0).GetTotalNanoseconds(), -(Hour + 30 * Minute));
    EXPECT_EQ(TimeDuration(-1, 2, 3, 4).GetTotalNanoseconds(), -(Hour + 2 * Minute + 3 * Second + 4));
}

TEST(TimeDurationTest, NegativeMinutesCarryTheSignWhenHoursAreZero)
{
    EXPECT_EQ(TimeDuration(0, -5, 10, 0).GetTotalNanoseconds(), -(5 * Minute + 10 * Second));
}

TEST(TimeDurationTest, NegativeSecondsCarryTheSignWhenHoursAndMinutesAreZero)
{
    EXPECT_EQ(TimeDuration(0, 0, -1, 5).GetTotalNanoseconds(), -(Second + 5));
}

TEST(TimeDurationTest, NegativeNanosecondsAloneAreAllowed)
{
    TimeDuration duration(0, 0, 0, -5);
    EXPECT_EQ(duration.GetTotalNanoseconds(), -5);
    EXPECT_TRUE(duration.IsNegative());
}

TEST(TimeDurationTest, NegativeComponentAfterANonZeroOneEndsTheProcess)
{
    EXPECT_FATAL_MESSAGE(TimeDuration(1, -1, 0, 0), L"invalid parameter, signs are not consistent");
    EXPECT_FATAL_MESSAGE(TimeDuration(1, 0, -1, 0), L"invalid parameter, signs are not consistent");
    EXPECT_FATAL_MESSAGE(TimeDuration(-1, 0, 0, -1), L"invalid parameter, signs are not consistent");
    EXPECT_FATAL_MESSAGE(TimeDuration(0, 1, -1, 0), L"invalid parameter, signs are not consistent");
    EXPECT_FATAL_MESSAGE(TimeDuration(0, -1, 0, -1), L"invalid parameter, signs are not consistent");
    EXPECT_FATAL_MESSAGE(TimeDuration(0, 0, 1, -1), L"invalid parameter, signs are not consistent");
}

TEST(TimeDurationTest, HoursAreMultipliedInSixtyFourBits)
{
    // 100 000 h overflows 32 bits by far once in nanoseconds.
    EXPECT_EQ(TimeDuration(100000, 0, 0, 0).GetTotalNanoseconds(), 100000 * Hour);
    EXPECT_EQ(TimeDuration(2562047, 0, 0, 0).GetTotalNanoseconds(), 2562047 * Hour);
    EXPECT_EQ(TimeDuration(0, 100000000, 0, 0).GetTotalNanoseconds(), 100000000 * Minute);
    EXPECT_EQ(TimeDuration(0, 0, 9000000000LL, 0).GetTotalNanoseconds(), 9000000000LL * Second);
}

TEST(TimeDurationTest, ProductsBeyondSixtyFourBitsWrapAround)
{
    EXPECT_EQ(TimeDuration(2562048, 0, 0, 0).GetTotalNanoseconds(), WrappedProduct(2562048, Hour));
    EXPECT_EQ(TimeDuration(std::numeric_limits<std::int32_t>::max(), 0, 0, 0).GetTotalNanoseconds(),
              WrappedProduct(std::numeric_limits<std::int32_t>::max(), Hour));
}

TEST(TimeDurationTest, AccessorsSplitThePositiveCount)
{
    TimeDuration duration(26, 2, 3, 4005);
    EXPECT_EQ(duration.GetHours(), 26);
    EXPECT_EQ(duration.GetMinutes(), 2);
    EXPECT_EQ(duration.GetSeconds(), 3);
    EXPECT_EQ(duration.GetTotalSeconds(), 26 * 3600 + 2 * 60 + 3);
    EXPECT_EQ(duration.GetFraction(), 4005);
    EXPECT_EQ(duration.GetTotalMicroseconds(), (26 * 3600 + 2 * 60 + 3) * 1000000LL + 4);
    EXPECT_EQ(duration.GetTotalNanoseconds(), 26 * Hour + 2 * Minute + 3 * Second + 4005);
}

TEST(TimeDurationTest, AccessorsTruncateNegativeCountsTowardZero)
{
    TimeDuration duration(-1, 2, 3, 4005);
    EXPECT_EQ(duration.GetHours(), -1);
    EXPECT_EQ(duration.GetMinutes(), -2);
    EXPECT_EQ(duration.GetSeconds(), -3);
    EXPECT_EQ(duration.GetTotalSeconds(), -3723);
    EXPECT_EQ(duration.GetFraction(), -4005);
    EXPECT_EQ(duration.GetTotalMicroseconds(), -3723000004LL);
}

TEST(TimeDurationTest, PredicatesReadKindAndSign)
{
    EXPECT_FALSE(TimeDuration::Nanoseconds(1).IsSpecial());
    EXPECT_TRUE(TimeDuration(KindPositiveInfinity).IsPositiveInfinity());
    EXPECT_FALSE(TimeDuration(KindPositiveInfinity).IsNegativeInfinity());
    EXPECT_TRUE(TimeDuration(KindNegativeInfinity).IsNegativeInfinity());
    EXPECT_FALSE(TimeDuration(KindNegativeInfinity).IsPositiveInfinity());
    EXPECT_TRUE(TimeDuration::Nanoseconds(-1).IsNegative());
    EXPECT_FALSE(TimeDuration::Nanoseconds(0).IsNegative());
    // The sign bit of the count, whatever the kind.
    EXPECT_FALSE(TimeDuration(KindNegativeInfinity).IsNegative());
}

TEST(TimeDurationTest, SumAndDifferenceTakeTheLeftOperandsKind)
{
    TimeDuration finite = TimeDuration::Nanoseconds(5);
    TimeDuration infinite(KindPositiveInfinity);
    EXPECT_EQ((finite + TimeDuration::Nanoseconds(7)).GetTotalNanoseconds(), 12);
    EXPECT_EQ((finite - TimeDuration::Nanoseconds(7)).GetTotalNanoseconds(), -2);
    EXPECT_EQ((infinite + finite).GetKind(), KindPositiveInfinity);
    EXPECT_EQ((finite + infinite).GetKind(), KindFinite);
    EXPECT_EQ((finite + infinite).GetTotalNanoseconds(), 5);
    EXPECT_EQ((TimeDuration() - finite).GetKind(), KindNotAValue);
}

TEST(TimeDurationTest, SumAndDifferenceWrapAroundAtSixtyFourBits)
{
    EXPECT_EQ((TimeDuration::Nanoseconds(Int64Max) + TimeDuration::Nanoseconds(1)).GetTotalNanoseconds(), Int64Min);
    EXPECT_EQ((TimeDuration::Nanoseconds(Int64Min) - TimeDuration::Nanoseconds(1)).GetTotalNanoseconds(), Int64Max);
}

TEST(TimeDurationTest, InPlaceSubtractionKeepsTheKind)
{
    TimeDuration duration(KindNegativeInfinity);
    duration -= TimeDuration::Nanoseconds(3);
    EXPECT_EQ(duration.GetKind(), KindNegativeInfinity);
    EXPECT_EQ(duration.GetTotalNanoseconds(), -3);
    TimeDuration finite = TimeDuration::Nanoseconds(10);
    finite -= TimeDuration::Nanoseconds(4);
    EXPECT_EQ(finite, TimeDuration::Nanoseconds(6));
}

TEST(TimeDurationTest, DivisionByMinusOneNegates)
{
    EXPECT_EQ((TimeDuration(1, 0, 0, 0) / -1).GetTotalNanoseconds(), -Hour);
    EXPECT_EQ((TimeDuration::Nanoseconds(-7) / -1).GetTotalNanoseconds(), 7);
    // The most negative count has no positive counterpart and stays.
    EXPECT_EQ((TimeDuration::Nanoseconds(Int64Min) / -1).GetTotalNanoseconds(), Int64Min);
}

TEST(TimeDurationTest, DivisionTruncatesAndKeepsTheKind)
{
    EXPECT_EQ((TimeDuration::Nanoseconds(7) / 2).GetTotalNanoseconds(), 3);
    EXPECT_EQ((TimeDuration::Nanoseconds(-7) / 2).GetTotalNanoseconds(), -3);
    EXPECT_EQ((TimeDuration(KindPositiveInfinity) / 2).GetKind(), KindPositiveInfinity);
}

TEST(TimeDurationTest, DivisionByZeroGivesNotAValue)
{
    TimeDuration result = TimeDuration::Nanoseconds(7) / 0;
    EXPECT_EQ(result.GetKind(), KindNotAValue);
    EXPECT_EQ(result, TimeDuration());
}

TEST(TimeDurationTest, MultiplicationWrapsAndKeepsTheKind)
{
    EXPECT_EQ((TimeDuration::Nanoseconds(7) * -3).GetTotalNanoseconds(), -21);
    EXPECT_EQ((TimeDuration::Nanoseconds(Int64Max) * 2).GetTotalNanoseconds(), -2);
    EXPECT_EQ((TimeDuration(KindNegativeInfinity) * 5).GetKind(), KindNegativeInfinity);
}

TEST(TimeDurationTest, NegativeInfinityIsLessThanPositiveInfinity)
{
    TimeDuration negative(KindNegativeInfinity);
    TimeDuration positive(KindPositiveInfinity);
    EXPECT_TRUE(negative < positive);
    EXPECT_FALSE(positive < negative);
    EXPECT_TRUE(positive > negative);
    EXPECT_TRUE(negative <= positive);
    EXPECT_FALSE(negative >= positive);
}

TEST(TimeDurationTest, TwoPositiveInfinitiesAreEqualAndNeitherIsLess)
{
    TimeDuration first(KindPositiveInfinity);
    TimeDuration second = first + TimeDuration::Nanoseconds(99);
    EXPECT_TRUE(first == second);
    EXPECT_FALSE(first < second);
    EXPECT_FALSE(second < first);
    EXPECT_TRUE(first <= second);
    EXPECT_TRUE(first >= second);
}

TEST(TimeDurationTest, TwoNegativeInfinitiesAreEqualAndNeitherIsLess)
{
    TimeDuration first(KindNegativeInfinity);
    TimeDuration second(KindNegativeInfinity);
    EXPECT_TRUE(first == second);
    EXPECT_FALSE(first < second);
    EXPECT_FALSE(first > second);
}

TEST(TimeDurationTest, InfinitiesBoundEveryFiniteValue)
{
    for (std::int64_t count : {Int64Min, std::int64_t{-1}, std::int64_t{0}, std::int64_t{1}, Int64Max}) {
        TimeDuration finite = TimeDuration::Nanoseconds(count);
        EXPECT_TRUE(TimeDuration(KindNegativeInfinity) < finite) << count;
        EXPECT_TRUE(finite < TimeDuration(KindPositiveInfinity)) << count;
        EXPECT_TRUE(finite > TimeDuration(KindNegativeInfinity)) << count;
        EXPECT_FALSE(TimeDuration(KindPositiveInfinity) < finite) << count;
        EXPECT_FALSE(finite < TimeDuration(KindNegativeInfinity)) << count;
    }
}

TEST(TimeDurationTest, FiniteValuesCompareBySignedCount)
{
    EXPECT_TRUE(TimeDuration::Nanoseconds(-5) < TimeDuration::Nanoseconds(3));
    EXPECT_FALSE(TimeDuration::Nanoseconds(3) < TimeDuration::Nanoseconds(3));
    EXPECT_TRUE(TimeDuration::Nanoseconds(3) <= TimeDuration::Nanoseconds(3));
    EXPECT_TRUE(TimeDuration(0, 0, 1, 0) > TimeDuration(0, 0, 0, 999999999));
    EXPECT_TRUE(TimeDuration(0, 0, 1, 0) == TimeDuration(0, 0, 0, 1000000000));
}

TEST(TimeDurationTest, NotAValueIsOrderedOnlyAgainstInfinities)
{
    TimeDuration notAValue;
    TimeDuration zero = TimeDuration::Nanoseconds(0);
    EXPECT_FALSE(notAValue < zero);
    EXPECT_FALSE(zero < notAValue);
    EXPECT_FALSE(notAValue <= zero);
    EXPECT_FALSE(notAValue >= zero);
    EXPECT_FALSE(notAValue < notAValue);
    EXPECT_TRUE(notAValue <= notAValue);
    EXPECT_TRUE(notAValue < TimeDuration(KindPositiveInfinity));
    EXPECT_TRUE(TimeDuration(KindNegativeInfinity) < notAValue);
}

TEST(TimeDurationTest, RoundUpToMicrosecondsRaisesAnyRemainder)
{
    EXPECT_EQ(Rounded(1001, &TimeDuration::RoundToMicroseconds, TimeDuration::RoundUp).GetTotalNanoseconds(), 2000);
    EXPECT_EQ(Rounded(1000, &TimeDuration::RoundToMicroseconds, TimeDuration::RoundUp).GetTotalNanoseconds(), 1000);
    EXPECT_EQ(Rounded(0, &TimeDuration::RoundToMicroseconds, TimeDuration::RoundUp).GetTotalNanoseconds(), 0);
}

TEST(TimeDurationTest, RoundHalfUpToMicrosecondsRaisesFromHalfTheUnit)
{
    EXPECT_EQ(Rounded(1499, &TimeDuration::RoundToMicroseconds, TimeDuration::RoundHalfUp).GetTotalNanoseconds(),
              1000);
    EXPECT_EQ(Rounded(1500, &TimeDuration::RoundToMicroseconds, TimeDuration::RoundHalfUp).GetTotalNanoseconds(),
              2000);
}

TEST(TimeDurationTest, OtherModesTruncate)
{
    for (int mode : {TimeDuration::RoundTruncate, 3, -1, 100}) {
        EXPECT_EQ(Rounded(1999, &TimeDuration::RoundToMicroseconds, mode).GetTotalNanoseconds(), 1000) << mode;
        EXPECT_EQ(Rounded(2 * Second - 1, &TimeDuration::RoundToSeconds, mode).GetTotalNanoseconds(), Second)
            << mode;
    }
}

TEST(TimeDurationTest, RoundToSecondsUsesTheHalfSecond)
{
    EXPECT_EQ(Rounded(Second + 1, &TimeDuration::RoundToSeconds, TimeDuration::RoundUp).GetTotalNanoseconds(),
              2 * Second);
    EXPECT_EQ(Rounded(Second + 499999999, &TimeDuration::RoundToSeconds, TimeDuration::RoundHalfUp)
                  .GetTotalNanoseconds(),
              Second);
    EXPECT_EQ(Rounded(Second + 500000000, &TimeDuration::RoundToSeconds, TimeDuration::RoundHalfUp)
                  .GetTotalNanoseconds(),
              2 * Second);
}

TEST(TimeDurationTest, RoundToMinutesUsesTheHalfMinute)
{
    EXPECT_EQ(Rounded(Minute + 1, &TimeDuration::RoundToMinutes, TimeDuration::RoundUp).GetTotalNanoseconds(),
              2 * Minute);
    EXPECT_EQ(Rounded(Minute + 30 * Second - 1, &TimeDuration::RoundToMinutes, TimeDuration::RoundHalfUp)
                  .GetTotalNanoseconds(),
              Minute);
    EXPECT_EQ(Rounded(Minute + 30 * Second, &TimeDuration::RoundToMinutes, TimeDuration::RoundHalfUp)
                  .GetTotalNanoseconds(),
              2 * Minute);
}

TEST(TimeDurationTest, RoundToHoursUsesTheHalfHour)
{
    EXPECT_EQ(Rounded(Hour + 1, &TimeDuration::RoundToHours, TimeDuration::RoundUp).GetTotalNanoseconds(), 2 * Hour);
    EXPECT_EQ(
        Rounded(Hour + 30 * Minute - 1, &TimeDuration::RoundToHours, TimeDuration::RoundHalfUp).GetTotalNanoseconds(),
        Hour);
    EXPECT_EQ(
        Rounded(Hour + 30 * Minute, &TimeDuration::RoundToHours, TimeDuration::RoundHalfUp).GetTotalNanoseconds(),
        2 * Hour);
}

TEST(TimeDurationTest, RoundingNegativeCountsUsesTheTruncatedRemainder)
{
    // -1.5 us: quotient -1, remainder -500.
    EXPECT_EQ(Rounded(-1500, &TimeDuration::RoundToMicroseconds, TimeDuration::RoundUp).GetTotalNanoseconds(), 0);
    EXPECT_EQ(Rounded(-1500, &TimeDuration::RoundToMicroseconds, TimeDuration::RoundHalfUp).GetTotalNanoseconds(),
              -1000);
    EXPECT_EQ(Rounded(-1500, &TimeDuration::RoundToMicroseconds, TimeDuration::RoundTruncate).GetTotalNanoseconds(),
              -1000);
}

TEST(TimeDurationTest, RoundingKeepsTheKind)
{
    TimeDuration infinite(KindPositiveInfinity);
    infinite.RoundToSeconds(TimeDuration::RoundUp);
    EXPECT_EQ(infinite.GetKind(), KindPositiveInfinity);
    TimeDuration notAValue;
    notAValue.RoundToHours(TimeDuration::RoundHalfUp);
    EXPECT_EQ(notAValue.GetKind(), KindNotAValue);
}

TEST(TimeDurationTest, RoundingTheLargestCountWrapsInsteadOfOverflowing)
{
    TimeDuration largest = TimeDuration::Nanoseconds(Int64Max);
    largest.RoundToHours(TimeDuration::RoundUp);
    EXPECT_EQ(largest.GetTotalNanoseconds(), WrappedProduct(Int64Max / Hour + 1, Hour));
}

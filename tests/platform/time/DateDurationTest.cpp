// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/time/DateDuration.h>

#include <cstdint>
#include <gtest/gtest.h>

using namespace KivPlr;

TEST(DateDurationTest, DayCountConstructorGivesAFiniteSpan)
{
    DateDuration span(-12);
    EXPECT_EQ(span.GetKind(), KindFinite);
    EXPECT_EQ(span.GetDays(), -12);
}

TEST(DateDurationTest, KindConstructorGivesThatKindWithZeroDays)
{
    DateDuration infinite(KindPositiveInfinity);
    EXPECT_EQ(infinite.GetKind(), KindPositiveInfinity);
    EXPECT_EQ(infinite.GetDays(), 0);
}

TEST(DateDurationTest, FiniteSpansCompareByDays)
{
    EXPECT_TRUE(DateDuration(3) == DateDuration(3));
    EXPECT_TRUE(DateDuration(3) != DateDuration(4));
    EXPECT_TRUE(DateDuration(-4) < DateDuration(3));
    EXPECT_TRUE(DateDuration(3) > DateDuration(-4));
    EXPECT_TRUE(DateDuration(3) <= DateDuration(3));
    EXPECT_FALSE(DateDuration(3) < DateDuration(3));
}

TEST(DateDurationTest, FiniteSpanOfZeroDiffersFromSpecialKinds)
{
    EXPECT_FALSE(DateDuration(0) == DateDuration(KindPositiveInfinity));
    EXPECT_FALSE(DateDuration(0) == DateDuration(KindNegativeInfinity));
}

TEST(DateDurationTest, NegativeInfinityIsLessThanPositiveInfinity)
{
    EXPECT_TRUE(DateDuration(KindNegativeInfinity) < DateDuration(KindPositiveInfinity));
    EXPECT_FALSE(DateDuration(KindPositiveInfinity) < DateDuration(KindNegativeInfinity));
}

TEST(DateDurationTest, TwoPositiveInfinitiesAreEqualAndNeitherIsLess)
{
    DateDuration first(KindPositiveInfinity);
    DateDuration second(KindPositiveInfinity);
    EXPECT_TRUE(first == second);
    EXPECT_FALSE(first < second);
    EXPECT_FALSE(second < first);
}

TEST(DateDurationTest, InfinitiesBoundEveryFiniteSpan)
{
    for (std::int32_t days : {-2147483647 - 1, -1, 0, 1, 2147483647}) {
        EXPECT_TRUE(DateDuration(KindNegativeInfinity) < DateDuration(days)) << days;
        EXPECT_TRUE(DateDuration(days) < DateDuration(KindPositiveInfinity)) << days;
        EXPECT_FALSE(DateDuration(days) < DateDuration(KindNegativeInfinity)) << days;
        EXPECT_FALSE(DateDuration(KindPositiveInfinity) < DateDuration(days)) << days;
    }
}

// SPDX-License-Identifier: Apache-2.0
// The answer limiter with the time given explicitly: per-source and total
// token buckets, refill, and the bounded source table.
#include <KivWsd/ReplyLimiter.h>

#include <KivWsd/WsdLimits.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using KivWsd::ReplyLimiter;
using KivWsd::WsdLimits;

constexpr std::uint64_t Second = 1000000000ULL;
constexpr std::uint64_t Start = 1000 * Second;

std::string Source(std::size_t index)
{
    return "192.0.2." + std::to_string(index % 250) + "/" + std::to_string(index);
}

unsigned AllowedOf(ReplyLimiter& limiter, const std::string& source, unsigned attempts, std::uint64_t now)
{
    unsigned allowed = 0;
    for (unsigned attempt = 0; attempt < attempts; ++attempt)
        allowed += limiter.Allow(source, now) ? 1 : 0;
    return allowed;
}

TEST(ReplyLimiterTest, OneSourceGetsItsBurstAtOnceAndNoMore)
{
    ReplyLimiter limiter;
    EXPECT_EQ(AllowedOf(limiter, "192.0.2.9", 10, Start), WsdLimits::PerSourceBurst);
}

TEST(ReplyLimiterTest, OneSourceGetsOneMoreAnswerAfterAQuarterSecond)
{
    ReplyLimiter limiter;
    AllowedOf(limiter, "192.0.2.9", 10, Start);
    EXPECT_FALSE(limiter.Allow("192.0.2.9", Start + Second / 4 - 1));
    EXPECT_TRUE(limiter.Allow("192.0.2.9", Start + Second / 4));
    EXPECT_FALSE(limiter.Allow("192.0.2.9", Start + Second / 4));
}

TEST(ReplyLimiterTest, OneSourceGetsFourAnswersPerSecondInTheLongRun)
{
    ReplyLimiter limiter;
    unsigned allowed = 0;
    // 100 attempts per second for 10 s.
    for (std::uint64_t tick = 0; tick < 1000; ++tick)
        allowed += limiter.Allow("192.0.2.9", Start + tick * Second / 100) ? 1 : 0;
    EXPECT_EQ(allowed, WsdLimits::PerSourceBurst + 10 * WsdLimits::PerSourceAnswersPerSecond - 1);
}

TEST(ReplyLimiterTest, LongPauseRefillsNoMoreThanTheBurst)
{
    ReplyLimiter limiter;
    AllowedOf(limiter, "192.0.2.9", 10, Start);
    EXPECT_EQ(AllowedOf(limiter, "192.0.2.9", 10, Start + 1000000 * Second), WsdLimits::PerSourceBurst);
}

TEST(ReplyLimiterTest, ExhaustedSourceDoesNotLimitAnotherSource)
{
    ReplyLimiter limiter;
    AllowedOf(limiter, "192.0.2.9", 10, Start);
    EXPECT_TRUE(limiter.Allow("192.0.2.10", Start));
}

TEST(ReplyLimiterTest, AllSourcesTogetherGetTheTotalBurstAtOnce)
{
    ReplyLimiter limiter;
    unsigned allowed = 0;
    for (std::size_t index = 0; index < 100; ++index)
        allowed += AllowedOf(limiter, Source(index), 4, Start);
    EXPECT_EQ(allowed, WsdLimits::TotalBurst);
}

TEST(ReplyLimiterTest, AllSourcesTogetherGetFortyPerSecondInTheLongRun)
{
    ReplyLimiter limiter;
    unsigned allowed = 0;
    // A new source every millisecond for 5 s, as a spoofing flood would.
    for (std::uint64_t tick = 0; tick < 5000; ++tick)
        allowed += limiter.Allow(Source(tick), Start + tick * Second / 1000) ? 1 : 0;
    EXPECT_LE(allowed, WsdLimits::TotalBurst + 5 * WsdLimits::TotalAnswersPerSecond);
    EXPECT_GE(allowed, WsdLimits::TotalBurst + 5 * WsdLimits::TotalAnswersPerSecond - 1);
}

TEST(ReplyLimiterTest, RefusedAttemptTakesNoToken)
{
    ReplyLimiter limiter;
    // The total runs dry while this source still has tokens.
    for (std::size_t index = 0; index < WsdLimits::TotalBurst; ++index)
        limiter.Allow(Source(index), Start);
    EXPECT_FALSE(limiter.Allow("192.0.2.9", Start));
    EXPECT_FALSE(limiter.Allow("192.0.2.9", Start));
    // A quarter second gives the total one token and the source loses none.
    EXPECT_TRUE(limiter.Allow("192.0.2.9", Start + Second));
    EXPECT_EQ(AllowedOf(limiter, "192.0.2.9", 10, Start + Second), WsdLimits::PerSourceBurst - 1);
}

TEST(ReplyLimiterTest, SourceTableNeverHoldsMoreThanItsBound)
{
    ReplyLimiter limiter;
    for (std::size_t index = 0; index < 3 * WsdLimits::MaximumTrackedSources; ++index)
        limiter.Allow(Source(index), Start + index);
    EXPECT_EQ(limiter.TrackedSources(), WsdLimits::MaximumTrackedSources);
}

TEST(ReplyLimiterTest, LeastRecentlySeenSourceIsForgottenFirst)
{
    ReplyLimiter limiter;
    AllowedOf(limiter, "old", 10, Start);
    AllowedOf(limiter, "kept", 10, Start);
    // Refused attempts are tracked too: the table fills up at once.
    for (std::size_t index = 0; index + 2 < WsdLimits::MaximumTrackedSources; ++index)
        limiter.Allow(Source(index), Start);
    limiter.Allow("kept", Start);
    limiter.Allow("newcomer", Start);
    EXPECT_EQ(limiter.TrackedSources(), WsdLimits::MaximumTrackedSources);
    // A quarter second later "kept" has earned one answer; "old" was
    // forgotten and comes back with a full bucket.
    std::uint64_t later = Start + Second / 4;
    EXPECT_EQ(AllowedOf(limiter, "kept", 10, later), 1u);
    EXPECT_EQ(AllowedOf(limiter, "old", 10, later), WsdLimits::PerSourceBurst);
}

TEST(ReplyLimiterTest, TimeGoingBackwardsRefillsNothing)
{
    ReplyLimiter limiter;
    AllowedOf(limiter, "192.0.2.9", 10, Start);
    EXPECT_FALSE(limiter.Allow("192.0.2.9", Start - 10 * Second));
    EXPECT_FALSE(limiter.Allow("192.0.2.9", Start));
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// The message ID memory with the time given explicitly.
#include <KivWsd/MessageIdCache.h>

#include <KivWsd/WsdLimits.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using KivWsd::MessageIdCache;
using KivWsd::WsdLimits;

constexpr std::uint64_t Second = 1000000000ULL;
constexpr std::uint64_t Start = 1000 * Second;

std::string Id(std::size_t index)
{
    return "urn:uuid:" + std::to_string(index);
}

TEST(MessageIdCacheTest, FirstSightingIsFirstTime)
{
    MessageIdCache cache;
    EXPECT_TRUE(cache.FirstTime(Id(1), Start));
    EXPECT_TRUE(cache.FirstTime(Id(2), Start));
}

TEST(MessageIdCacheTest, RepeatWithinTheLifetimeIsNotFirstTime)
{
    MessageIdCache cache;
    cache.FirstTime(Id(1), Start);
    EXPECT_FALSE(cache.FirstTime(Id(1), Start));
    EXPECT_FALSE(cache.FirstTime(Id(1), Start + WsdLimits::MessageIdLifetimeSeconds * Second - 1));
}

TEST(MessageIdCacheTest, RepeatDoesNotExtendTheLifetime)
{
    MessageIdCache cache;
    cache.FirstTime(Id(1), Start);
    cache.FirstTime(Id(1), Start + 30 * Second);
    EXPECT_TRUE(cache.FirstTime(Id(1), Start + WsdLimits::MessageIdLifetimeSeconds * Second));
}

TEST(MessageIdCacheTest, RepeatAfterTheLifetimeIsFirstTimeAgain)
{
    MessageIdCache cache;
    cache.FirstTime(Id(1), Start);
    EXPECT_TRUE(cache.FirstTime(Id(1), Start + WsdLimits::MessageIdLifetimeSeconds * Second));
}

TEST(MessageIdCacheTest, OldestIdIsForgottenWhenTheMemoryIsFull)
{
    MessageIdCache cache;
    for (std::size_t index = 0; index <= WsdLimits::RememberedMessageIds; ++index)
        cache.FirstTime(Id(index), Start);
    EXPECT_EQ(cache.Size(), WsdLimits::RememberedMessageIds);
    EXPECT_FALSE(cache.FirstTime(Id(WsdLimits::RememberedMessageIds), Start));
    EXPECT_TRUE(cache.FirstTime(Id(0), Start));
}

TEST(MessageIdCacheTest, MemoryStaysBoundedUnderAFloodOfNewIds)
{
    MessageIdCache cache;
    for (std::size_t index = 0; index < 100000; ++index)
        cache.FirstTime(Id(index), Start + index);
    EXPECT_EQ(cache.Size(), WsdLimits::RememberedMessageIds);
}

TEST(MessageIdCacheTest, ExpiredIdsAreDropped)
{
    MessageIdCache cache;
    for (std::size_t index = 0; index < 10; ++index)
        cache.FirstTime(Id(index), Start);
    cache.FirstTime(Id(100), Start + WsdLimits::MessageIdLifetimeSeconds * Second);
    EXPECT_EQ(cache.Size(), 1u);
}

TEST(MessageIdCacheTest, TimeGoingBackwardsKeepsIdsRemembered)
{
    MessageIdCache cache;
    cache.FirstTime(Id(1), Start);
    EXPECT_FALSE(cache.FirstTime(Id(1), 0));
}

} // namespace

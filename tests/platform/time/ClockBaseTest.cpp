// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/time/ClockBase.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

using namespace KivPlr;

namespace {

// A stopwatch whose elapsed nanoseconds the test sets; counts the reads.
class SetClock : public ClockBase
{
public:
    explicit SetClock(std::int64_t elapsed) : elapsed(elapsed) {}
    std::int64_t GetElapsedNanoseconds() override
    {
        ++reads;
        return elapsed;
    }
    std::int64_t elapsed;
    int reads = 0;
};

} // namespace

TEST(ClockBaseTest, CoarserUnitsTruncateTheNanoseconds)
{
    SmartPtr<SetClock> clock(new SetClock(3999999999LL));
    EXPECT_EQ(clock->GetElapsedMicroseconds(), 3999999);
    EXPECT_EQ(clock->GetElapsedMilliseconds(), 3999);
    EXPECT_EQ(clock->GetElapsedSeconds(), 3);
}

TEST(ClockBaseTest, NegativeElapsedTimesTruncateTowardZero)
{
    SmartPtr<SetClock> clock(new SetClock(-1999999));
    EXPECT_EQ(clock->GetElapsedMicroseconds(), -1999);
    EXPECT_EQ(clock->GetElapsedMilliseconds(), -1);
    EXPECT_EQ(clock->GetElapsedSeconds(), 0);
}

TEST(ClockBaseTest, ElapsedTimeIsAFiniteDurationToTheNanosecond)
{
    SmartPtr<SetClock> clock(new SetClock(90000000001LL));
    TimeDuration elapsed = clock->GetElapsedTime();
    EXPECT_EQ(elapsed.GetKind(), KindFinite);
    EXPECT_EQ(elapsed.GetTotalNanoseconds(), 90000000001LL);
    EXPECT_EQ(elapsed.GetMinutes(), 1);
    EXPECT_EQ(elapsed.GetSeconds(), 30);
}

TEST(ClockBaseTest, EveryCoarserOperationReadsTheClockOnce)
{
    SetClock* clock = new SetClock(5);
    SmartPtr<IClock> owner(clock);
    owner->GetElapsedMicroseconds();
    owner->GetElapsedMilliseconds();
    owner->GetElapsedSeconds();
    owner->GetElapsedTime();
    EXPECT_EQ(clock->reads, 4);
}

TEST(ClockBaseTest, LargestElapsedTimeConvertsWithoutOverflow)
{
    SmartPtr<SetClock> clock(new SetClock(std::numeric_limits<std::int64_t>::max()));
    EXPECT_EQ(clock->GetElapsedSeconds(), std::numeric_limits<std::int64_t>::max() / 1000000000);
    EXPECT_EQ(clock->GetElapsedMilliseconds(), std::numeric_limits<std::int64_t>::max() / 1000000);
}

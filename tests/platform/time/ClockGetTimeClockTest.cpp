// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/Object.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/ILock.h>
#include <KivPlr/time/ClockGetTimeClock.h>
#include <KivPlr/time/PosixCurrentTimespec.h>
#include <KivTest/FakeTimespecProvider.h>
#include <KivTest/FatalMessage.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <ctime>

using namespace KivPlr;
using KivTest::FakeTimespecProvider;

namespace {

// A lock that is never taken: the clock only keeps it.
class IdleLock : private Object, public ILock
{
public:
    void Lock() override {}
    bool TryLock() override { return true; }
    void Unlock() override {}
    void NotifyOne(_Result& result) override { result = ResultPass; }
    void NotifyAll(_Result& result) override { result = ResultPass; }
    void Wait(_Result& result) override { result = ResultPass; }
    void Wait(std::uint32_t, _Result& result) override { result = ResultPass; }
};

struct FakeClock
{
    FakeTimespecProvider* fake;
    SmartPtr<IClock> clock;
};

FakeClock StartedAt(time_t seconds, long nanoseconds)
{
    FakeTimespecProvider* fake = new FakeTimespecProvider(seconds, nanoseconds);
    SmartPtr<IPosixTimespecProvider> provider(fake);
    return FakeClock{fake, SmartPtr<IClock>(new ClockGetTimeClock(new IdleLock, provider))};
}

} // namespace

TEST(ClockGetTimeClockTest, NewClockHasCountZeroAndHoldsItsLockAndProvider)
{
    SmartPtr<ILock> lock(new IdleLock);
    SmartPtr<IPosixTimespecProvider> provider(new FakeTimespecProvider);
    ClockGetTimeClock* clock = new ClockGetTimeClock(lock, provider);
    IClock* asInterface = clock;
    EXPECT_EQ(asInterface->GetReferenceCount(), 0u);
    EXPECT_EQ(lock->GetReferenceCount(), 2u);
    EXPECT_EQ(provider->GetReferenceCount(), 2u);
    EXPECT_EQ(clock->GetLock(), lock.Get());
    EXPECT_EQ(clock->GetProvider(), provider.Get());
    {
        SmartPtr<IClock> owner(clock);
    }
    EXPECT_EQ(lock->GetReferenceCount(), 1u);
    EXPECT_EQ(provider->GetReferenceCount(), 1u);
}

TEST(ClockGetTimeClockTest, StartTimeIsTakenAtCreation)
{
    FakeTimespecProvider* fake = new FakeTimespecProvider(42, 7);
    SmartPtr<IPosixTimespecProvider> provider(fake);
    ClockGetTimeClock* clock = new ClockGetTimeClock(new IdleLock, provider);
    SmartPtr<IClock> owner(clock);
    EXPECT_EQ(fake->reads, 1);
    fake->Set(50, 0);
    EXPECT_EQ(clock->GetStartTime().tv_sec, 42);
    EXPECT_EQ(clock->GetStartTime().tv_nsec, 7);
    EXPECT_EQ(fake->reads, 1);
}

TEST(ClockGetTimeClockTest, ElapsedIsZeroWhileTheTimeStandsStill)
{
    FakeClock started = StartedAt(1000, 500);
    EXPECT_EQ(started.clock->GetElapsedNanoseconds(), 0);
}

TEST(ClockGetTimeClockTest, ElapsedCombinesSecondsAndNanoseconds)
{
    FakeClock started = StartedAt(10, 100);
    started.fake->Set(12, 400);
    EXPECT_EQ(started.clock->GetElapsedNanoseconds(), 2000000300LL);
}

TEST(ClockGetTimeClockTest, NegativeNanosecondDifferenceIsAddedWithItsSign)
{
    FakeClock started = StartedAt(10, 900000000);
    started.fake->Set(12, 100000000);
    EXPECT_EQ(started.clock->GetElapsedNanoseconds(), 1200000000LL);
}

TEST(ClockGetTimeClockTest, SecondsDifferenceIsWidenedBeforeTheMultiplication)
{
    // 3000 s is 3e12 ns: far beyond 32 bits.
    FakeClock started = StartedAt(5, 0);
    started.fake->Set(3005, 1);
    EXPECT_EQ(started.clock->GetElapsedNanoseconds(), 3000000000001LL);
    // The whole span of a 32-bit time_t.
    FakeClock wide = StartedAt(-2147483647 - 1, 0);
    wide.fake->Set(2147483647, 0);
    EXPECT_EQ(wide.clock->GetElapsedNanoseconds(), 4294967295LL * 1000000000LL);
}

TEST(ClockGetTimeClockTest, TimeBeforeTheStartGivesANegativeElapsedTime)
{
    FakeClock started = StartedAt(10, 0);
    started.fake->Set(9, 500000000);
    EXPECT_EQ(started.clock->GetElapsedNanoseconds(), -500000000LL);
}

TEST(ClockGetTimeClockTest, CoarserUnitsComeFromTheElapsedNanoseconds)
{
    FakeClock started = StartedAt(100, 0);
    started.fake->Set(103, 999999999);
    EXPECT_EQ(started.clock->GetElapsedSeconds(), 3);
    EXPECT_EQ(started.clock->GetElapsedMilliseconds(), 3999);
    EXPECT_EQ(started.clock->GetElapsedMicroseconds(), 3999999);
    EXPECT_TRUE(started.clock->GetElapsedTime() == TimeDuration(0, 0, 3, 999999999));
}

TEST(ClockGetTimeClockTest, FailingReadCountsAsTheStartTime)
{
    FakeClock started = StartedAt(10, 0);
    started.fake->Set(20, 0);
    started.fake->Fail();
    EXPECT_EQ(started.clock->GetElapsedNanoseconds(), 0);
}

TEST(ClockGetTimeClockTest, EmptyProviderEndsTheProcessAtCreation)
{
    EXPECT_FATAL_MESSAGE(
        SmartPtr<IClock>(new ClockGetTimeClock(new IdleLock, SmartPtr<IPosixTimespecProvider>())),
        L"SmartPtr<T>-> NULL reference");
}

TEST(ClockGetTimeClockTest, MonotonicElapsedTimeNeverGoesBackwards)
{
    SmartPtr<IClock> clock(new ClockGetTimeClock(new IdleLock, new PosixCurrentTimespec(CLOCK_MONOTONIC)));
    std::int64_t previous = clock->GetElapsedNanoseconds();
    EXPECT_GE(previous, 0);
    for (int read = 0; read < 100000; ++read) {
        std::int64_t now = clock->GetElapsedNanoseconds();
        ASSERT_GE(now, previous) << "read " << read;
        previous = now;
    }
}

TEST(ClockGetTimeClockTest, MonotonicElapsedTimeLiesBetweenDirectReads)
{
    struct timespec before, after;
    ASSERT_EQ(clock_gettime(CLOCK_MONOTONIC, &before), 0);
    SmartPtr<IClock> clock(new ClockGetTimeClock(new IdleLock, new PosixCurrentTimespec(CLOCK_MONOTONIC)));
    struct timespec pause = {0, 2000000};
    nanosleep(&pause, nullptr);
    std::int64_t elapsed = clock->GetElapsedNanoseconds();
    ASSERT_EQ(clock_gettime(CLOCK_MONOTONIC, &after), 0);
    std::int64_t bound = (static_cast<std::int64_t>(after.tv_sec) - before.tv_sec) * 1000000000LL +
                         (after.tv_nsec - before.tv_nsec);
    EXPECT_GE(elapsed, 2000000);
    EXPECT_LE(elapsed, bound);
}

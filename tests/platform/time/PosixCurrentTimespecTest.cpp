// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/time/PosixCurrentTimespec.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <ctime>

using namespace KivPlr;

namespace {

std::int64_t ToNanoseconds(const struct timespec& time)
{
    return static_cast<std::int64_t>(time.tv_sec) * 1000000000 + time.tv_nsec;
}

void ExpectReadBetweenDirectReads(clockid_t clockId)
{
    SmartPtr<IPosixTimespecProvider> provider(new PosixCurrentTimespec(clockId));
    struct timespec before, now, after;
    ASSERT_EQ(clock_gettime(clockId, &before), 0);
    EXPECT_EQ(provider->GetCurrentTime(now), 0);
    ASSERT_EQ(clock_gettime(clockId, &after), 0);
    EXPECT_LE(ToNanoseconds(before), ToNanoseconds(now));
    EXPECT_LE(ToNanoseconds(now), ToNanoseconds(after));
}

} // namespace

TEST(PosixCurrentTimespecTest, NewProviderHasCountZero)
{
    PosixCurrentTimespec* provider = new PosixCurrentTimespec(CLOCK_REALTIME);
    IPosixTimespecProvider* asInterface = provider;
    EXPECT_EQ(asInterface->GetReferenceCount(), 0u);
    SmartPtr<IPosixTimespecProvider> owner(provider);
}

TEST(PosixCurrentTimespecTest, KeepsTheClockIdGivenAtConstruction)
{
    SmartPtr<PosixCurrentTimespec> realtime(new PosixCurrentTimespec(0));
    SmartPtr<PosixCurrentTimespec> monotonic(new PosixCurrentTimespec(1));
    EXPECT_EQ(realtime->GetClockId(), CLOCK_REALTIME);
    EXPECT_EQ(monotonic->GetClockId(), CLOCK_MONOTONIC);
}

TEST(PosixCurrentTimespecTest, RealtimeReadLiesBetweenTwoDirectReads)
{
    ExpectReadBetweenDirectReads(CLOCK_REALTIME);
}

TEST(PosixCurrentTimespecTest, MonotonicReadLiesBetweenTwoDirectReads)
{
    ExpectReadBetweenDirectReads(CLOCK_MONOTONIC);
}

TEST(PosixCurrentTimespecTest, UnknownClockPassesBackMinusOneAndLeavesTheTimeAlone)
{
    SmartPtr<IPosixTimespecProvider> provider(new PosixCurrentTimespec(static_cast<clockid_t>(12345)));
    struct timespec now = {7, 8};
    errno = 0;
    EXPECT_EQ(provider->GetCurrentTime(now), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(now.tv_sec, 7);
    EXPECT_EQ(now.tv_nsec, 8);
}

TEST(PosixCurrentTimespecTest, ANullNowReferenceIsFatal)
{
    SmartPtr<IPosixTimespecProvider> provider(new PosixCurrentTimespec(CLOCK_MONOTONIC));
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<struct timespec>(
                             [&](struct timespec& none) { provider->GetCurrentTime(none); }),
                         L"PosixCurrentTimespec: now NULL reference.");
}

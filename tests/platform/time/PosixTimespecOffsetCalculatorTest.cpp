// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/time/PosixCurrentTimespec.h>
#include <KivPlr/time/PosixTimespecOffsetCalculator.h>
#include <KivTest/ChildProcess.h>
#include <KivTest/FakeTimespecProvider.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <ctime>

using namespace KivPlr;
using KivTest::FakeTimespecProvider;

namespace {

struct timespec DeadlineAt(time_t seconds, long nanoseconds, std::uint32_t timeoutMilliseconds)
{
    FakeTimespecProvider* fake = new FakeTimespecProvider(seconds, nanoseconds);
    SmartPtr<IPosixTimespecOffsetCalculator> calculator(new PosixTimespecOffsetCalculator(fake));
    struct timespec deadline = {-1, -1};
    calculator->ComputeDeadline(timeoutMilliseconds, deadline);
    return deadline;
}

// Expects now = (seconds, nanoseconds) + timeout to give the deadline
// (expectedSeconds, expectedNanoseconds).
void ExpectDeadline(time_t seconds, long nanoseconds, std::uint32_t timeoutMilliseconds,
                    time_t expectedSeconds, long expectedNanoseconds)
{
    struct timespec deadline = DeadlineAt(seconds, nanoseconds, timeoutMilliseconds);
    EXPECT_EQ(deadline.tv_sec, expectedSeconds) << seconds << " s " << nanoseconds << " ns + "
                                                << timeoutMilliseconds << " ms";
    EXPECT_EQ(deadline.tv_nsec, expectedNanoseconds) << seconds << " s " << nanoseconds << " ns + "
                                                     << timeoutMilliseconds << " ms";
}

std::int64_t ToNanoseconds(const struct timespec& time)
{
    return static_cast<std::int64_t>(time.tv_sec) * 1000000000 + time.tv_nsec;
}

} // namespace

TEST(PosixTimespecOffsetCalculatorTest, NewCalculatorHasCountZeroAndHoldsItsProvider)
{
    FakeTimespecProvider* fake = new FakeTimespecProvider;
    SmartPtr<IPosixTimespecProvider> provider(fake);
    PosixTimespecOffsetCalculator* calculator = new PosixTimespecOffsetCalculator(provider);
    IPosixTimespecOffsetCalculator* asInterface = calculator;
    EXPECT_EQ(asInterface->GetReferenceCount(), 0u);
    EXPECT_EQ(provider->GetReferenceCount(), 2u);
    {
        SmartPtr<IPosixTimespecOffsetCalculator> owner(calculator);
    }
    EXPECT_EQ(provider->GetReferenceCount(), 1u);
}

TEST(PosixTimespecOffsetCalculatorTest, ZeroTimeoutGivesTheCurrentTime)
{
    ExpectDeadline(1700000000, 123456789, 0, 1700000000, 123456789);
}

TEST(PosixTimespecOffsetCalculatorTest, TimeoutOf1999MillisecondsCarriesIntoTheSeconds)
{
    ExpectDeadline(10, 999000000, 1999, 12, 998000000);
}

TEST(PosixTimespecOffsetCalculatorTest, WholeSecondsAddWithoutCarry)
{
    ExpectDeadline(10, 5, 3000, 13, 5);
}

TEST(PosixTimespecOffsetCalculatorTest, OneMillisecondPastTheLastNanosecondCarriesOnce)
{
    ExpectDeadline(5, 999999999, 1, 6, 999999);
}

TEST(PosixTimespecOffsetCalculatorTest, LargestNanosecondSumNeedsOnlyOneCarry)
{
    // 999 999 999 ns + 999 ms = 1 998 999 999 ns: the largest sum there is.
    ExpectDeadline(0, 999999999, 999, 1, 998999999);
}

TEST(PosixTimespecOffsetCalculatorTest, LargestFiniteTimeoutDoesNotOverflowTheSeconds)
{
    // 0xFFFFFFFE ms = 4 294 967 s + 294 ms.
    ExpectDeadline(1700000000, 999999999, 0xFFFFFFFEu, 1704294968, 293999999);
    ExpectDeadline(10, 0, 0xFFFFFFFEu, 4294977, 294000000);
}

TEST(PosixTimespecOffsetCalculatorTest, NoTimeoutValueIsAddedLikeAnyOther)
{
    ExpectDeadline(100, 999999999, 0xFFFFFFFFu, 100 + 4294967 + 1, 294999999);
}

TEST(PosixTimespecOffsetCalculatorTest, ReadsTheProviderOncePerDeadline)
{
    FakeTimespecProvider* fake = new FakeTimespecProvider(1, 0);
    SmartPtr<IPosixTimespecProvider> provider(fake);
    SmartPtr<IPosixTimespecOffsetCalculator> calculator(new PosixTimespecOffsetCalculator(provider));
    struct timespec deadline;
    calculator->ComputeDeadline(10, deadline);
    fake->Set(2, 0);
    calculator->ComputeDeadline(10, deadline);
    EXPECT_EQ(fake->reads, 2);
    EXPECT_EQ(deadline.tv_sec, 2);
    EXPECT_EQ(deadline.tv_nsec, 10000000);
}

TEST(PosixTimespecOffsetCalculatorTest, FailingProviderCountsFromTimeZero)
{
    FakeTimespecProvider* fake = new FakeTimespecProvider(50, 0);
    fake->Fail();
    SmartPtr<IPosixTimespecOffsetCalculator> calculator(new PosixTimespecOffsetCalculator(fake));
    struct timespec deadline = {-1, -1};
    calculator->ComputeDeadline(1500, deadline);
    EXPECT_EQ(deadline.tv_sec, 1);
    EXPECT_EQ(deadline.tv_nsec, 500000000);
}

TEST(PosixTimespecOffsetCalculatorTest, RealClockDeadlineLiesTimeoutAfterTheCall)
{
    SmartPtr<IPosixTimespecOffsetCalculator> calculator(
        new PosixTimespecOffsetCalculator(new PosixCurrentTimespec(CLOCK_REALTIME)));
    struct timespec before, deadline, after;
    ASSERT_EQ(clock_gettime(CLOCK_REALTIME, &before), 0);
    calculator->ComputeDeadline(2500, deadline);
    ASSERT_EQ(clock_gettime(CLOCK_REALTIME, &after), 0);
    EXPECT_GE(ToNanoseconds(deadline), ToNanoseconds(before) + 2500000000LL);
    EXPECT_LE(ToNanoseconds(deadline), ToNanoseconds(after) + 2500000000LL);
    EXPECT_GE(deadline.tv_nsec, 0);
    EXPECT_LT(deadline.tv_nsec, 1000000000);
}

TEST(PosixTimespecOffsetCalculatorTest, EmptyProviderExitsSilently)
{
    SmartPtr<IPosixTimespecOffsetCalculator> calculator(
        new PosixTimespecOffsetCalculator(SmartPtr<IPosixTimespecProvider>()));
    struct timespec deadline;
    EXPECT_FATAL_SILENT(calculator->ComputeDeadline(10, deadline));
}

TEST(PosixTimespecOffsetCalculatorTest, ANullDeadlineReferenceIsFatal)
{
    SmartPtr<IPosixTimespecOffsetCalculator> calculator(
        new PosixTimespecOffsetCalculator(SmartPtr<IPosixTimespecProvider>(new FakeTimespecProvider(10, 0))));
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<struct timespec>(
                             [&](struct timespec& none) { calculator->ComputeDeadline(10, none); }),
                         L"PosixTimespecOffsetCalculator: deadline NULL reference.");
}

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/time/Epoch.h>
#include <KivPlr/time/LinuxSystemClock.h>
#include <KivTest/Capabilities.h>
#include <KivTest/ChildProcess.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <limits>
#include <linux/capability.h>
#include <random>
#include <sys/time.h>
#include <unistd.h>

using namespace KivPlr;

namespace {

// Exit statuses of the child that tries to set the clock without the right.
constexpr int SetRefused = 0;
constexpr int CapabilityNotDropped = 2;
constexpr int SetAnsweredOtherwise = 3;

struct timeval Timeval(const TimePoint& point)
{
    struct timeval tv = {-1, -1};
    EXPECT_TRUE(LinuxSystemClock::ToTimeval(point, tv));
    return tv;
}

} // namespace

TEST(LinuxSystemClockTest, NewClockHasCountZero)
{
    LinuxSystemClock* clock = new LinuxSystemClock;
    ISystemClock* asInterface = clock;
    EXPECT_EQ(asInterface->GetReferenceCount(), 0u);
    SmartPtr<ISystemClock> owner(clock);
}

TEST(LinuxSystemClockTest, GetTimeAgreesWithGettimeofdayWithinASecond)
{
    SmartPtr<ISystemClock> clock(new LinuxSystemClock);
    struct timeval before, after;
    gettimeofday(&before, nullptr);
    TimePoint now;
    clock->GetTime(now);
    gettimeofday(&after, nullptr);
    struct timeval read = Timeval(now);
    EXPECT_GE(static_cast<std::int64_t>(read.tv_sec), static_cast<std::int64_t>(before.tv_sec) - 1);
    EXPECT_LE(static_cast<std::int64_t>(read.tv_sec), static_cast<std::int64_t>(after.tv_sec) + 1);
    EXPECT_TRUE(now.GetTimeOfDay() < TimeDuration(24, 0, 0, 0));
    EXPECT_FALSE(now.GetTimeOfDay().IsNegative());
}

TEST(LinuxSystemClockTest, SetTimeConvertsToTheSecondAndMicrosecondSinceTheEpoch)
{
    struct timeval tv = Timeval(TimePoint(Date(1970, 1, 2), TimeDuration(0, 0, 1, 500000)));
    EXPECT_EQ(tv.tv_sec, 86401);
    EXPECT_EQ(tv.tv_usec, 500);
}

TEST(LinuxSystemClockTest, ConversionTruncatesNanosecondsToMicroseconds)
{
    struct timeval tv = Timeval(TimePoint(Date(2000, 1, 1), TimeDuration(23, 59, 59, 999999999)));
    EXPECT_EQ(tv.tv_sec, 946684800 + 86399);
    EXPECT_EQ(tv.tv_usec, 999999);
    tv = Timeval(TimePoint(Date(1970, 1, 1), TimeDuration(0, 0, 0, 999)));
    EXPECT_EQ(tv.tv_sec, 0);
    EXPECT_EQ(tv.tv_usec, 0);
}

TEST(LinuxSystemClockTest, ConversionAddsATimeOfDayPastMidnight)
{
    struct timeval tv = Timeval(TimePoint(Date(1970, 1, 1), TimeDuration(25, 0, 0, 0)));
    EXPECT_EQ(tv.tv_sec, 90000);
}

TEST(LinuxSystemClockTest, ConversionOfTheLastSecondOfA32BitTimeT)
{
    struct timeval tv = Timeval(TimePoint(Date(2038, 1, 19), TimeDuration(3, 14, 7, 0)));
    EXPECT_EQ(static_cast<std::int64_t>(tv.tv_sec), 2147483647LL);
}

TEST(LinuxSystemClockTest, ConversionPast2038DependsOnTheWidthOfTimeT)
{
    TimePoint later(Date(2038, 1, 19), TimeDuration(3, 14, 8, 0));
    struct timeval tv = {-1, -1};
    bool converted = LinuxSystemClock::ToTimeval(later, tv);
    if (sizeof(time_t) < 8) {
        EXPECT_FALSE(converted);
        EXPECT_EQ(tv.tv_sec, -1);
    } else {
        EXPECT_TRUE(converted);
        EXPECT_EQ(static_cast<std::int64_t>(tv.tv_sec), 2147483648LL);
    }
}

TEST(LinuxSystemClockTest, SpecialValuesHaveNoTimeval)
{
    struct timeval tv = {-1, -1};
    EXPECT_FALSE(LinuxSystemClock::ToTimeval(TimePoint(Date(KindPositiveInfinity), TimeDuration(0, 0, 0, 0)), tv));
    EXPECT_FALSE(LinuxSystemClock::ToTimeval(TimePoint(Date(2000, 1, 1), TimeDuration()), tv));
    EXPECT_EQ(tv.tv_sec, -1);
}

TEST(LinuxSystemClockTest, SetTimeOfASpecialValueAnswers500WithoutTouchingTheClock)
{
    SmartPtr<ISystemClock> clock(new LinuxSystemClock);
    _Result result = ResultPass;
    clock->SetTime(TimePoint(Date(KindNegativeInfinity), TimeDuration(0, 0, 0, 0)), result);
    EXPECT_EQ(result, ResultFail);
}

TEST(LinuxSystemClockTest, TimevalReadsBackAsADateAndATimeOfDay)
{
    struct timeval tv = {86401, 500};
    TimePoint point = LinuxSystemClock::FromTimeval(tv);
    EXPECT_TRUE(point.GetDate() == Date(1970, 1, 2));
    EXPECT_TRUE(point.GetTimeOfDay() == TimeDuration(0, 0, 1, 500000));
}

TEST(LinuxSystemClockTest, TimevalRoundTripsThroughATimePoint)
{
    std::mt19937 random(86401);
    // Up to the end of 9999, or of time_t where it ends first.
    std::int64_t last = sizeof(time_t) < 8 ? std::numeric_limits<std::int32_t>::max() : 253402300799LL;
    std::uniform_int_distribution<std::int64_t> seconds(0, last);
    std::uniform_int_distribution<std::int64_t> microseconds(0, 999999);
    for (int sample = 0; sample < 10000; ++sample) {
        struct timeval tv = {};
        tv.tv_sec = static_cast<time_t>(seconds(random));
        tv.tv_usec = static_cast<suseconds_t>(microseconds(random));
        struct timeval back = Timeval(LinuxSystemClock::FromTimeval(tv));
        ASSERT_EQ(back.tv_sec, tv.tv_sec);
        ASSERT_EQ(back.tv_usec, tv.tv_usec);
    }
}

TEST(LinuxSystemClockTest, TimevalPast2262ReadsBackOnA64BitTimeT)
{
    if (sizeof(time_t) < 8)
        GTEST_SKIP() << "time_t is 32 bits wide here: it ends in 2038";
    // 2300-01-01: beyond a 64-bit count of nanoseconds since 1970.
    struct timeval tv = {};
    tv.tv_sec = static_cast<time_t>(Date(2300, 1, 1).GetDayNumber()) * 86400 + 3661;
    TimePoint point = LinuxSystemClock::FromTimeval(tv);
    EXPECT_TRUE(point.GetDate() == Date(2300, 1, 1));
    EXPECT_TRUE(point.GetTimeOfDay() == TimeDuration(1, 1, 1, 0));
}

TEST(LinuxSystemClockTest, TextIsAsctimeAndReadsBack)
{
    SmartPtr<ISystemClock> clock(new LinuxSystemClock);
    TimePoint point(Date(2024, 3, 1), TimeDuration(13, 5, 7, 0));
    std::string text = clock->ToText(point);
    EXPECT_EQ(text, "Fri Mar  1 13:05:07 2024\n");
    EXPECT_TRUE(clock->FromText(text) == point);
    TimePoint now;
    clock->GetTime(now);
    TimePoint wholeSeconds(now.GetDate(), TimeDuration(0, 0, now.GetTimeOfDay().GetTotalSeconds(), 0));
    EXPECT_TRUE(clock->FromText(clock->ToText(now)) == wholeSeconds);
}

TEST(LinuxSystemClockTest, SetTimeWithoutTheRightToSetTheClockAnswers500)
{
    // The child drops CAP_SYS_TIME for good and makes sure it is gone before
    // it calls settimeofday; and it sets the time it has just read, so that
    // even a call that went through would change nothing noticeable.
    KivTest::ChildOutcome outcome = KivTest::RunInChild([] {
        std::string why;
        if (!KivTest::DropCapability(CAP_SYS_TIME, why) || KivTest::MayUseCapability(CAP_SYS_TIME, why)) {
            std::fputs(why.c_str(), stdout);
            std::fflush(stdout);
            _exit(CapabilityNotDropped);
        }
        SmartPtr<ISystemClock> clock(new LinuxSystemClock);
        TimePoint now;
        clock->GetTime(now);
        _Result result = ResultPass;
        clock->SetTime(now, result);
        _exit(result == ResultFail ? SetRefused : SetAnsweredOtherwise);
    });
    ASSERT_TRUE(outcome.exited) << KivTest::Describe(outcome);
    if (outcome.exitStatus == CapabilityNotDropped)
        GTEST_SKIP() << "could not drop CAP_SYS_TIME, so settimeofday was not called: " << outcome.standardOutput;
    EXPECT_EQ(outcome.exitStatus, SetRefused) << KivTest::Describe(outcome);
}

TEST(LinuxSystemClockTest, ANullTimePointReferenceIsFatal)
{
    SmartPtr<ISystemClock> clock(new LinuxSystemClock);
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<TimePoint>([&](TimePoint& none) { clock->GetTime(none); }),
                         L"LinuxSystemClock: now NULL reference.");
}

TEST(LinuxSystemClockTest, SetTimeWithANullResultReferenceIsFatal)
{
    // A time that has no timeval: whatever the code does first, the clock
    // cannot be set by this test.
    SmartPtr<ISystemClock> clock(new LinuxSystemClock);
    const TimePoint unsettable(Date(KindNegativeInfinity), TimeDuration(0, 0, 0, 0));
    EXPECT_FATAL_MESSAGE(
        KivTest::WithNullReference<_Result>([&](_Result& none) { clock->SetTime(unsettable, none); }),
        L"LinuxSystemClock: result NULL reference.");
}

TEST(LinuxSystemClockTest, ToTimevalWithANullTimevalReferenceIsFatal)
{
    const TimePoint time(Date(2000, 1, 1), TimeDuration(0, 0, 1, 0));
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<struct timeval>(
                             [&](struct timeval& none) { LinuxSystemClock::ToTimeval(time, none); }),
                         L"LinuxSystemClock: tv NULL reference.");
}

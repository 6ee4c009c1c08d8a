// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/PosixResultPassFail.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/PosixSemaphore.h>
#include <KivTest/FakeTimespecOffsetCalculator.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>
#include <KivTest/RecordingResultConverter.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <thread>
#include <vector>

using namespace KivPlr;
using KivTest::FakeTimespecOffsetCalculator;
using KivTest::RecordingResultConverter;

namespace {

class PosixSemaphoreTest : public ::testing::Test
{
protected:
    SmartPtr<FakeTimespecOffsetCalculator> calculator{new FakeTimespecOffsetCalculator};
    SmartPtr<RecordingResultConverter> converter{new RecordingResultConverter};
    SmartPtr<ISemaphore> semaphore{new PosixSemaphore(calculator.Get(), converter.Get())};
};

} // namespace

TEST_F(PosixSemaphoreTest, NewSemaphoreHasCountZeroAndValueZero)
{
    ISemaphore* fresh = new PosixSemaphore(calculator.Get(), converter.Get());
    EXPECT_EQ(fresh->GetReferenceCount(), 0u);
    SmartPtr<ISemaphore> owner(fresh);
    EXPECT_EQ(owner->GetValue(), 0);
}

TEST_F(PosixSemaphoreTest, TryWaitOnANewSemaphoreAnswersFalse)
{
    EXPECT_FALSE(semaphore->TryWait());
    EXPECT_EQ(semaphore->GetValue(), 0);
}

TEST_F(PosixSemaphoreTest, AfterOnePostTryWaitAnswersTrueOnce)
{
    EXPECT_EQ(semaphore->Post(), 0);
    EXPECT_EQ(semaphore->GetValue(), 1);
    EXPECT_TRUE(semaphore->TryWait());
    EXPECT_FALSE(semaphore->TryWait());
    EXPECT_EQ(semaphore->GetValue(), 0);
}

TEST_F(PosixSemaphoreTest, PostsAddUp)
{
    for (int post = 0; post < 5; ++post)
        semaphore->Post();
    EXPECT_EQ(semaphore->GetValue(), 5);
}

TEST_F(PosixSemaphoreTest, WaitOfZeroOnValueZeroFailsAtOnceThroughTheConverter)
{
    calculator->SetDeadline(KivTest::RealTimeNow());
    _Result result = ResultPass;
    semaphore->Wait(0, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(calculator->Requests(), std::vector<std::uint32_t>{0});
    // sem_timedwait reports its time-out as -1; the converter makes it a failure.
    EXPECT_EQ(converter->NativeResults(), std::vector<int>{-1});
}

TEST_F(PosixSemaphoreTest, TimedWaitThatTimesOutReturnsNoEarlierThanItsDeadline)
{
    struct timespec deadline = calculator->SetDeadlineFromNow(40);
    _Result result = ResultPass;
    semaphore->Wait(40, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_TRUE(KivTest::NotAfter(deadline, KivTest::RealTimeNow()));
}

TEST_F(PosixSemaphoreTest, TimedWaitTakesAPostedCount)
{
    semaphore->Post();
    _Result result = ResultFail;
    semaphore->Wait(10, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(semaphore->GetValue(), 0);
}

TEST_F(PosixSemaphoreTest, WaitForeverComputesNoDeadlineAndWakesOnAPost)
{
    // The fake's deadline is in 1970: only the post can end this wait well.
    std::thread poster([&] { semaphore->Post(); });
    _Result result = ResultFail;
    semaphore->Wait(0xFFFFFFFFu, result);
    poster.join();
    EXPECT_EQ(result, ResultPass);
    EXPECT_TRUE(calculator->Requests().empty());
    EXPECT_EQ(semaphore->GetValue(), 0);
}

TEST_F(PosixSemaphoreTest, EveryPostWakesOneWaiterAcrossFourThreads)
{
    constexpr int perThread = 500;
    std::vector<std::thread> threads;
    for (int waiter = 0; waiter < 2; ++waiter)
        threads.emplace_back([&] {
            for (int index = 0; index < perThread; ++index) {
                _Result result = ResultFail;
                semaphore->Wait(result);
                EXPECT_EQ(result, ResultPass);
            }
        });
    for (int poster = 0; poster < 2; ++poster)
        threads.emplace_back([&] {
            for (int index = 0; index < perThread; ++index)
                semaphore->Post();
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(semaphore->GetValue(), 0);
}

TEST(PosixSemaphoreFatalTest, WaitsWithoutAConverterAreFatal)
{
    SmartPtr<IPosixTimespecOffsetCalculator> calculator(new FakeTimespecOffsetCalculator);
    SmartPtr<ISemaphore> semaphore(new PosixSemaphore(calculator.Get(), nullptr));
    _Result result = ResultPass;
    EXPECT_FATAL_MESSAGE(semaphore->Wait(result), L"SmartPtr<T>-> NULL reference");
    EXPECT_FATAL_MESSAGE(semaphore->Wait(5, result), L"SmartPtr<T>-> NULL reference");
}

TEST(PosixSemaphoreFatalTest, WaitsWithANullResultReferenceEndThroughTheConverter)
{
    // One post first, so the waits without time-out return at once; the
    // fake calculator's deadline is 1970, so the timed wait on an empty
    // semaphore fails at once.
    SmartPtr<IPosixTimespecOffsetCalculator> calculator(new FakeTimespecOffsetCalculator);
    SmartPtr<IResultConverter> converter(new PosixResultPassFail);
    SmartPtr<ISemaphore> semaphore(new PosixSemaphore(calculator.Get(), converter.Get()));
    const wchar_t* const message = L"PosixResultPasFail: result NULL reference.";
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<_Result>([&](_Result& none) {
                             semaphore->Post();
                             semaphore->Wait(none);
                         }),
                         message);
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<_Result>([&](_Result& none) {
                             semaphore->Post();
                             semaphore->Wait(WaitForever, none);
                         }),
                         message);
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<_Result>([&](_Result& none) { semaphore->Wait(5, none); }),
                         message);
}

TEST(PosixSemaphoreFatalTest, ATimedWaitWithoutACalculatorIsFatal)
{
    SmartPtr<IResultConverter> converter(new PosixResultPassFail);
    SmartPtr<ISemaphore> semaphore(new PosixSemaphore(nullptr, converter.Get()));
    _Result result = ResultPass;
    EXPECT_FATAL_MESSAGE(semaphore->Wait(5, result), L"SmartPtr<T>-> NULL reference");
}

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/accounts/Posix.h>
#include <KivPlr/core/PosixResultPassFail.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/PassiveThreadObserver.h>
#include <KivPlr/sync/PosixLock.h>
#include <KivPlr/sync/PosixSemaphore.h>
#include <KivPlr/sync/PosixSharedLock.h>
#include <KivPlr/sync/PosixThread.h>
#include <KivPlr/sync/PosixThreadPriorityMap.h>
#include <KivTest/FakeTimespecOffsetCalculator.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>

using namespace KivPlr;

namespace {

class PosixTest : public ::testing::Test
{
protected:
    SmartPtr<IPosix> posix{new Posix};
    SmartPtr<IPosixTimespecOffsetCalculator> calculator{new KivTest::FakeTimespecOffsetCalculator};
    SmartPtr<IResultConverter> converter{new PosixResultPassFail};
};

} // namespace

TEST_F(PosixTest, NewPosixHasCountZero)
{
    IPosix* fresh = new Posix;
    EXPECT_EQ(fresh->GetReferenceCount(), 0u);
    SmartPtr<IPosix> owner(fresh);
}

TEST_F(PosixTest, CreateLockPassesItsHelpersThroughUnchanged)
{
    ILock* made = posix->CreateLock(calculator.Get(), converter.Get());
    EXPECT_EQ(made->GetReferenceCount(), 0u);
    SmartPtr<ILock> lock(made);
    PosixLock* posixLock = dynamic_cast<PosixLock*>(made);
    ASSERT_NE(posixLock, nullptr);
    EXPECT_EQ(posixLock->GetTimeoutCalculator(), calculator.Get());
    EXPECT_EQ(posixLock->GetResultConverter(), converter.Get());
}

TEST_F(PosixTest, CreateSharedLockPassesItsConverterThroughUnchanged)
{
    ISharedLock* made = posix->CreateSharedLock(converter.Get());
    EXPECT_EQ(made->GetReferenceCount(), 0u);
    SmartPtr<ISharedLock> lock(made);
    PosixSharedLock* posixLock = dynamic_cast<PosixSharedLock*>(made);
    ASSERT_NE(posixLock, nullptr);
    EXPECT_EQ(posixLock->GetResultConverter(), converter.Get());
}

TEST_F(PosixTest, CreateSemaphorePassesItsHelpersThroughUnchanged)
{
    ISemaphore* made = posix->CreateSemaphore(calculator.Get(), converter.Get());
    EXPECT_EQ(made->GetReferenceCount(), 0u);
    SmartPtr<ISemaphore> semaphore(made);
    PosixSemaphore* posixSemaphore = dynamic_cast<PosixSemaphore*>(made);
    ASSERT_NE(posixSemaphore, nullptr);
    EXPECT_EQ(posixSemaphore->GetTimeoutCalculator(), calculator.Get());
    EXPECT_EQ(posixSemaphore->GetResultConverter(), converter.Get());
    EXPECT_EQ(semaphore->GetValue(), 0);
}

TEST_F(PosixTest, CreateThreadPassesItsHelpersAndStackSizeThroughUnchanged)
{
    SmartPtr<IThreadObserver> observer(new PassiveThreadObserver);
    SmartPtr<IPosixThreadPriorityConverter> priorities(new PosixThreadPriorityMap);
    IThread* made = posix->CreateThread(observer.Get(), priorities.Get(), converter.Get(), 65536u);
    EXPECT_EQ(made->GetReferenceCount(), 0u);
    SmartPtr<IThread> thread(made);
    PosixThread* posixThread = dynamic_cast<PosixThread*>(made);
    ASSERT_NE(posixThread, nullptr);
    EXPECT_EQ(posixThread->GetObserver(), observer.Get());
    EXPECT_EQ(posixThread->GetPriorityConverter(), priorities.Get());
    EXPECT_EQ(posixThread->GetResultConverter(), converter.Get());
    EXPECT_EQ(posixThread->GetStackSize(), 65536u);
}

TEST_F(PosixTest, CreateOperationsValidateNothing)
{
    SmartPtr<ILock> lock(posix->CreateLock(nullptr, nullptr));
    SmartPtr<ISharedLock> sharedLock(posix->CreateSharedLock(nullptr));
    SmartPtr<ISemaphore> semaphore(posix->CreateSemaphore(nullptr, nullptr));
    EXPECT_TRUE(lock);
    EXPECT_TRUE(sharedLock);
    EXPECT_TRUE(semaphore);
}

TEST_F(PosixTest, EachCreateMakesANewObject)
{
    SmartPtr<ILock> first(posix->CreateLock(calculator.Get(), converter.Get()));
    SmartPtr<ILock> second(posix->CreateLock(calculator.Get(), converter.Get()));
    EXPECT_NE(first.Get(), second.Get());
}

TEST_F(PosixTest, IncrementOnZeroGivesOneAndLeavesOne)
{
    std::int32_t counter = 0;
    EXPECT_EQ(posix->Increment(counter), 1);
    EXPECT_EQ(counter, 1);
}

TEST_F(PosixTest, DecrementOnZeroGivesMinusOne)
{
    std::int32_t counter = 0;
    EXPECT_EQ(posix->Decrement(counter), -1);
    EXPECT_EQ(counter, -1);
}

TEST_F(PosixTest, CountersWrapAtTheLimitsInsteadOfOverflowing)
{
    std::int32_t counter = INT32_MAX;
    EXPECT_EQ(posix->Increment(counter), INT32_MIN);
    EXPECT_EQ(counter, INT32_MIN);
    EXPECT_EQ(posix->Decrement(counter), INT32_MAX);
    EXPECT_EQ(counter, INT32_MAX);
}

TEST_F(PosixTest, CountersStepOnePerCallInOneThread)
{
    // The counters are plain (not atomic) on purpose; in one thread they
    // count exactly.
    std::int32_t counter = 0;
    for (int step = 0; step < 1000; ++step)
        posix->Increment(counter);
    for (int step = 0; step < 300; ++step)
        posix->Decrement(counter);
    EXPECT_EQ(counter, 700);
}

TEST_F(PosixTest, ANullCounterReferenceIsFatal)
{
    EXPECT_FATAL_MESSAGE(
        KivTest::WithNullReference<std::int32_t>([&](std::int32_t& none) { posix->Increment(none); }),
        L"Posix: counter NULL reference.");
    EXPECT_FATAL_MESSAGE(
        KivTest::WithNullReference<std::int32_t>([&](std::int32_t& none) { posix->Decrement(none); }),
        L"Posix: counter NULL reference.");
}

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/PosixResultPassFail.h>
#include <KivPlr/sync/PosixLock.h>
#include <KivPlr/sync/ScopedLock.h>
#include <KivTest/FakeTimespecOffsetCalculator.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/RecordingLock.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace KivPlr;
using KivTest::RecordingLock;

namespace {

int ReturnEarlyUnder(const SmartPtr<ILock>& lock, bool early)
{
    ScopedLock hold(lock);
    if (early)
        return 1;
    return 2;
}

void ThrowUnder(const SmartPtr<ILock>& lock)
{
    ScopedLock hold(lock);
    throw std::runtime_error("update failed");
}

} // namespace

TEST(ScopedLockTest, LocksOnConstructionAndUnlocksAtTheEndOfTheBlock)
{
    SmartPtr<RecordingLock> recorder(new RecordingLock);
    SmartPtr<ILock> lock(recorder);
    {
        ScopedLock hold(lock);
        EXPECT_EQ(recorder->Calls(), std::vector<std::string>{"Lock"});
    }
    EXPECT_EQ(recorder->Calls(), (std::vector<std::string>{"Lock", "Unlock"}));
}

TEST(ScopedLockTest, UnlocksOnAnEarlyReturn)
{
    SmartPtr<RecordingLock> recorder(new RecordingLock);
    SmartPtr<ILock> lock(recorder);
    EXPECT_EQ(ReturnEarlyUnder(lock, true), 1);
    EXPECT_EQ(ReturnEarlyUnder(lock, false), 2);
    EXPECT_EQ(recorder->Depth(), 0);
    EXPECT_EQ(recorder->Calls().size(), 4u);
}

TEST(ScopedLockTest, UnlocksWhenAnExceptionLeavesTheBlock)
{
    SmartPtr<RecordingLock> recorder(new RecordingLock);
    SmartPtr<ILock> lock(recorder);
    EXPECT_THROW(ThrowUnder(lock), std::runtime_error);
    EXPECT_EQ(recorder->Calls(), (std::vector<std::string>{"Lock", "Unlock"}));
}

TEST(ScopedLockTest, ARealLockIsFreeAgainAfterAnException)
{
    SmartPtr<IPosixTimespecOffsetCalculator> calculator(new KivTest::FakeTimespecOffsetCalculator);
    SmartPtr<IResultConverter> converter(new PosixResultPassFail);
    SmartPtr<ILock> lock(new PosixLock(calculator.Get(), converter.Get()));
    EXPECT_THROW(ThrowUnder(lock), std::runtime_error);
    bool acquired = false;
    std::thread other([&] {
        acquired = lock->TryLock();
        if (acquired)
            lock->Unlock();
    });
    other.join();
    EXPECT_TRUE(acquired);
}

TEST(ScopedLockTest, TakesNoReferenceOnTheLockWhileHeld)
{
    SmartPtr<RecordingLock> recorder(new RecordingLock);
    SmartPtr<ILock> lock(recorder);
    ASSERT_EQ(recorder->GetReferenceCount(), 2u);
    {
        ScopedLock hold(lock);
        EXPECT_EQ(recorder->GetReferenceCount(), 2u);
    }
    {
        ScopedLock hold(*recorder);
        EXPECT_EQ(recorder->GetReferenceCount(), 2u);
    }
    EXPECT_EQ(recorder->GetReferenceCount(), 2u);
    EXPECT_EQ(recorder->Calls(), (std::vector<std::string>{"Lock", "Unlock", "Lock", "Unlock"}));
}

TEST(ScopedLockTest, HoldsALockGivenByReference)
{
    SmartPtr<RecordingLock> recorder(new RecordingLock);
    ILock& lock = *recorder;
    {
        ScopedLock hold(lock);
        EXPECT_EQ(recorder->Depth(), 1);
    }
    EXPECT_EQ(recorder->Depth(), 0);
}

TEST(ScopedLockTest, AnEmptyLockIsFatal)
{
    SmartPtr<ILock> empty;
    EXPECT_FATAL_MESSAGE(ScopedLock hold(empty), L"SmartPtr<T>-> NULL reference");
}

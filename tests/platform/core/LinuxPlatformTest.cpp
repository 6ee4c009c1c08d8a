// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/accounts/User.h>
#include <KivPlr/accounts/UserGroup.h>
#include <KivPlr/core/LinuxPlatform.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/io/DirectoryManager.h>
#include <KivPlr/io/FileManager.h>
#include <KivPlr/io/LogManager.h>
#include <KivPlr/sync/ISemaphore.h>
#include <KivPlr/sync/ISharedLock.h>
#include <KivPlr/sync/IThread.h>
#include <KivPlr/sync/PosixLock.h>
#include <KivPlr/sync/PosixSemaphore.h>
#include <KivPlr/sync/PosixSharedLock.h>
#include <KivPlr/sync/PosixThread.h>
#include <KivPlr/sync/PosixThreadPriorityMap.h>
#include <KivPlr/sync/ScopedLock.h>
#include <KivPlr/time/ClockGetTimeClock.h>
#include <KivPlr/time/LinuxSystemClock.h>
#include <KivPlr/time/PosixCurrentTimespec.h>
#include <KivTest/FakeTimespecOffsetCalculator.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <utility>
#include <vector>

using namespace KivPlr;

namespace {

class LinuxPlatformTest : public ::testing::Test
{
protected:
    SmartPtr<IPlatform> platform{new LinuxPlatform};
};

// A priority map that records its Add calls in order.
class RecordingPriorityMap : public PosixThreadPriorityMap
{
public:
    std::vector<std::pair<std::int32_t, std::int32_t>> added;

    void Add(std::int32_t platformPriority, std::int32_t posixPriority) override
    {
        added.emplace_back(platformPriority, posixPriority);
        PosixThreadPriorityMap::Add(platformPriority, posixPriority);
    }
};

template <typename Concrete, typename Interface>
Concrete* As(const SmartPtr<Interface>& object)
{
    Concrete* concrete = dynamic_cast<Concrete*>(object.Get());
    EXPECT_NE(concrete, nullptr);
    return concrete;
}

// Two calls of \p create make two distinct Concrete objects, each with count
// 0 until it is wrapped.
template <typename Concrete, typename Interface>
void ExpectTwoNewObjectsWithCountZero(IPlatform& platform, Interface* (IPlatform::*create)())
{
    Interface* first = (platform.*create)();
    Interface* second = (platform.*create)();
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(first->GetReferenceCount(), 0u);
    EXPECT_EQ(second->GetReferenceCount(), 0u);
    EXPECT_NE(first, second);
    SmartPtr<Interface> firstOwner(first);
    SmartPtr<Interface> secondOwner(second);
    EXPECT_NE(dynamic_cast<Concrete*>(first), nullptr);
}

void CountsUpInAThread(void* argument)
{
    static_cast<std::atomic<int>*>(argument)->fetch_add(1);
}

} // namespace

TEST_F(LinuxPlatformTest, CreateFileManagerReturnsANewFileManagerWithCountZero)
{
    ExpectTwoNewObjectsWithCountZero<FileManager>(*platform, &IPlatform::CreateFileManager);
}

TEST_F(LinuxPlatformTest, CreateDirectoryManagerReturnsANewDirectoryManagerWithCountZero)
{
    ExpectTwoNewObjectsWithCountZero<DirectoryManager>(*platform, &IPlatform::CreateDirectoryManager);
}

TEST_F(LinuxPlatformTest, CreateLogManagerReturnsANewLogManagerWithCountZero)
{
    ExpectTwoNewObjectsWithCountZero<LogManager>(*platform, &IPlatform::CreateLogManager);
}

TEST_F(LinuxPlatformTest, CreateLockReturnsANewPosixLockWithCountZero)
{
    ExpectTwoNewObjectsWithCountZero<PosixLock>(*platform, &IPlatform::CreateLock);
}

TEST_F(LinuxPlatformTest, CreateSharedLockReturnsANewPosixSharedLockWithCountZero)
{
    ExpectTwoNewObjectsWithCountZero<PosixSharedLock>(*platform, &IPlatform::CreateSharedLock);
}

TEST_F(LinuxPlatformTest, CreateSemaphoreReturnsANewPosixSemaphoreAtZeroWithCountZero)
{
    ExpectTwoNewObjectsWithCountZero<PosixSemaphore>(*platform, &IPlatform::CreateSemaphore);
    SmartPtr<ISemaphore> semaphore(platform->CreateSemaphore());
    EXPECT_EQ(semaphore->GetValue(), 0);
}

TEST_F(LinuxPlatformTest, CreateUserReturnsANewUserWithCountZero)
{
    ExpectTwoNewObjectsWithCountZero<User>(*platform, &IPlatform::CreateUser);
}

TEST_F(LinuxPlatformTest, CreateUserGroupReturnsANewUserGroupWithCountZero)
{
    ExpectTwoNewObjectsWithCountZero<UserGroup>(*platform, &IPlatform::CreateUserGroup);
}

TEST_F(LinuxPlatformTest, CreateThreadReturnsANewPosixThreadWithCountZero)
{
    ExpectTwoNewObjectsWithCountZero<PosixThread>(*platform, &IPlatform::CreateThread);
    SmartPtr<IThread> thread(platform->CreateThread());
    EXPECT_EQ(As<PosixThread>(thread)->GetStackSize(), 0u);
}

TEST_F(LinuxPlatformTest, TwoLocksShareNoHelperAndEachOwnsItsHelpersAlone)
{
    SmartPtr<ILock> first(platform->CreateLock());
    SmartPtr<ILock> second(platform->CreateLock());
    PosixLock* a = As<PosixLock>(first);
    PosixLock* b = As<PosixLock>(second);
    ASSERT_TRUE(a != nullptr && b != nullptr);
    EXPECT_NE(a->GetTimeoutCalculator(), b->GetTimeoutCalculator());
    EXPECT_NE(a->GetResultConverter(), b->GetResultConverter());
    EXPECT_EQ(a->GetTimeoutCalculator()->GetReferenceCount(), 1u);
    EXPECT_EQ(a->GetResultConverter()->GetReferenceCount(), 1u);
}

TEST_F(LinuxPlatformTest, TwoSharedLocksShareNoConverter)
{
    SmartPtr<ISharedLock> first(platform->CreateSharedLock());
    SmartPtr<ISharedLock> second(platform->CreateSharedLock());
    PosixSharedLock* a = As<PosixSharedLock>(first);
    PosixSharedLock* b = As<PosixSharedLock>(second);
    ASSERT_TRUE(a != nullptr && b != nullptr);
    EXPECT_NE(a->GetResultConverter(), b->GetResultConverter());
    EXPECT_EQ(a->GetResultConverter()->GetReferenceCount(), 1u);
}

TEST_F(LinuxPlatformTest, TwoSemaphoresShareNoHelper)
{
    SmartPtr<ISemaphore> first(platform->CreateSemaphore());
    SmartPtr<ISemaphore> second(platform->CreateSemaphore());
    PosixSemaphore* a = As<PosixSemaphore>(first);
    PosixSemaphore* b = As<PosixSemaphore>(second);
    ASSERT_TRUE(a != nullptr && b != nullptr);
    EXPECT_NE(a->GetTimeoutCalculator(), b->GetTimeoutCalculator());
    EXPECT_NE(a->GetResultConverter(), b->GetResultConverter());
    EXPECT_EQ(a->GetTimeoutCalculator()->GetReferenceCount(), 1u);
    EXPECT_EQ(a->GetResultConverter()->GetReferenceCount(), 1u);
}

TEST_F(LinuxPlatformTest, TwoThreadsShareNoHelper)
{
    SmartPtr<IThread> first(platform->CreateThread());
    SmartPtr<IThread> second(platform->CreateThread());
    PosixThread* a = As<PosixThread>(first);
    PosixThread* b = As<PosixThread>(second);
    ASSERT_TRUE(a != nullptr && b != nullptr);
    EXPECT_NE(a->GetObserver(), b->GetObserver());
    EXPECT_NE(a->GetPriorityConverter(), b->GetPriorityConverter());
    EXPECT_NE(a->GetResultConverter(), b->GetResultConverter());
    EXPECT_EQ(a->GetObserver()->GetReferenceCount(), 1u);
    EXPECT_EQ(a->GetPriorityConverter()->GetReferenceCount(), 1u);
    EXPECT_EQ(a->GetResultConverter()->GetReferenceCount(), 1u);
}

TEST_F(LinuxPlatformTest, CreateClockReturnsANewClockGetTimeClockWithCountZero)
{
    ExpectTwoNewObjectsWithCountZero<ClockGetTimeClock>(*platform, &IPlatform::CreateClock);
}

TEST_F(LinuxPlatformTest, CreateSystemClockReturnsANewLinuxSystemClockWithCountZero)
{
    ExpectTwoNewObjectsWithCountZero<LinuxSystemClock>(*platform, &IPlatform::CreateSystemClock);
}

TEST_F(LinuxPlatformTest, TwoClocksShareNoHelperAndEachReadsTheMonotonicClock)
{
    SmartPtr<IClock> first(platform->CreateClock());
    SmartPtr<IClock> second(platform->CreateClock());
    ClockGetTimeClock* a = As<ClockGetTimeClock>(first);
    ClockGetTimeClock* b = As<ClockGetTimeClock>(second);
    ASSERT_TRUE(a != nullptr && b != nullptr);
    EXPECT_NE(a->GetLock(), b->GetLock());
    EXPECT_NE(a->GetProvider(), b->GetProvider());
    EXPECT_EQ(a->GetLock()->GetReferenceCount(), 1u);
    EXPECT_EQ(a->GetProvider()->GetReferenceCount(), 1u);
    EXPECT_NE(dynamic_cast<PosixLock*>(a->GetLock()), nullptr);
    PosixCurrentTimespec* provider = dynamic_cast<PosixCurrentTimespec*>(a->GetProvider());
    ASSERT_NE(provider, nullptr);
    EXPECT_EQ(provider->GetClockId(), CLOCK_MONOTONIC);
}

TEST(LinuxPlatformClockTest, CreateClockTakesItsLockThroughTheCreateLockSlot)
{
    class CountingPlatform : public LinuxPlatform
    {
    public:
        int locks = 0;
        ILock* CreateLock() override
        {
            ++locks;
            return LinuxPlatform::CreateLock();
        }
    };
    CountingPlatform* counting = new CountingPlatform;
    SmartPtr<IPlatform> owner(counting);
    SmartPtr<IClock> clock(owner->CreateClock());
    EXPECT_EQ(counting->locks, 1);
}

TEST(LinuxPlatformLadderTest, FillsTheLadderInItsFixedOrderAllMappedToZero)
{
    SmartPtr<RecordingPriorityMap> map(new RecordingPriorityMap);
    LinuxPlatform::FillPriorityLadder(*map);
    EXPECT_EQ(map->added, (std::vector<std::pair<std::int32_t, std::int32_t>>{
                              {15, 0}, {12, 0}, {10, 0}, {8, 0}, {6, 0}, {4, 0}, {1, 0}}));
}

TEST(LinuxPlatformLadderTest, ANullMapReferenceIsFatal)
{
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<PosixThreadPriorityMap>(
                             [](PosixThreadPriorityMap& none) { LinuxPlatform::FillPriorityLadder(none); }),
                         L"LinuxPlatform: map NULL reference.");
}

TEST_F(LinuxPlatformTest, ThreadsGetTheLadderAndNothingElse)
{
    SmartPtr<IThread> thread(platform->CreateThread());
    PosixThread* posixThread = As<PosixThread>(thread);
    ASSERT_NE(posixThread, nullptr);
    IPosixThreadPriorityConverter* priorities = posixThread->GetPriorityConverter();
    for (std::int32_t level : {15, 12, 10, 8, 6, 4, 1}) {
        int posixPriority = 99;
        _Result result = ResultFail;
        priorities->Convert(level, posixPriority, result);
        EXPECT_EQ(result, ResultPass) << level;
        EXPECT_EQ(posixPriority, 0) << level;
    }
    for (std::int32_t level : {0, 2, 3, 5, 7, 9, 11, 13, 14, 16, -1}) {
        int posixPriority = 99;
        _Result result = ResultPass;
        priorities->Convert(level, posixPriority, result);
        EXPECT_EQ(result, ResultFail) << level;
        EXPECT_EQ(posixPriority, 99) << level;
    }
}

TEST_F(LinuxPlatformTest, AFactoryThreadRunsAndJoins)
{
    std::atomic<int> runs{0};
    SmartPtr<IThread> thread(platform->CreateThread());
    _Result result = ResultFail;
    thread->SetPriority(10, result);
    EXPECT_TRUE(thread->Start(&CountsUpInAThread, &runs, result));
    EXPECT_EQ(result, ResultPass);
    EXPECT_TRUE(thread->Join());
    EXPECT_EQ(runs.load(), 1);
}

TEST_F(LinuxPlatformTest, AFactoryLockTimesOutNoEarlierThanItsWallClockDeadline)
{
    SmartPtr<ILock> lock(platform->CreateLock());
    struct timespec earliest = KivTest::RealTimeNow();
    earliest.tv_nsec += 30 * 1000000L;
    if (earliest.tv_nsec >= 1000000000L) {
        earliest.tv_nsec -= 1000000000L;
        earliest.tv_sec += 1;
    }
    _Result result = ResultPass;
    {
        ScopedLock hold(lock);
        lock->Wait(30, result);
    }
    EXPECT_EQ(result, ResultFail);
    EXPECT_TRUE(KivTest::NotAfter(earliest, KivTest::RealTimeNow()));
}

TEST_F(LinuxPlatformTest, AFactorySemaphoreWaitOfZeroFailsAtOnce)
{
    SmartPtr<ISemaphore> semaphore(platform->CreateSemaphore());
    _Result result = ResultPass;
    semaphore->Wait(0, result);
    EXPECT_EQ(result, ResultFail);
    semaphore->Post();
    semaphore->Wait(0, result);
    EXPECT_EQ(result, ResultPass);
}

// The four-thread exactness of the counters is Platform's and is tested there
// (PlatformCounterTest); here only that LinuxPlatform keeps them.
TEST_F(LinuxPlatformTest, AtomicIncrementOnZeroGivesOneAndDecrementGivesMinusOne)
{
    std::int32_t value = 0;
    EXPECT_EQ(platform->AtomicIncrement(value), 1);
    EXPECT_EQ(value, 1);
    value = 0;
    EXPECT_EQ(platform->AtomicDecrement(value), -1);
    EXPECT_EQ(value, -1);
}

TEST_F(LinuxPlatformTest, ThePosixCountersArePlainOnes)
{
    IPosix* posix = As<LinuxPlatform>(platform)->GetPosix();
    ASSERT_NE(posix, nullptr);
    std::int32_t value = 0;
    EXPECT_EQ(posix->Increment(value), 1);
    EXPECT_EQ(posix->Decrement(value), 0);
    EXPECT_EQ(posix->Decrement(value), -1);
}

TEST(LinuxPlatformLifetimeTest, OwnsItsPosixObjectAloneAndReleasesItWhenDestroyed)
{
    IPlatform* made = new LinuxPlatform;
    EXPECT_EQ(made->GetReferenceCount(), 0u);
    SmartPtr<IPlatform> platform(made);
    SmartPtr<IPosix> posix(As<LinuxPlatform>(platform)->GetPosix());
    EXPECT_EQ(posix->GetReferenceCount(), 2u);
    platform.Reset();
    EXPECT_EQ(posix->GetReferenceCount(), 1u);
}

TEST(LinuxPlatformLifetimeTest, InstalledInstanceKeepsCountOne)
{
    IPlatform* made = new LinuxPlatform;
    Platform::SetInstance(made);
    EXPECT_EQ(Platform::GetInstance(), made);
    EXPECT_EQ(made->GetReferenceCount(), 1u);
    SmartPtr<ILock> lock(Platform::GetInstance()->CreateLock());
    EXPECT_TRUE(lock);
    EXPECT_EQ(made->GetReferenceCount(), 1u);
    Platform::ClearInstance();
    EXPECT_EQ(Platform::GetInstance(), nullptr);
}

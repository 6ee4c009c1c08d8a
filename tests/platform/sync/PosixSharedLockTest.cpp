// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/PosixSharedLock.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/RecordingResultConverter.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <thread>
#include <vector>

using namespace KivPlr;
using KivTest::RecordingResultConverter;

namespace {

class PosixSharedLockTest : public ::testing::Test
{
protected:
    SmartPtr<RecordingResultConverter> converter{new RecordingResultConverter};
    SmartPtr<ISharedLock> lock{new PosixSharedLock(converter.Get())};
};

// Runs \p attempt on a thread of its own and returns its answer; a hold it
// acquired is released there.
bool FromAnotherThread(ISharedLock& lock, bool (ISharedLock::*attempt)())
{
    bool acquired = false;
    std::thread other([&] {
        acquired = (lock.*attempt)();
        if (acquired)
            lock.Unlock();
    });
    other.join();
    return acquired;
}

} // namespace

TEST_F(PosixSharedLockTest, NewLockHasCountZero)
{
    ISharedLock* fresh = new PosixSharedLock(converter.Get());
    EXPECT_EQ(fresh->GetReferenceCount(), 0u);
    SmartPtr<ISharedLock> owner(fresh);
}

TEST_F(PosixSharedLockTest, ReadersHoldItTogether)
{
    lock->ReadLock();
    EXPECT_TRUE(FromAnotherThread(*lock, &ISharedLock::TryReadLock));
    lock->Unlock();
}

TEST_F(PosixSharedLockTest, AReaderKeepsWritersOut)
{
    lock->ReadLock();
    EXPECT_FALSE(FromAnotherThread(*lock, &ISharedLock::TryWriteLock));
    lock->Unlock();
    EXPECT_TRUE(FromAnotherThread(*lock, &ISharedLock::TryWriteLock));
}

TEST_F(PosixSharedLockTest, AWriterKeepsReadersAndWritersOut)
{
    lock->WriteLock();
    EXPECT_FALSE(FromAnotherThread(*lock, &ISharedLock::TryReadLock));
    EXPECT_FALSE(FromAnotherThread(*lock, &ISharedLock::TryWriteLock));
    lock->Unlock();
    EXPECT_TRUE(FromAnotherThread(*lock, &ISharedLock::TryReadLock));
    EXPECT_TRUE(FromAnotherThread(*lock, &ISharedLock::TryWriteLock));
}

TEST_F(PosixSharedLockTest, TryWriteLockOnAFreeLockLeavesItHeldForWriting)
{
    EXPECT_TRUE(lock->TryWriteLock());
    EXPECT_FALSE(FromAnotherThread(*lock, &ISharedLock::TryReadLock));
    lock->Unlock();
}

TEST_F(PosixSharedLockTest, TryOperationsAnswerThroughTheConverter)
{
    lock->WriteLock();
    FromAnotherThread(*lock, &ISharedLock::TryReadLock);
    FromAnotherThread(*lock, &ISharedLock::TryWriteLock);
    lock->Unlock();
    EXPECT_TRUE(lock->TryReadLock());
    lock->Unlock();
    EXPECT_EQ(converter->NativeResults(), (std::vector<int>{EBUSY, EBUSY, 0}));
}

TEST_F(PosixSharedLockTest, WritersNeverOverlapReadersOrOtherWriters)
{
    // Every holder counts itself in and out; a writer that meets anyone, or a
    // reader that meets a writer, is an overlap.
    std::atomic<int> readersInside{0};
    std::atomic<int> writersInside{0};
    std::atomic<int> overlaps{0};
    std::atomic<int> sharedReads{0};
    constexpr int rounds = 3000;
    auto writer = [&] {
        for (int round = 0; round < rounds; ++round) {
            lock->WriteLock();
            if (writersInside.fetch_add(1) != 0 || readersInside.load() != 0)
                overlaps.fetch_add(1);
            std::this_thread::yield();
            if (readersInside.load() != 0)
                overlaps.fetch_add(1);
            writersInside.fetch_sub(1);
            lock->Unlock();
        }
    };
    auto reader = [&] {
        for (int round = 0; round < rounds; ++round) {
            lock->ReadLock();
            if (readersInside.fetch_add(1) != 0)
                sharedReads.fetch_add(1);
            if (writersInside.load() != 0)
                overlaps.fetch_add(1);
            std::this_thread::yield();
            if (writersInside.load() != 0)
                overlaps.fetch_add(1);
            readersInside.fetch_sub(1);
            lock->Unlock();
        }
    };
    std::vector<std::thread> threads;
    threads.emplace_back(writer);
    threads.emplace_back(writer);
    threads.emplace_back(reader);
    threads.emplace_back(reader);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(overlaps.load(), 0);
}

TEST(PosixSharedLockFatalTest, TryOperationsWithoutAConverterAreFatal)
{
    SmartPtr<ISharedLock> lock(new PosixSharedLock(nullptr));
    EXPECT_FATAL_MESSAGE(lock->TryReadLock(), L"SmartPtr<T>-> NULL reference");
    EXPECT_FATAL_MESSAGE(lock->TryWriteLock(), L"SmartPtr<T>-> NULL reference");
}

TEST(PosixSharedLockFatalTest, BlockingOperationsWithoutAConverterNeedNone)
{
    SmartPtr<ISharedLock> lock(new PosixSharedLock(nullptr));
    lock->ReadLock();
    lock->Unlock();
    lock->WriteLock();
    lock->Unlock();
}

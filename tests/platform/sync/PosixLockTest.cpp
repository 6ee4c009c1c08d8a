// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/PosixResultPassFail.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/PosixLock.h>
#include <KivTest/FakeTimespecOffsetCalculator.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>
#include <KivTest/RecordingResultConverter.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <deque>
#include <functional>
#include <set>
#include <thread>
#include <vector>

using namespace KivPlr;
using KivTest::FakeTimespecOffsetCalculator;
using KivTest::RecordingResultConverter;

namespace {

class PosixLockTest : public ::testing::Test
{
protected:
    SmartPtr<FakeTimespecOffsetCalculator> calculator{new FakeTimespecOffsetCalculator};
    SmartPtr<RecordingResultConverter> converter{new RecordingResultConverter};
    SmartPtr<ILock> lock{new PosixLock(calculator.Get(), converter.Get())};
};

bool TryLockFromAnotherThread(ILock& lock)
{
    bool acquired = false;
    std::thread other([&] {
        acquired = lock.TryLock();
        if (acquired)
            lock.Unlock();
    });
    other.join();
    return acquired;
}

// Takes the lock, applies \p change, wakes one or all waiters, unlocks.
void ChangeAndNotify(ILock& lock, bool notifyAll, const std::function<void()>& change)
{
    lock.Lock();
    change();
    _Result result = ResultFail;
    if (notifyAll)
        lock.NotifyAll(result);
    else
        lock.NotifyOne(result);
    EXPECT_EQ(result, ResultPass);
    lock.Unlock();
}

// A thread that sets \p ready under the lock and notifies.
std::thread StartNotifier(ILock& lock, bool& ready, bool notifyAll)
{
    return std::thread(
        [&lock, &ready, notifyAll] { ChangeAndNotify(lock, notifyAll, [&] { ready = true; }); });
}

// Two producers hand out disjoint item numbers through a queue guarded by the
// monitor; two consumers take them until each receives a stop item (-1). The
// producers wake consumers with NotifyOne or NotifyAll.
std::multiset<int> RunProducersAndConsumers(ILock& lock, bool notifyAll)
{
    constexpr int itemsPerProducer = 2000;
    std::deque<int> queue;
    std::multiset<int> taken;
    auto push = [&](int item) {
        ChangeAndNotify(lock, notifyAll, [&] { queue.push_back(item); });
    };
    auto consume = [&] {
        for (;;) {
            lock.Lock();
            while (queue.empty()) {
                _Result result = ResultFail;
                lock.Wait(result);
                EXPECT_EQ(result, ResultPass);
            }
            int item = queue.front();
            queue.pop_front();
            if (item >= 0)
                taken.insert(item);
            lock.Unlock();
            if (item < 0)
                return;
        }
    };
    std::vector<std::thread> threads;
    threads.emplace_back(consume);
    threads.emplace_back(consume);
    for (int producer = 0; producer < 2; ++producer)
        threads.emplace_back([&, producer] {
            for (int index = 0; index < itemsPerProducer; ++index)
                push(producer * itemsPerProducer + index);
        });
    threads[2].join();
    threads[3].join();
    push(-1);
    push(-1);
    threads[0].join();
    threads[1].join();
    return taken;
}

std::multiset<int> AllItems()
{
    std::multiset<int> all;
    for (int item = 0; item < 4000; ++item)
        all.insert(item);
    return all;
}

} // namespace

TEST_F(PosixLockTest, NewLockHasCountZero)
{
    ILock* fresh = new PosixLock(calculator.Get(), converter.Get());
    EXPECT_EQ(fresh->GetReferenceCount(), 0u);
    SmartPtr<ILock> owner(fresh);
}

TEST_F(PosixLockTest, KeepsItsOwnReferenceOnEachHelper)
{
    EXPECT_EQ(calculator->GetReferenceCount(), 2u);
    EXPECT_EQ(converter->GetReferenceCount(), 2u);
    lock.Reset();
    EXPECT_EQ(calculator->GetReferenceCount(), 1u);
    EXPECT_EQ(converter->GetReferenceCount(), 1u);
}

TEST_F(PosixLockTest, TryLockOnAFreeLockAnswersTrueAndLeavesItHeld)
{
    EXPECT_TRUE(lock->TryLock());
    EXPECT_FALSE(TryLockFromAnotherThread(*lock));
    lock->Unlock();
    EXPECT_TRUE(TryLockFromAnotherThread(*lock));
}

TEST_F(PosixLockTest, TryLockFromAnotherThreadAnswersFalseWhileHeld)
{
    lock->Lock();
    EXPECT_FALSE(TryLockFromAnotherThread(*lock));
    lock->Unlock();
    EXPECT_TRUE(TryLockFromAnotherThread(*lock));
}

TEST_F(PosixLockTest, LockIsNotRecursive)
{
    // A recursive mutex would let its holder take it again; this one refuses.
    lock->Lock();
    EXPECT_FALSE(lock->TryLock());
    lock->Unlock();
}

TEST_F(PosixLockTest, NotifyWithoutWaitersSucceeds)
{
    _Result result = ResultFail;
    lock->Lock();
    lock->NotifyOne(result);
    EXPECT_EQ(result, ResultPass);
    result = ResultFail;
    lock->NotifyAll(result);
    EXPECT_EQ(result, ResultPass);
    lock->Unlock();
    EXPECT_EQ(converter->NativeResults(), (std::vector<int>{0, 0}));
}

TEST_F(PosixLockTest, TimedWaitThatTimesOutReportsFailureNoEarlierThanItsDeadline)
{
    struct timespec deadline = calculator->SetDeadlineFromNow(50);
    _Result result = ResultPass;
    lock->Lock();
    lock->Wait(50, result);
    struct timespec returned = KivTest::RealTimeNow();
    lock->Unlock();
    EXPECT_EQ(result, ResultFail);
    EXPECT_TRUE(KivTest::NotAfter(deadline, returned));
    EXPECT_EQ(calculator->Requests(), std::vector<std::uint32_t>{50});
    EXPECT_EQ(converter->NativeResults(), std::vector<int>{ETIMEDOUT});
}

TEST_F(PosixLockTest, TimedWaitComputesItsDeadlineAtEachCall)
{
    _Result result = ResultPass;
    lock->Lock();
    lock->Wait(0, result);
    lock->Wait(1999, result);
    lock->Unlock();
    EXPECT_EQ(calculator->Requests(), (std::vector<std::uint32_t>{0, 1999}));
}

TEST_F(PosixLockTest, WaitOfAlmostForeverIsStillATimedWait)
{
    // The fake's deadline is in 1970: the wait asks for it and times out.
    _Result result = ResultPass;
    lock->Lock();
    lock->Wait(0xFFFFFFFEu, result);
    lock->Unlock();
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(calculator->Requests(), std::vector<std::uint32_t>{0xFFFFFFFEu});
}

TEST_F(PosixLockTest, WaitForeverComputesNoDeadlineAndWakesOnANotification)
{
    // The fake's deadline is in 1970, so a timed wait would return at once;
    // the wait can only end through the notification.
    bool ready = false;
    _Result result = ResultFail;
    lock->Lock();
    std::thread notifier = StartNotifier(*lock, ready, false);
    while (!ready) {
        lock->Wait(0xFFFFFFFFu, result);
        EXPECT_EQ(result, ResultPass);
    }
    lock->Unlock();
    notifier.join();
    EXPECT_TRUE(calculator->Requests().empty());
}

TEST_F(PosixLockTest, WaitWithoutTimeoutWakesOnNotifyAll)
{
    bool ready = false;
    _Result result = ResultFail;
    lock->Lock();
    std::thread notifier = StartNotifier(*lock, ready, true);
    while (!ready)
        lock->Wait(result);
    lock->Unlock();
    notifier.join();
    EXPECT_EQ(result, ResultPass);
    EXPECT_TRUE(calculator->Requests().empty());
}

TEST_F(PosixLockTest, WaitReleasesTheLockWhileWaitingAndHoldsItAfter)
{
    // The notifier can only take the lock because the waiter released it.
    calculator->SetDeadlineFromNow(60000);
    bool ready = false;
    _Result result = ResultFail;
    lock->Lock();
    std::thread notifier = StartNotifier(*lock, ready, false);
    while (!ready)
        lock->Wait(60000, result);
    EXPECT_FALSE(TryLockFromAnotherThread(*lock));
    lock->Unlock();
    notifier.join();
    EXPECT_EQ(result, ResultPass);
}

TEST_F(PosixLockTest, ProducersAndConsumersLoseNoItemWithNotifyOne)
{
    EXPECT_EQ(RunProducersAndConsumers(*lock, false), AllItems());
}

TEST_F(PosixLockTest, ProducersAndConsumersLoseNoItemWithNotifyAll)
{
    EXPECT_EQ(RunProducersAndConsumers(*lock, true), AllItems());
}

TEST(PosixLockFatalTest, NotifyWithoutAConverterIsFatal)
{
    SmartPtr<IPosixTimespecOffsetCalculator> calculator(new FakeTimespecOffsetCalculator);
    SmartPtr<ILock> lock(new PosixLock(calculator.Get(), nullptr));
    _Result result = ResultPass;
    EXPECT_FATAL_MESSAGE(lock->NotifyOne(result), L"SmartPtr<T>-> NULL reference");
    EXPECT_FATAL_MESSAGE(lock->NotifyAll(result), L"SmartPtr<T>-> NULL reference");
}

TEST(PosixLockFatalTest, WaitWithoutAConverterIsFatal)
{
    SmartPtr<IPosixTimespecOffsetCalculator> calculator(new FakeTimespecOffsetCalculator);
    SmartPtr<ILock> lock(new PosixLock(calculator.Get(), nullptr));
    _Result result = ResultPass;
    EXPECT_FATAL_MESSAGE(lock->Lock(); lock->Wait(result), L"SmartPtr<T>-> NULL reference");
    EXPECT_FATAL_MESSAGE(lock->Lock(); lock->Wait(10, result), L"SmartPtr<T>-> NULL reference");
}

TEST(PosixLockFatalTest, TimedWaitWithoutACalculatorIsFatal)
{
    SmartPtr<IResultConverter> converter(new PosixResultPassFail);
    SmartPtr<ILock> lock(new PosixLock(nullptr, converter.Get()));
    _Result result = ResultPass;
    EXPECT_FATAL_MESSAGE(lock->Lock(); lock->Wait(10, result), L"SmartPtr<T>-> NULL reference");
}

namespace {

// A lock whose waits time out at once (the fake calculator answers 1970) and
// whose results go through the converter the platform gives its locks.
SmartPtr<ILock> LockWithTheRealConverter()
{
    SmartPtr<IPosixTimespecOffsetCalculator> calculator(new FakeTimespecOffsetCalculator);
    SmartPtr<IResultConverter> converter(new PosixResultPassFail);
    return SmartPtr<ILock>(new PosixLock(calculator.Get(), converter.Get()));
}

} // namespace

TEST(PosixLockFatalTest, NotifyWithANullResultReferenceEndsThroughTheConverter)
{
    SmartPtr<ILock> lock = LockWithTheRealConverter();
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<_Result>([&](_Result& none) {
                             lock->Lock();
                             lock->NotifyOne(none);
                         }),
                         L"PosixResultPasFail: result NULL reference.");
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<_Result>([&](_Result& none) {
                             lock->Lock();
                             lock->NotifyAll(none);
                         }),
                         L"PosixResultPasFail: result NULL reference.");
}

TEST(PosixLockFatalTest, TimedWaitWithANullResultReferenceEndsThroughTheConverter)
{
    SmartPtr<ILock> lock = LockWithTheRealConverter();
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<_Result>([&](_Result& none) {
                             lock->Lock();
                             lock->Wait(10, none);
                         }),
                         L"PosixResultPasFail: result NULL reference.");
}

TEST(PosixLockFatalTest, WaitWithANullResultReferenceEndsThroughTheConverterOnceWoken)
{
    // The wait without time-out returns only when woken, so a second thread
    // notifies: it gets the mutex only once the wait has released it.
    SmartPtr<ILock> lock = LockWithTheRealConverter();
    auto notifyOnceWaiting = [&] {
        std::thread([&] {
            _Result notified = ResultFail;
            lock->Lock();
            lock->NotifyAll(notified);
            lock->Unlock();
        }).detach();
    };
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<_Result>([&](_Result& none) {
                             lock->Lock();
                             notifyOnceWaiting();
                             lock->Wait(none);
                         }),
                         L"PosixResultPasFail: result NULL reference.");
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<_Result>([&](_Result& none) {
                             lock->Lock();
                             notifyOnceWaiting();
                             lock->Wait(WaitForever, none);
                         }),
                         L"PosixResultPasFail: result NULL reference.");
}

TEST(PosixLockFatalTest, LockingWithoutHelpersNeedsNone)
{
    SmartPtr<ILock> lock(new PosixLock(nullptr, nullptr));
    lock->Lock();
    lock->Unlock();
    EXPECT_TRUE(lock->TryLock());
    lock->Unlock();
}

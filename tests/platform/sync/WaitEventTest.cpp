// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/PosixResultPassFail.h>
#include <KivPlr/sync/PosixLock.h>
#include <KivPlr/sync/WaitEvent.h>
#include <KivTest/FakeTimespecOffsetCalculator.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/RecordingLock.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

using namespace KivPlr;
using KivTest::RecordingLock;

TEST(WaitEventTest, NewEventHasCountZero)
{
    SmartPtr<ILock> lock(new RecordingLock);
    IWaitEvent* fresh = new WaitEvent(lock.Get());
    EXPECT_EQ(fresh->GetReferenceCount(), 0u);
    SmartPtr<IWaitEvent> owner(fresh);
}

TEST(WaitEventTest, WaitIsOneWaitOnTheMonitorUnderItsLock)
{
    SmartPtr<RecordingLock> lock(new RecordingLock);
    SmartPtr<IWaitEvent> event(new WaitEvent(lock.Get()));
    EXPECT_TRUE(event->Wait());
    EXPECT_TRUE(event->Wait(250));
    EXPECT_EQ(lock->Calls(), (std::vector<std::string>{"Lock", "Wait(4294967295)", "Unlock",
                                                       "Lock", "Wait(250)", "Unlock"}));
}

TEST(WaitEventTest, AFailedMonitorWaitAnswersFalse)
{
    SmartPtr<RecordingLock> lock(new RecordingLock);
    lock->SetWaitResult(ResultFail);
    SmartPtr<IWaitEvent> event(new WaitEvent(lock.Get()));
    EXPECT_FALSE(event->Wait(10));
    EXPECT_EQ(lock->Depth(), 0);
}

TEST(WaitEventTest, SignalNotifiesAllUnderTheLock)
{
    SmartPtr<RecordingLock> lock(new RecordingLock);
    SmartPtr<IWaitEvent> event(new WaitEvent(lock.Get()));
    event->Signal();
    EXPECT_EQ(lock->Calls(), (std::vector<std::string>{"Lock", "NotifyAll", "Unlock"}));
}

TEST(WaitEventTest, SignalWakesAThreadWaitingOnARealMonitor)
{
    SmartPtr<IPosixTimespecOffsetCalculator> calculator(new KivTest::FakeTimespecOffsetCalculator);
    SmartPtr<IResultConverter> converter(new PosixResultPassFail);
    SmartPtr<ILock> lock(new PosixLock(calculator.Get(), converter.Get()));
    SmartPtr<IWaitEvent> event(new WaitEvent(lock.Get()));
    std::atomic<bool> signalling{false};
    std::atomic<bool> woke{false};
    std::atomic<bool> returnedBeforeSignal{false};
    std::thread waiter([&] {
        EXPECT_TRUE(event->Wait());
        returnedBeforeSignal.store(!signalling.load());
        woke.store(true);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));  // let it reach the wait
    signalling.store(true);
    // A signal sent before the waiter waits is not remembered: keep sending
    // until it has woken.
    while (!woke.load()) {
        event->Signal();
        std::this_thread::yield();
    }
    waiter.join();
    EXPECT_FALSE(returnedBeforeSignal.load());
}

TEST(WaitEventTest, AMissingMonitorIsFatal)
{
    SmartPtr<IWaitEvent> event(new WaitEvent(nullptr));
    EXPECT_FATAL_MESSAGE(event->Wait(), L"SmartPtr<T>-> NULL reference");
    EXPECT_FATAL_MESSAGE(event->Signal(), L"SmartPtr<T>-> NULL reference");
}

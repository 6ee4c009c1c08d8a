// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/PosixResultPassFail.h>
#include <KivPlr/sync/ManualResetEvent.h>
#include <KivPlr/sync/PosixLock.h>
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

namespace {

// A manual-reset event over a real monitor whose timed waits end at once
// (the fake calculator's deadline is in 1970).
class ManualResetEventOnARealMonitor : public ::testing::Test
{
protected:
    SmartPtr<IPosixTimespecOffsetCalculator> calculator{new KivTest::FakeTimespecOffsetCalculator};
    SmartPtr<IResultConverter> converter{new PosixResultPassFail};
    SmartPtr<ILock> lock{new PosixLock(calculator.Get(), converter.Get())};
    SmartPtr<IManualResetEvent> event{new ManualResetEvent(lock.Get())};
};

} // namespace

TEST(ManualResetEventTest, NewEventIsNotSetAndHasCountZero)
{
    SmartPtr<ILock> lock(new RecordingLock);
    IManualResetEvent* fresh = new ManualResetEvent(lock.Get());
    EXPECT_EQ(fresh->GetReferenceCount(), 0u);
    SmartPtr<IManualResetEvent> owner(fresh);
    EXPECT_FALSE(owner->IsSet());
}

TEST(ManualResetEventTest, SetNotifiesAllThenMarksTheEventSetUnderTheLock)
{
    SmartPtr<RecordingLock> lock(new RecordingLock);
    SmartPtr<IManualResetEvent> event(new ManualResetEvent(lock.Get()));
    event->Set();
    EXPECT_TRUE(event->IsSet());
    EXPECT_EQ(lock->Calls(), (std::vector<std::string>{"Lock", "NotifyAll", "Unlock"}));
}

TEST(ManualResetEventTest, ResetClearsTheFlagUnderTheLock)
{
    SmartPtr<RecordingLock> lock(new RecordingLock);
    SmartPtr<IManualResetEvent> event(new ManualResetEvent(lock.Get()));
    event->Set();
    event->Reset();
    EXPECT_FALSE(event->IsSet());
    EXPECT_EQ(lock->Calls(), (std::vector<std::string>{"Lock", "NotifyAll", "Unlock", "Lock",
                                                       "Unlock"}));
}

TEST(ManualResetEventTest, IsSetDoesNotTakeTheLock)
{
    SmartPtr<RecordingLock> lock(new RecordingLock);
    SmartPtr<IManualResetEvent> event(new ManualResetEvent(lock.Get()));
    event->IsSet();
    EXPECT_TRUE(lock->Calls().empty());
}

TEST(ManualResetEventTest, WaitingOnASetEventSucceedsAtOnceWithoutWaiting)
{
    SmartPtr<RecordingLock> lock(new RecordingLock);
    lock->SetWaitResult(ResultFail);  // a wait, had there been one, would fail
    SmartPtr<IManualResetEvent> event(new ManualResetEvent(lock.Get()));
    event->Set();
    EXPECT_TRUE(event->Wait());
    EXPECT_TRUE(event->Wait(100));
    EXPECT_EQ(lock->Calls(), (std::vector<std::string>{"Lock", "NotifyAll", "Unlock", "Lock",
                                                       "Unlock", "Lock", "Unlock"}));
}

TEST(ManualResetEventTest, TheFlagIsTestedOnceBeforeOneWaitAndNotAfterIt)
{
    // The monitor's wait returns at once with success, like a spurious
    // wake-up: the event reports success although nobody set it.
    SmartPtr<RecordingLock> lock(new RecordingLock);
    SmartPtr<IManualResetEvent> event(new ManualResetEvent(lock.Get()));
    EXPECT_TRUE(event->Wait());
    EXPECT_FALSE(event->IsSet());
    EXPECT_EQ(lock->Calls(),
              (std::vector<std::string>{"Lock", "Wait(4294967295)", "Unlock"}));
}

TEST(ManualResetEventTest, AFailedWaitAnswersFalse)
{
    SmartPtr<RecordingLock> lock(new RecordingLock);
    lock->SetWaitResult(ResultFail);
    SmartPtr<IManualResetEvent> event(new ManualResetEvent(lock.Get()));
    EXPECT_FALSE(event->Wait(30));
    EXPECT_EQ(lock->Calls(), (std::vector<std::string>{"Lock", "Wait(30)", "Unlock"}));
}

TEST_F(ManualResetEventOnARealMonitor, ATimedWaitOnAnUnsetEventTimesOut)
{
    EXPECT_FALSE(event->Wait(20));
    EXPECT_FALSE(event->IsSet());
}

TEST_F(ManualResetEventOnARealMonitor, AfterResetAWaiterBlocksUntilSet)
{
    event->Set();
    EXPECT_TRUE(event->Wait(0));
    event->Reset();
    EXPECT_FALSE(event->Wait(0));  // no longer set: the wait times out
    std::atomic<bool> setting{false};
    std::atomic<bool> returnedBeforeSet{false};
    std::thread waiter([&] {
        EXPECT_TRUE(event->Wait());
        returnedBeforeSet.store(!setting.load());
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));  // let it reach the wait
    setting.store(true);
    event->Set();
    waiter.join();
    EXPECT_FALSE(returnedBeforeSet.load());
    EXPECT_TRUE(event->IsSet());
}

TEST_F(ManualResetEventOnARealMonitor, SetWakesEveryWaiter)
{
    std::vector<std::thread> waiters;
    std::atomic<int> woken{0};
    for (int index = 0; index < 3; ++index)
        waiters.emplace_back([&] {
            while (!event->IsSet())
                event->Wait();
            woken.fetch_add(1);
        });
    event->Set();
    for (std::thread& waiter : waiters)
        waiter.join();
    EXPECT_EQ(woken.load(), 3);
}

TEST(ManualResetEventFatalTest, AMissingMonitorIsFatal)
{
    SmartPtr<IManualResetEvent> event(new ManualResetEvent(nullptr));
    EXPECT_FATAL_MESSAGE(event->Set(), L"SmartPtr<T>-> NULL reference");
    EXPECT_FATAL_MESSAGE(event->Reset(), L"SmartPtr<T>-> NULL reference");
    EXPECT_FATAL_MESSAGE(event->Wait(), L"SmartPtr<T>-> NULL reference");
    EXPECT_FALSE(event->IsSet());
}

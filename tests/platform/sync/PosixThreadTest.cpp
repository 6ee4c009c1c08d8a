// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/LinuxPlatform.h>
#include <KivPlr/core/PosixResultPassFail.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/PassiveThreadObserver.h>
#include <KivPlr/sync/PosixThread.h>
#include <KivPlr/sync/PosixThreadPriorityMap.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <pthread.h>
#include <semaphore.h>
#include <string>
#include <thread>
#include <vector>

using namespace KivPlr;

namespace {

// Everything a test body and the observer write down, in order.
class EventLog
{
public:
    void Add(const std::string& event)
    {
        std::lock_guard<std::mutex> hold(mutex);
        events.push_back(event);
    }
    std::vector<std::string> Events()
    {
        std::lock_guard<std::mutex> hold(mutex);
        return events;
    }

private:
    std::mutex mutex;
    std::vector<std::string> events;
};

class RecordingObserver : public Object, public IThreadObserver
{
public:
    explicit RecordingObserver(EventLog& log) : log(log) {}

    void BodyStarting(IThread& thread) override
    {
        log.Add("starting");
        startingThread.store(&thread);
    }
    void BodyFinished(IThread& thread) override
    {
        // While the body has just ended, the running thread still holds its
        // object: the count never drops to 0 under it.
        countAtFinish.store(thread.GetReferenceCount());
        log.Add("finished");
    }

    std::atomic<IThread*> startingThread{nullptr};
    std::atomic<std::uint32_t> countAtFinish{0};

private:
    EventLog& log;
};

// A priority map that records what each conversion was handed and answered.
class RecordingPriorityMap : public PosixThreadPriorityMap
{
public:
    void Convert(std::int32_t platformPriority, int& nPosixPriority, _Result& result) override
    {
        preloaded.push_back(nPosixPriority);
        PosixThreadPriorityMap::Convert(platformPriority, nPosixPriority, result);
        results.push_back(result);
    }

    std::vector<int> preloaded;
    std::vector<_Result> results;
};

// What a body saw of its own thread.
struct Inside
{
    EventLog* log = nullptr;
    int policy = -1;
    int posixPriority = -1;
    std::size_t stackSize = 0;
};

void RecordSchedulingAndStack(void* argument)
{
    Inside* inside = static_cast<Inside*>(argument);
    struct sched_param scheduling = {};
    pthread_getschedparam(pthread_self(), &inside->policy, &scheduling);
    inside->posixPriority = scheduling.sched_priority;
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) == 0) {
        pthread_attr_getstacksize(&attributes, &inside->stackSize);
        pthread_attr_destroy(&attributes);
    }
    if (inside->log != nullptr)
        inside->log->Add("body");
}

void* RecordStackOfAPlainThread(void* argument)
{
    RecordSchedulingAndStack(argument);
    return nullptr;
}

// Blocks at a cancellation point until cancelled or the semaphore is posted.
void WaitOnSemaphore(void* argument)
{
    sem_wait(static_cast<sem_t*>(argument));
}

class PosixThreadTest : public ::testing::Test
{
protected:
    EventLog log;
    SmartPtr<RecordingObserver> observer{new RecordingObserver(log)};
    SmartPtr<RecordingPriorityMap> priorities{new RecordingPriorityMap};
    SmartPtr<IResultConverter> converter{new PosixResultPassFail};
    sem_t release;  // what StartBlocked's bodies wait for

    PosixThreadTest()
    {
        LinuxPlatform::FillPriorityLadder(*priorities);
        sem_init(&release, 0, 0);
    }
    ~PosixThreadTest() override { sem_destroy(&release); }

    SmartPtr<IThread> NewThread(std::uint32_t stackSize = 0)
    {
        return SmartPtr<IThread>(
            new PosixThread(observer.Get(), priorities.Get(), converter.Get(), stackSize));
    }

    // Starts \p thread with a body that records what it sees, joins it, and
    // returns what the body saw.
    Inside RunAndJoin(IThread& thread, EventLog* bodyLog = nullptr)
    {
        Inside inside;
        inside.log = bodyLog;
        _Result result = ResultFail;
        EXPECT_TRUE(thread.Start(&RecordSchedulingAndStack, &inside, result));
        EXPECT_EQ(result, ResultPass);
        EXPECT_TRUE(thread.Join());
        return inside;
    }

    // Runs a new thread at platform priority \p priority.
    Inside RunAt(std::int32_t priority)
    {
        SmartPtr<IThread> thread = NewThread();
        _Result result = ResultFail;
        thread->SetPriority(priority, result);
        return RunAndJoin(*thread);
    }

    // Starts a new thread whose body waits until \p release is posted.
    SmartPtr<IThread> StartBlocked()
    {
        SmartPtr<IThread> thread = NewThread();
        _Result result = ResultFail;
        EXPECT_TRUE(thread->Start(&WaitOnSemaphore, &release, result));
        return thread;
    }

    // What a thread made by pthread_create with default attributes sees.
    static Inside RunPlainThread()
    {
        Inside plain;
        pthread_t other;
        if (pthread_create(&other, nullptr, &RecordStackOfAPlainThread, &plain) == 0)
            pthread_join(other, nullptr);
        return plain;
    }

    // The default attributes' scheduling priority.
    static int DefaultAttributePriority()
    {
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        struct sched_param scheduling = {};
        pthread_attr_getschedparam(&attributes, &scheduling);
        pthread_attr_destroy(&attributes);
        return scheduling.sched_priority;
    }
};

} // namespace

TEST_F(PosixThreadTest, NewThreadHasCountZero)
{
    IThread* fresh = new PosixThread(observer.Get(), priorities.Get(), converter.Get(), 0);
    EXPECT_EQ(fresh->GetReferenceCount(), 0u);
    SmartPtr<IThread> owner(fresh);
}

TEST_F(PosixThreadTest, StartRunsTheBodyOnceWithItsArgumentAndJoinWaitsForIt)
{
    SmartPtr<IThread> thread = NewThread();
    Inside inside = RunAndJoin(*thread, &log);
    std::vector<std::string> events = log.Events();
    EXPECT_EQ(std::count(events.begin(), events.end(), "body"), 1);
    EXPECT_EQ(inside.policy, SCHED_OTHER);  // the body ran and wrote its argument
}

TEST_F(PosixThreadTest, ObserverHearsOneCallBeforeAndOneAfterTheBody)
{
    SmartPtr<IThread> thread = NewThread();
    RunAndJoin(*thread, &log);
    EXPECT_EQ(log.Events(), (std::vector<std::string>{"starting", "body", "finished"}));
    EXPECT_EQ(observer->startingThread.load(), thread.Get());
}

TEST_F(PosixThreadTest, EveryLadderPriorityStartsWithPosixPriorityZero)
{
    for (std::int32_t level : {15, 12, 10, 8, 6, 4, 1}) {
        Inside inside = RunAt(level);
        EXPECT_EQ(inside.posixPriority, 0) << level;
        EXPECT_EQ(priorities->results.back(), ResultPass) << level;
    }
    EXPECT_EQ(priorities->results.size(), 7u);
}

TEST_F(PosixThreadTest, AnUnmappedPriorityStillStartsWithTheDefaultAttributesPriority)
{
    Inside inside = RunAt(5);
    EXPECT_EQ(inside.posixPriority, DefaultAttributePriority());
    ASSERT_EQ(priorities->results.size(), 1u);
    EXPECT_EQ(priorities->results[0], ResultFail);
    // The conversion was handed the attributes' own priority to keep.
    EXPECT_EQ(priorities->preloaded[0], DefaultAttributePriority());
}

TEST_F(PosixThreadTest, AStackSizeIsApplied)
{
    Inside plain = RunPlainThread();
    constexpr std::uint32_t requested = 1024u * 1024u;
    if (plain.stackSize <= requested)
        GTEST_SKIP() << "the default stack (" << plain.stackSize << " bytes) is not above 1 MiB";
    SmartPtr<IThread> thread = NewThread(requested);
    Inside inside = RunAndJoin(*thread);
    // The system may round up (or reuse a cached stack of a similar size),
    // but never gives less, and this size is well below the default.
    EXPECT_GE(inside.stackSize, requested);
    EXPECT_LT(inside.stackSize, plain.stackSize);
}

TEST_F(PosixThreadTest, StackSizeZeroLeavesTheSystemDefault)
{
    Inside plain = RunPlainThread();
    SmartPtr<IThread> thread = NewThread(0);
    Inside inside = RunAndJoin(*thread);
    EXPECT_NE(plain.stackSize, 0u);
    EXPECT_EQ(inside.stackSize, plain.stackSize);
}

TEST_F(PosixThreadTest, CancelStopsABlockedThreadAndTheObserverStillHearsTheEnd)
{
    SmartPtr<IThread> thread = StartBlocked();
    _Result result = ResultFail;
    thread->Cancel(result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_TRUE(thread->Join());
    EXPECT_EQ(log.Events(), (std::vector<std::string>{"starting", "finished"}));
}

TEST_F(PosixThreadTest, YieldOfAStartedThreadSucceeds)
{
    SmartPtr<IThread> thread = StartBlocked();
    _Result result = ResultFail;
    thread->Yield(result);
    EXPECT_EQ(result, ResultPass);
    sem_post(&release);
    EXPECT_TRUE(thread->Join());
}

TEST_F(PosixThreadTest, NameAndPriorityAfterTheStartReportAlreadyStarted)
{
    SmartPtr<IThread> thread = StartBlocked();
    const std::wstring name = L"late";
    _Result result = ResultFail;
    thread->SetName(&name, result);
    EXPECT_EQ(result, ResultAlreadyStarted);
    result = ResultFail;
    thread->SetPriority(10, result);
    EXPECT_EQ(result, ResultAlreadyStarted);
    sem_post(&release);
    EXPECT_TRUE(thread->Join());
}

TEST_F(PosixThreadTest, MissingOutValuesReportBadArgument)
{
    SmartPtr<IThread> thread = NewThread();
    _Result result = ResultPass;
    thread->GetPriority(nullptr, result);
    EXPECT_EQ(result, ResultBadArgument);
    result = ResultPass;
    thread->GetName(nullptr, result);
    EXPECT_EQ(result, ResultBadArgument);
}

TEST_F(PosixThreadTest, AJoinedThreadCanBeStartedAgain)
{
    SmartPtr<IThread> thread = NewThread();
    RunAndJoin(*thread, &log);
    RunAndJoin(*thread, &log);
    EXPECT_EQ(log.Events(), (std::vector<std::string>{"starting", "body", "finished", "starting",
                                                      "body", "finished"}));
}

TEST_F(PosixThreadTest, ARunningThreadKeepsItsObjectUntilTheBodyHasEnded)
{
    StartBlocked();  // the last outside reference goes while the body still waits
    sem_post(&release);
    // The thread object, and with it its reference on the observer, goes
    // once the thread has finished on its own.
    auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (observer->GetReferenceCount() != 1u && std::chrono::steady_clock::now() < giveUp)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(observer->GetReferenceCount(), 1u);
    EXPECT_EQ(observer->countAtFinish.load(), 1u);
    EXPECT_EQ(log.Events(), (std::vector<std::string>{"starting", "finished"}));
}

TEST_F(PosixThreadTest, StartWithoutAResultConverterIsFatal)
{
    SmartPtr<IThread> thread(new PosixThread(observer.Get(), priorities.Get(), nullptr, 0));
    _Result result = ResultFail;
    EXPECT_FATAL_MESSAGE(thread->Start(&WaitOnSemaphore, nullptr, result),
                         L"SmartPtr<T>-> NULL reference");
}

TEST_F(PosixThreadTest, StartWithoutAPriorityConverterIsFatal)
{
    SmartPtr<IThread> thread(new PosixThread(observer.Get(), nullptr, converter.Get(), 0));
    _Result result = ResultFail;
    EXPECT_FATAL_MESSAGE(thread->Start(&WaitOnSemaphore, nullptr, result),
                         L"SmartPtr<T>-> NULL reference");
}

TEST_F(PosixThreadTest, StartWithANullResultReferenceEndsThroughTheConverter)
{
    SmartPtr<IThread> thread = NewThread();
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<_Result>(
                             [&](_Result& none) { thread->Start(&WaitOnSemaphore, &release, none); }),
                         L"PosixResultPasFail: result NULL reference.");
}

TEST_F(PosixThreadTest, YieldOfAStartedThreadWithANullResultReferenceEndsThroughTheConverter)
{
    SmartPtr<IThread> thread = StartBlocked();
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<_Result>([&](_Result& none) { thread->Yield(none); }),
                         L"PosixResultPasFail: result NULL reference.");
    sem_post(&release);
    EXPECT_TRUE(thread->Join());
}

TEST_F(PosixThreadTest, ANullObserverIsFatal)
{
    EXPECT_FATAL_MESSAGE(
        SmartPtr<IThread> thread(new PosixThread(nullptr, priorities.Get(), converter.Get(), 0)),
        L"ThreadBase: IThreadObserver* NULL reference");
}

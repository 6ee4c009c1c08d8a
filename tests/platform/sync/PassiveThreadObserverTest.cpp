// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/PassiveThreadObserver.h>
#include <KivPlr/sync/ThreadBase.h>

#include <gtest/gtest.h>

using namespace KivPlr;

namespace {

// A thread that runs its body on the calling thread, to drive the observer.
class InlineThread : public ThreadBase
{
public:
    explicit InlineThread(IThreadObserver* observer) : ThreadBase(observer) {}

protected:
    void StartImpl(ThreadBody body, void* argument, _Result& result) override
    {
        RunBody(body, argument);
        result = ResultPass;
    }
    void JoinImpl(_Result& result) override { result = ResultPass; }
    void YieldImpl(_Result& result) override { result = ResultPass; }
    void CancelImpl(_Result& result) override { result = ResultPass; }
};

void CountUp(void* argument)
{
    ++*static_cast<int*>(argument);
}

} // namespace

TEST(PassiveThreadObserverTest, NewObserverHasCountZero)
{
    IThreadObserver* fresh = new PassiveThreadObserver;
    EXPECT_EQ(fresh->GetReferenceCount(), 0u);
    SmartPtr<IThreadObserver> owner(fresh);
}

TEST(PassiveThreadObserverTest, ABodyRunsBetweenItsSilentNotifications)
{
    SmartPtr<IThreadObserver> observer(new PassiveThreadObserver);
    SmartPtr<IThread> thread(new InlineThread(observer.Get()));
    int runs = 0;
    _Result result = ResultFail;
    EXPECT_TRUE(thread->Start(&CountUp, &runs, result));
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(observer->GetReferenceCount(), 2u);
}

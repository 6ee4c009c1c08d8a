// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/LockBase.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

using namespace KivPlr;

namespace {

// A lock whose protected operations only record that they ran.
class ForwardingProbe : public LockBase
{
public:
    std::vector<std::string> calls;

protected:
    void LockImpl() override { calls.push_back("LockImpl"); }
    bool TryLockImpl() override
    {
        calls.push_back("TryLockImpl");
        return true;
    }
    void UnlockImpl() override { calls.push_back("UnlockImpl"); }
    void NotifyOneImpl(_Result& result) override
    {
        calls.push_back("NotifyOneImpl");
        result = ResultPass;
    }
    void NotifyAllImpl(_Result& result) override
    {
        calls.push_back("NotifyAllImpl");
        result = ResultPass;
    }
    void WaitImpl(_Result& result) override
    {
        calls.push_back("WaitImpl");
        result = ResultPass;
    }
    void TimedWaitImpl(std::uint32_t milliseconds, _Result& result) override
    {
        calls.push_back("TimedWaitImpl(" + std::to_string(milliseconds) + ")");
        result = ResultFail;
    }
};

} // namespace

TEST(LockBaseTest, EachOperationGoesToItsOwnImplementationStep)
{
    ForwardingProbe* probe = new ForwardingProbe;
    SmartPtr<ILock> lock(probe);
    _Result result = ResultFail;
    lock->Lock();
    EXPECT_TRUE(lock->TryLock());
    lock->Unlock();
    lock->NotifyOne(result);
    lock->NotifyAll(result);
    lock->Wait(result);
    EXPECT_EQ(probe->calls, (std::vector<std::string>{"LockImpl", "TryLockImpl", "UnlockImpl",
                                                      "NotifyOneImpl", "NotifyAllImpl",
                                                      "WaitImpl"}));
}

TEST(LockBaseTest, WaitForeverGoesToTheWaitWithoutTimeout)
{
    ForwardingProbe* probe = new ForwardingProbe;
    SmartPtr<ILock> lock(probe);
    _Result result = ResultFail;
    lock->Wait(0xFFFFFFFFu, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(probe->calls, std::vector<std::string>{"WaitImpl"});
}

TEST(LockBaseTest, EveryOtherTimeoutGoesToTheTimedWait)
{
    ForwardingProbe* probe = new ForwardingProbe;
    SmartPtr<ILock> lock(probe);
    _Result result = ResultPass;
    lock->Wait(0u, result);
    lock->Wait(250u, result);
    lock->Wait(0xFFFFFFFEu, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(probe->calls,
              (std::vector<std::string>{"TimedWaitImpl(0)", "TimedWaitImpl(250)",
                                        "TimedWaitImpl(4294967294)"}));
}

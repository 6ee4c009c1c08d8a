// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/SemaphoreBase.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

using namespace KivPlr;

namespace {

// A semaphore whose protected operations only record that they ran.
class ForwardingProbe : public SemaphoreBase
{
public:
    std::vector<std::string> calls;

protected:
    int PostImpl() override
    {
        calls.push_back("PostImpl");
        return -1;
    }
    int GetValueImpl() override
    {
        calls.push_back("GetValueImpl");
        return 7;
    }
    bool TryWaitImpl() override
    {
        calls.push_back("TryWaitImpl");
        return false;
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

TEST(SemaphoreBaseTest, EachOperationGoesToTheStepOfTheSamePosition)
{
    ForwardingProbe* probe = new ForwardingProbe;
    SmartPtr<ISemaphore> semaphore(probe);
    _Result result = ResultFail;
    EXPECT_EQ(semaphore->Post(), -1);
    EXPECT_EQ(semaphore->GetValue(), 7);
    EXPECT_FALSE(semaphore->TryWait());
    semaphore->Wait(result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(probe->calls, (std::vector<std::string>{"PostImpl", "GetValueImpl", "TryWaitImpl",
                                                      "WaitImpl"}));
}

TEST(SemaphoreBaseTest, WaitForeverGoesToTheWaitWithoutTimeout)
{
    ForwardingProbe* probe = new ForwardingProbe;
    SmartPtr<ISemaphore> semaphore(probe);
    _Result result = ResultFail;
    semaphore->Wait(0xFFFFFFFFu, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(probe->calls, std::vector<std::string>{"WaitImpl"});
}

TEST(SemaphoreBaseTest, EveryOtherTimeoutGoesToTheTimedWait)
{
    ForwardingProbe* probe = new ForwardingProbe;
    SmartPtr<ISemaphore> semaphore(probe);
    _Result result = ResultPass;
    semaphore->Wait(0u, result);
    semaphore->Wait(0xFFFFFFFEu, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(probe->calls,
              (std::vector<std::string>{"TimedWaitImpl(0)", "TimedWaitImpl(4294967294)"}));
}

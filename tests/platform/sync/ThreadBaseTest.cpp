// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/PassiveThreadObserver.h>
#include <KivPlr/sync/ThreadBase.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

using namespace KivPlr;

namespace {

// A thread whose protected operations record that they ran and report the
// results the test chose; nothing is started for real.
class ProbeThread : public ThreadBase
{
public:
    explicit ProbeThread(IThreadObserver* observer) : ThreadBase(observer) {}

    std::vector<std::string> calls;
    _Result startResult = ResultPass;
    _Result joinResult = ResultPass;
    _Result yieldResult = ResultPass;
    _Result cancelResult = ResultPass;

protected:
    void StartImpl(ThreadBody, void*, _Result& result) override
    {
        calls.push_back("StartImpl");
        result = startResult;
    }
    void JoinImpl(_Result& result) override
    {
        calls.push_back("JoinImpl");
        result = joinResult;
    }
    void YieldImpl(_Result& result) override
    {
        calls.push_back("YieldImpl");
        result = yieldResult;
    }
    void CancelImpl(_Result& result) override
    {
        calls.push_back("CancelImpl");
        result = cancelResult;
    }
};

void Nothing(void*) {}

class ThreadBaseTest : public ::testing::Test
{
protected:
    SmartPtr<IThreadObserver> observer{new PassiveThreadObserver};
    ProbeThread* probe = new ProbeThread(observer.Get());
    SmartPtr<IThread> thread{probe};

    void StartIt()
    {
        _Result result = ResultFail;
        ASSERT_TRUE(thread->Start(&Nothing, nullptr, result));
        probe->calls.clear();
    }
};

} // namespace

TEST_F(ThreadBaseTest, JoinYieldAndCancelOfANeverStartedThreadSucceedAtOnceAndCallNothing)
{
    _Result yieldResult = ResultFail;
    _Result cancelResult = ResultFail;
    EXPECT_TRUE(thread->Join());
    thread->Yield(yieldResult);
    thread->Cancel(cancelResult);
    EXPECT_EQ(yieldResult, ResultPass);
    EXPECT_EQ(cancelResult, ResultPass);
    EXPECT_TRUE(probe->calls.empty());
}

TEST_F(ThreadBaseTest, ASuccessfulStartReturnsTrueAndCountsAsStarted)
{
    _Result result = ResultFail;
    EXPECT_TRUE(thread->Start(&Nothing, nullptr, result));
    EXPECT_EQ(result, ResultPass);
    thread->Yield(result);
    thread->Cancel(result);
    EXPECT_TRUE(thread->Join());
    EXPECT_EQ(probe->calls,
              (std::vector<std::string>{"StartImpl", "YieldImpl", "CancelImpl", "JoinImpl"}));
}

TEST_F(ThreadBaseTest, AFailedStartReturnsFalseAndLeavesTheThreadUnstarted)
{
    probe->startResult = ResultFail;
    _Result result = ResultPass;
    EXPECT_FALSE(thread->Start(&Nothing, nullptr, result));
    EXPECT_EQ(result, ResultFail);
    EXPECT_TRUE(thread->Join());
    EXPECT_EQ(probe->calls, std::vector<std::string>{"StartImpl"});
}

TEST_F(ThreadBaseTest, TheSecondSuccessValueAlsoCountsAsStarted)
{
    probe->startResult = ResultPassAlternate;
    _Result result = ResultFail;
    EXPECT_TRUE(thread->Start(&Nothing, nullptr, result));
    thread->SetPriority(3, result);
    EXPECT_EQ(result, ResultAlreadyStarted);
}

TEST_F(ThreadBaseTest, StartingAStartedThreadAgainReportsAlreadyStartedAndStartsNothing)
{
    StartIt();
    _Result result = ResultPass;
    EXPECT_FALSE(thread->Start(&Nothing, nullptr, result));
    EXPECT_EQ(result, ResultAlreadyStarted);
    EXPECT_TRUE(probe->calls.empty());
}

TEST_F(ThreadBaseTest, ASuccessfulJoinMakesTheThreadStartableAgain)
{
    StartIt();
    EXPECT_TRUE(thread->Join());
    _Result result = ResultFail;
    EXPECT_TRUE(thread->Start(&Nothing, nullptr, result));
    EXPECT_EQ(probe->calls, (std::vector<std::string>{"JoinImpl", "StartImpl"}));
}

TEST_F(ThreadBaseTest, AFailedJoinLeavesTheThreadStarted)
{
    StartIt();
    probe->joinResult = ResultFail;
    EXPECT_FALSE(thread->Join());
    probe->joinResult = ResultPass;
    EXPECT_TRUE(thread->Join());
    EXPECT_EQ(probe->calls, (std::vector<std::string>{"JoinImpl", "JoinImpl"}));
}

TEST_F(ThreadBaseTest, YieldAndCancelOfAStartedThreadReportTheImplementationsResult)
{
    StartIt();
    probe->yieldResult = ResultFail;
    probe->cancelResult = ResultFail;
    _Result yieldResult = ResultPass;
    _Result cancelResult = ResultPass;
    thread->Yield(yieldResult);
    thread->Cancel(cancelResult);
    EXPECT_EQ(yieldResult, ResultFail);
    EXPECT_EQ(cancelResult, ResultFail);
}

TEST_F(ThreadBaseTest, NameIsEmptyAtFirstAndStoredBeforeTheStart)
{
    std::wstring name = L"not read";
    _Result result = ResultFail;
    thread->GetName(&name, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(name, L"");
    const std::wstring worker = L"worker";
    thread->SetName(&worker, result);
    EXPECT_EQ(result, ResultPass);
    thread->GetName(&name, result);
    EXPECT_EQ(name, L"worker");
}

TEST_F(ThreadBaseTest, PriorityIsZeroAtFirstAndStoredBeforeTheStart)
{
    std::int32_t priority = -1;
    _Result result = ResultFail;
    thread->GetPriority(&priority, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(priority, 0);
    thread->SetPriority(12, result);
    EXPECT_EQ(result, ResultPass);
    thread->GetPriority(&priority, result);
    EXPECT_EQ(priority, 12);
}

TEST_F(ThreadBaseTest, NameAndPriorityAfterTheStartReportAlreadyStartedAndKeepTheOldValues)
{
    const std::wstring before = L"before";
    _Result result = ResultFail;
    thread->SetName(&before, result);
    thread->SetPriority(4, result);
    StartIt();
    const std::wstring after = L"after";
    thread->SetName(&after, result);
    EXPECT_EQ(result, ResultAlreadyStarted);
    result = ResultFail;
    thread->SetPriority(6, result);
    EXPECT_EQ(result, ResultAlreadyStarted);
    std::wstring name;
    std::int32_t priority = 0;
    thread->GetName(&name, result);
    thread->GetPriority(&priority, result);
    EXPECT_EQ(name, L"before");
    EXPECT_EQ(priority, 4);
}

TEST_F(ThreadBaseTest, MissingValuesReportBadArgument)
{
    _Result result = ResultPass;
    thread->SetName(nullptr, result);
    EXPECT_EQ(result, ResultBadArgument);
    result = ResultPass;
    thread->GetName(nullptr, result);
    EXPECT_EQ(result, ResultBadArgument);
    result = ResultPass;
    thread->GetPriority(nullptr, result);
    EXPECT_EQ(result, ResultBadArgument);
}

TEST_F(ThreadBaseTest, AMissingNameReportsBadArgumentEvenAfterTheStart)
{
    StartIt();
    _Result result = ResultPass;
    thread->SetName(nullptr, result);
    EXPECT_EQ(result, ResultBadArgument);
}

TEST_F(ThreadBaseTest, WithoutAResultReferenceTheGuardedOperationsDoNothing)
{
    const std::wstring worker = L"worker";
    std::wstring name = L"untouched";
    std::int32_t priority = 99;
    KivTest::WithNullReference<_Result>([&](_Result& none) {
        thread->SetName(&worker, none);
        thread->SetPriority(7, none);
        thread->GetName(&name, none);
        thread->GetPriority(&priority, none);
        StartIt();
        thread->Cancel(none);
    });
    EXPECT_EQ(name, L"untouched");
    EXPECT_EQ(priority, 99);
    EXPECT_TRUE(probe->calls.empty());
    _Result result = ResultFail;
    thread->GetName(&name, result);
    thread->GetPriority(&priority, result);
    EXPECT_EQ(name, L"");
    EXPECT_EQ(priority, 0);
}

TEST_F(ThreadBaseTest, YieldOfAThreadNotStartedWithANullResultReferenceIsFatal)
{
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<_Result>([&](_Result& none) { thread->Yield(none); }),
                         L"ThreadBase: result NULL reference.");
}

TEST_F(ThreadBaseTest, StartOfAStartedThreadWithANullResultReferenceIsFatal)
{
    StartIt();
    EXPECT_FATAL_MESSAGE(
        KivTest::WithNullReference<_Result>([&](_Result& none) { thread->Start(&Nothing, nullptr, none); }),
        L"ThreadBase: result NULL reference.");
}

TEST(ThreadBaseFatalTest, ANullObserverIsFatal)
{
    EXPECT_FATAL_MESSAGE(SmartPtr<IThread> thread(new ProbeThread(nullptr)),
                         L"ThreadBase: IThreadObserver* NULL reference");
}

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/SharedLockBase.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace KivPlr;

namespace {

// A shared lock whose protected operations only record that they ran.
class ForwardingProbe : public SharedLockBase
{
public:
    std::vector<std::string> calls;
    bool tryAnswer = true;

protected:
    void ReadLockImpl() override { calls.push_back("ReadLockImpl"); }
    bool TryReadLockImpl() override
    {
        calls.push_back("TryReadLockImpl");
        return tryAnswer;
    }
    void WriteLockImpl() override { calls.push_back("WriteLockImpl"); }
    bool TryWriteLockImpl() override
    {
        calls.push_back("TryWriteLockImpl");
        return tryAnswer;
    }
    void UnlockImpl() override { calls.push_back("UnlockImpl"); }
};

} // namespace

TEST(SharedLockBaseTest, EachOperationGoesToTheStepOfTheSamePosition)
{
    ForwardingProbe* probe = new ForwardingProbe;
    SmartPtr<ISharedLock> lock(probe);
    lock->ReadLock();
    EXPECT_TRUE(lock->TryReadLock());
    lock->WriteLock();
    probe->tryAnswer = false;
    EXPECT_FALSE(lock->TryWriteLock());
    lock->Unlock();
    EXPECT_EQ(probe->calls,
              (std::vector<std::string>{"ReadLockImpl", "TryReadLockImpl", "WriteLockImpl",
                                        "TryWriteLockImpl", "UnlockImpl"}));
}

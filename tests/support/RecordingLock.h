// SPDX-License-Identifier: Apache-2.0
// RecordingLock.h - an ILock for tests that blocks nothing and records every
// call, in order, as a short text ("Lock", "Unlock", "NotifyAll",
// "Wait", "Wait(250)", ...).
//
// Waits return at once with the result the test chose (ResultPass unless
// told otherwise), like a spurious wake-up. Thread-safe, but meant for one
// thread: nothing is excluded.
//
// Example:
//   #include <KivPlr/sync/ScopedLock.h>
//   #include <gtest/gtest.h>
//   SmartPtr<RecordingLock> lock(new RecordingLock);
//   { ScopedLock hold(*lock); }
//   EXPECT_EQ(lock->Calls(), (std::vector<std::string>{"Lock", "Unlock"}));
#ifndef KIV_TESTS_RECORDINGLOCK_H
#define KIV_TESTS_RECORDINGLOCK_H

#include <KivPlr/core/Object.h>
#include <KivPlr/sync/ILock.h>

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace KivTest {

class RecordingLock : public KivPlr::Object, public KivPlr::ILock
{
public:
    void Lock() override;
    /// Records the call and answers true.
    bool TryLock() override;
    void Unlock() override;
    void NotifyOne(KivPlr::_Result& result) override;
    void NotifyAll(KivPlr::_Result& result) override;
    void Wait(KivPlr::_Result& result) override;
    void Wait(std::uint32_t milliseconds, KivPlr::_Result& result) override;

    /// The result every later wait reports.
    void SetWaitResult(KivPlr::_Result result);
    /// Every call so far, in order.
    std::vector<std::string> Calls();
    /// How many times Lock was called minus how many times Unlock was.
    int Depth();

private:
    void Record(const std::string& call);

    std::mutex mutex;
    std::vector<std::string> calls;
    KivPlr::_Result waitResult = KivPlr::ResultPass;
    int depth = 0;
};

} // namespace KivTest

#endif

// SPDX-License-Identifier: Apache-2.0
// FakeTimespecOffsetCalculator.h - a time-out calculator for tests that
// records every time-out it is asked for and answers with a deadline the
// test chose.
//
// Thread-safe: waits on several threads may ask it at once. The deadline
// starts at 1970-01-01 00:00:00, long past, so a timed wait over it times out
// at once.
//
// Example:
//   SmartPtr<FakeTimespecOffsetCalculator> calculator(new FakeTimespecOffsetCalculator);
//   calculator->SetDeadlineFromNow(50);          // CLOCK_REALTIME + 50 ms
//   #include <gtest/gtest.h>
//   SmartPtr<ILock> lock(new PosixLock(calculator.Get(), new PosixResultPassFail));
//   ScopedLock hold(lock);
//   _Result result = ResultFail;
//   lock->Wait(1234, result);
//   EXPECT_EQ(calculator->Requests(), std::vector<std::uint32_t>{1234});
#ifndef KIV_TESTS_FAKETIMESPECOFFSETCALCULATOR_H
#define KIV_TESTS_FAKETIMESPECOFFSETCALCULATOR_H

#include <KivPlr/core/Object.h>
#include <KivPlr/time/IPosixTimespecOffsetCalculator.h>

#include <cstdint>
#include <mutex>
#include <vector>

namespace KivTest {

class FakeTimespecOffsetCalculator : public KivPlr::Object,
                                     public KivPlr::IPosixTimespecOffsetCalculator
{
public:
    /// Records \p timeoutMilliseconds and answers the chosen deadline.
    void ComputeDeadline(std::uint32_t timeoutMilliseconds, struct timespec& deadline) override;

    /// The deadline every later call answers.
    void SetDeadline(const struct timespec& deadline);
    /// Sets the deadline to the CLOCK_REALTIME time now plus \p milliseconds
    /// and returns it.
    struct timespec SetDeadlineFromNow(std::uint32_t milliseconds);
    /// Every time-out asked for so far, in order.
    std::vector<std::uint32_t> Requests();

private:
    std::mutex mutex;
    struct timespec answer = {0, 0};
    std::vector<std::uint32_t> requests;
};

/// The CLOCK_REALTIME time now.
struct timespec RealTimeNow();
/// True when \p earlier is before or at \p later.
bool NotAfter(const struct timespec& earlier, const struct timespec& later);

} // namespace KivTest

#endif

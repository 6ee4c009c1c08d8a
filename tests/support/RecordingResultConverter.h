// SPDX-License-Identifier: Apache-2.0
// RecordingResultConverter.h - a result converter for tests that converts
// like the POSIX one (0 passes, anything else fails) and records every
// native code it was given.
//
// Thread-safe; share it between the objects of one test to see what they
// handed in:
//
// Example:
//   SmartPtr<RecordingResultConverter> converter(new RecordingResultConverter);
//   #include <gtest/gtest.h>
//   SmartPtr<ILock> lock(
//       new PosixLock(new PosixTimespecOffsetCalculator(new PosixCurrentTimespec(CLOCK_REALTIME)), converter.Get()));
//   ScopedLock hold(lock);
//   _Result result = ResultFail;
//   lock->Wait(10, result);
//   EXPECT_EQ(converter->NativeResults().back(), ETIMEDOUT);
#ifndef KIV_TESTS_RECORDINGRESULTCONVERTER_H
#define KIV_TESTS_RECORDINGRESULTCONVERTER_H

#include <KivPlr/core/IResultConverter.h>
#include <KivPlr/core/Object.h>

#include <mutex>
#include <vector>

namespace KivTest {

class RecordingResultConverter : public KivPlr::Object, public KivPlr::IResultConverter
{
public:
    /// Records \p nativeResult; ResultPass for 0, ResultFail otherwise.
    void Convert(int nativeResult, KivPlr::_Result& result) override;

    /// Every native code converted so far, in order.
    std::vector<int> NativeResults();

private:
    std::mutex mutex;
    std::vector<int> nativeResults;
};

} // namespace KivTest

#endif

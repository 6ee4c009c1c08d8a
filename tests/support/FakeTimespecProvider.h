// SPDX-License-Identifier: Apache-2.0
// FakeTimespecProvider.h - a timespec provider whose time the test sets.
//
// Deadline and stopwatch tests hand it to the object under test and move its
// time by hand; it counts the reads and can be told to fail like a
// clock_gettime on an unknown clock:
//
// Example:
//   FakeTimespecProvider* fake = new FakeTimespecProvider(10, 999000000);
//   SmartPtr<IPosixTimespecOffsetCalculator> calculator(new PosixTimespecOffsetCalculator(fake));
//   fake->Set(11, 0);
//
// Single-threaded use only.
#ifndef KIV_TESTS_FAKETIMESPECPROVIDER_H
#define KIV_TESTS_FAKETIMESPECPROVIDER_H

#include <KivPlr/core/Object.h>
#include <KivPlr/time/IPosixTimespecProvider.h>

#include <ctime>

namespace KivTest {

class FakeTimespecProvider : private KivPlr::Object, public KivPlr::IPosixTimespecProvider
{
public:
    FakeTimespecProvider(time_t seconds = 0, long nanoseconds = 0) { Set(seconds, nanoseconds); }

    void Set(time_t seconds, long nanoseconds)
    {
        now.tv_sec = seconds;
        now.tv_nsec = nanoseconds;
    }

    /// From now on every read answers -1 and leaves its argument alone.
    void Fail() { failing = true; }

    int GetCurrentTime(struct timespec& current) override
    {
        ++reads;
        if (failing)
            return -1;
        current = now;
        return 0;
    }

    int reads = 0;

private:
    struct timespec now = {};
    bool failing = false;
};

} // namespace KivTest

#endif

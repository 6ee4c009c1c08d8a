// SPDX-License-Identifier: Apache-2.0
// PosixTimespecOffsetCalculator.h - PosixTimespecOffsetCalculator: turns a time-out in milliseconds into an
// absolute struct timespec deadline read from a timespec provider.
//
// The platform factory makes one for every lock and semaphore, over a new
// CLOCK_REALTIME provider; the primitive owns it through SmartPtr. It holds
// no mutable state after construction, so any thread may call it.
//
// Example:
//   SmartPtr<IPosixTimespecOffsetCalculator> calculator(
//       new PosixTimespecOffsetCalculator(new PosixCurrentTimespec(CLOCK_REALTIME)));
//   struct timespec deadline;
//   calculator->ComputeDeadline(250, deadline);   // now + 250 ms
#ifndef KIVPLR_POSIXTIMESPECOFFSETCALCULATOR_H
#define KIVPLR_POSIXTIMESPECOFFSETCALCULATOR_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/time/IPosixTimespecOffsetCalculator.h>
#include <KivPlr/time/IPosixTimespecProvider.h>

#include <cstdint>
#include <ctime>

namespace KivPlr {

class KIVPLR_API PosixTimespecOffsetCalculator : private Object, public IPosixTimespecOffsetCalculator
{
public:
    /// Keeps its own reference on \p provider. An empty provider is accepted
    /// here; the first ComputeDeadline then ends the process
    /// ("SmartPtr<T>-> NULL reference").
    explicit PosixTimespecOffsetCalculator(const SmartPtr<IPosixTimespecProvider>& provider);

    /// \p deadline = the provider's current time + \p timeoutMilliseconds.
    /// 0 gives the current time itself. The sums are unsigned 32-bit with a
    /// single carry from nanoseconds into seconds (the nanosecond sum never
    /// exceeds 1 998 999 999), so the whole range up to 0xFFFFFFFF ms (about
    /// 49.7 days) is added without overflow while the sum stays below 2^32 s
    /// (the year 2106). The 32-bit sum goes into time_t as it is; where time_t
    /// is 32 bits wide a sum past 2038 therefore reads as negative. When the
    /// provider fails, the deadline is counted from time 0.
    void ComputeDeadline(std::uint32_t timeoutMilliseconds, struct timespec& deadline) override;

    /// The deadline arithmetic on its own: \p now + \p timeoutMilliseconds.
    static struct timespec AddMilliseconds(const struct timespec& now, std::uint32_t timeoutMilliseconds);

private:
    ~PosixTimespecOffsetCalculator() override = default;

    SmartPtr<IPosixTimespecProvider> provider;
};

} // namespace KivPlr

#endif

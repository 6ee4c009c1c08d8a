// SPDX-License-Identifier: Apache-2.0
// ClockGetTimeClock.h - the stopwatch over a timespec provider: elapsed time
// is the provider's current time minus the time read when the clock was made.
//
// The platform factory (CreateClock) builds it with a lock of its own and a
// CLOCK_MONOTONIC provider; it is owned through SmartPtr. The start time is
// written once, in the constructor, so any thread may read the clock.
//
// Example:
//   SmartPtr<IPlatform> platform(Platform::GetInstance());
//   SmartPtr<ILock> lock(platform->CreateLock());
//   SmartPtr<IClock> stopwatch(new ClockGetTimeClock(lock, new PosixCurrentTimespec(CLOCK_MONOTONIC)));
//   std::int64_t ns = stopwatch->GetElapsedNanoseconds();
#ifndef KIVPLR_CLOCKGETTIMECLOCK_H
#define KIVPLR_CLOCKGETTIMECLOCK_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/ILock.h>
#include <KivPlr/time/ClockBase.h>
#include <KivPlr/time/IPosixTimespecProvider.h>

#include <cstdint>
#include <ctime>

namespace KivPlr {

class KIVPLR_API ClockGetTimeClock : public ClockBase
{
public:
    /// Keeps references on \p lock and \p provider and reads the start time
    /// from \p provider at once; an empty provider ends the process
    /// ("SmartPtr<T>-> NULL reference"), and a failing read starts at 0. The
    /// lock is held for the life of the clock; no operation needs to take it,
    /// because nothing changes after construction.
    ClockGetTimeClock(const SmartPtr<ILock>& lock, const SmartPtr<IPosixTimespecProvider>& provider);

    /// (s - s0) widened to 64 bits x 1 000 000 000 + (ns - ns0), where (s, ns)
    /// is the provider's current time and (s0, ns0) the start time; the
    /// nanosecond difference may be negative. A failing read counts as the
    /// start time itself, giving 0.
    std::int64_t GetElapsedNanoseconds() override;

    /// The time read at construction.
    struct timespec GetStartTime() const;
    /// The lock and the provider given at construction (not referenced again).
    ILock* GetLock() const;
    IPosixTimespecProvider* GetProvider() const;

private:
    ~ClockGetTimeClock() override = default;

    SmartPtr<ILock> lock;
    SmartPtr<IPosixTimespecProvider> provider;
    struct timespec start;
};

} // namespace KivPlr

#endif

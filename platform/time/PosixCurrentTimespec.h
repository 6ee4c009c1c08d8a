// SPDX-License-Identifier: Apache-2.0
// PosixCurrentTimespec.h - PosixCurrentTimespec: reads one POSIX clock, chosen at construction.
//
// The platform factory makes one per lock or semaphore (CLOCK_REALTIME, the
// clock that sem_timedwait and pthread_cond_timedwait measure deadlines on)
// and one per stopwatch (CLOCK_MONOTONIC). Owned through SmartPtr by the
// object it serves; it holds nothing mutable, so any thread may call it.
//
// Example:
//   SmartPtr<IPosixTimespecProvider> provider(new PosixCurrentTimespec(CLOCK_MONOTONIC));
//   struct timespec now;
//   provider->GetCurrentTime(now);
#ifndef KIVPLR_POSIXCURRENTTIMESPEC_H
#define KIVPLR_POSIXCURRENTTIMESPEC_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/time/IPosixTimespecProvider.h>

#include <ctime>

namespace KivPlr {

class KIVPLR_API PosixCurrentTimespec : private Object, public IPosixTimespecProvider
{
public:
    /// \p clockId is handed to clock_gettime unchanged on every read; an
    /// identifier the system does not know makes every read answer -1.
    explicit PosixCurrentTimespec(clockid_t clockId);

    /// clock_gettime(clockId, &now): 0 on success, -1 with errno set on
    /// failure (\p now is then left as it was).
    int GetCurrentTime(struct timespec& now) override;

    /// The clock identifier given at construction.
    clockid_t GetClockId() const;

private:
    ~PosixCurrentTimespec() override = default;

    const clockid_t clockId;
};

} // namespace KivPlr

#endif

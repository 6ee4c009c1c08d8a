// SPDX-License-Identifier: Apache-2.0
// IPosixTimespecProvider.h - IPosixTimespecProvider: a source of the current POSIX time.
//
// The implementation reads one POSIX clock, chosen when it is made
// (CLOCK_REALTIME for the deadlines of locks and semaphores, CLOCK_MONOTONIC
// for stopwatches):
//
// Example:
//   SmartPtr<IPosixTimespecProvider> provider(new PosixCurrentTimespec(CLOCK_MONOTONIC));
//   struct timespec now;
//   if (provider->GetCurrentTime(now) != 0) {
//       // errno tells why
//   }
//
// Holds no mutable state; any thread may call it.
#ifndef KIVPLR_IPOSIXTIMESPECPROVIDER_H
#define KIVPLR_IPOSIXTIMESPECPROVIDER_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>

#include <ctime>

namespace KivPlr {

class KIVPLR_API IPosixTimespecProvider : public virtual IObject
{
public:
    /// clock_gettime on the provider's clock; its return value unchanged.
    /// A null \p now reference is fatal.
    virtual int GetCurrentTime(struct timespec& now) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IPosixTimespecProvider() override = default;
};

} // namespace KivPlr

#endif

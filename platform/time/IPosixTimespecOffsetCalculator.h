// SPDX-License-Identifier: Apache-2.0
// IPosixTimespecOffsetCalculator.h - IPosixTimespecOffsetCalculator: turns a relative time-out into the
// absolute deadline that sem_timedwait and pthread_cond_timedwait take.
//
// Example:
//   #include <pthread.h>
//   pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
//   pthread_cond_t condition = PTHREAD_COND_INITIALIZER;
//   SmartPtr<IPosixTimespecOffsetCalculator> calculator(new PosixTimespecOffsetCalculator(new PosixCurrentTimespec(CLOCK_REALTIME)));
//   struct timespec deadline;
//   calculator->ComputeDeadline(1500, deadline);   // now + 1.5 s
//   pthread_mutex_lock(&mutex);
//   pthread_cond_timedwait(&condition, &mutex, &deadline);
//   pthread_mutex_unlock(&mutex);
//
// Holds no mutable state; any thread may call it.
#ifndef KIVPLR_IPOSIXTIMESPECOFFSETCALCULATOR_H
#define KIVPLR_IPOSIXTIMESPECOFFSETCALCULATOR_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>

#include <cstdint>
#include <ctime>

namespace KivPlr {

class KIVPLR_API IPosixTimespecOffsetCalculator : public virtual IObject
{
public:
    /// \p deadline = the provider's current time + \p timeoutMilliseconds.
    /// A null \p deadline reference is fatal.
    virtual void ComputeDeadline(std::uint32_t timeoutMilliseconds, struct timespec& deadline) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IPosixTimespecOffsetCalculator() override = default;
};

} // namespace KivPlr

#endif

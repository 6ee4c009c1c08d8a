// SPDX-License-Identifier: Apache-2.0
// ClockBase.h - the portable part of every stopwatch clock: the coarser
// units, computed from the elapsed nanoseconds that the concrete clock reads.
//
// A concrete clock (ClockGetTimeClock) derives from it and implements
// GetElapsedNanoseconds only. Each coarser operation reads the clock once, so
// it is as safe from several threads as the concrete clock's read.
//
// Example:
//   class FixedClock : public ClockBase {        // a concrete clock reads nanoseconds only
//   public:
//       std::int64_t GetElapsedNanoseconds() override { return 1500000; }
//   };
//   SmartPtr<IClock> clock(new FixedClock);
//   std::int64_t ms = clock->GetElapsedMilliseconds();   // ns / 1 000 000: 1
#ifndef KIVPLR_CLOCKBASE_H
#define KIVPLR_CLOCKBASE_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/time/IClock.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API ClockBase : private Object, public IClock
{
public:
    /// GetElapsedNanoseconds() / 1 000.
    std::int64_t GetElapsedMicroseconds() override;
    /// GetElapsedNanoseconds() / 1 000 000.
    std::int64_t GetElapsedMilliseconds() override;
    /// GetElapsedNanoseconds() / 1 000 000 000.
    std::int64_t GetElapsedSeconds() override;
    /// TimeDuration::Nanoseconds(GetElapsedNanoseconds()).
    TimeDuration GetElapsedTime() override;

protected:
    ~ClockBase() override = default;
};

} // namespace KivPlr

#endif

// SPDX-License-Identifier: Apache-2.0
// Epoch.h - the date 1970-01-01, day 0 of every Date.
//
// A plain value class, used where a date is counted from the start of POSIX
// time; copy it freely.
//
// Example:
//   DateDuration days = Date(2000, 1, 1) - Epoch();   // 10957
//   #include <sys/time.h>
//   timeval tv = {};
//   gettimeofday(&tv, nullptr);
//   TimePoint now = Epoch() + TimeDuration(0, 0, tv.tv_sec, tv.tv_usec * 1000);
#ifndef KIVPLR_EPOCH_H
#define KIVPLR_EPOCH_H

#include <KivPlr/core/Export.h>
#include <KivPlr/time/Date.h>

namespace KivPlr {

class KIVPLR_API Epoch : public Date
{
public:
    /// 1970-01-01: kind 0, day 0.
    Epoch();
    ~Epoch() override;

    Epoch(const Epoch&) = default;
    Epoch& operator=(const Epoch&) = default;
};

} // namespace KivPlr

#endif

// SPDX-License-Identifier: Apache-2.0
#include "PosixCurrentTime.h"

namespace KivPlr {

PosixCurrentTimespec::PosixCurrentTimespec(clockid_t clockId) : clockId(clockId)
{
}

int PosixCurrentTimespec::GetCurrentTime(struct timespec& now)
{
    return clock_gettime(clockId, &now);
}

clockid_t PosixCurrentTimespec::GetClockId() const
{
    return clockId;
}

} // namespace KivPlr

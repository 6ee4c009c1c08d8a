// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/time/PosixCurrentTimespec.h>

#include <KivPlr/core/FatalError.h>

namespace KivPlr {

PosixCurrentTimespec::PosixCurrentTimespec(clockid_t clockId) : clockId(clockId)
{
}

int PosixCurrentTimespec::GetCurrentTime(struct timespec& now)
{
    // clock_gettime answers EFAULT for a bad address only when the kernel
    // does the work; through the vDSO a null one is a crash.
    if (IsNullReference(&now))
        FatalError(L"PosixCurrentTimespec: now NULL reference.");
    return clock_gettime(clockId, &now);
}

clockid_t PosixCurrentTimespec::GetClockId() const
{
    return clockId;
}

} // namespace KivPlr

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/sync/ManualResetEvent.h>

#include <KivPlr/sync/ScopedLock.h>

namespace KivPlr {

ManualResetEvent::ManualResetEvent(ILock* monitor) : WaitEvent(monitor), set(false) {}

bool ManualResetEvent::IsSet()
{
    return set.load(std::memory_order_acquire);
}

void ManualResetEvent::Reset()
{
    ScopedLock hold(*GetMonitor());
    set.store(false, std::memory_order_release);
}

void ManualResetEvent::Set()
{
    ScopedLock hold(*GetMonitor());
    _Result result = ResultPass;
    GetMonitor()->NotifyAll(result);
    set.store(true, std::memory_order_release);
}

bool ManualResetEvent::Wait()
{
    return Wait(WaitForever);
}

bool ManualResetEvent::Wait(std::uint32_t milliseconds)
{
    ScopedLock hold(*GetMonitor());
    _Result result = ResultPass;
    // The flag is tested once, before the one wait, and not again after the
    // wake-up; callers that need certainty ask IsSet afterwards.
    if (!set.load(std::memory_order_relaxed))
        GetMonitor()->Wait(milliseconds, result);
    return Succeeded(result);
}

} // namespace KivPlr

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/sync/WaitEvent.h>

#include <KivPlr/sync/ScopedLock.h>

namespace KivPlr {

WaitEvent::WaitEvent(ILock* monitor) : monitor(monitor) {}

bool WaitEvent::Wait()
{
    return Wait(WaitForever);
}

bool WaitEvent::Wait(std::uint32_t milliseconds)
{
    ScopedLock hold(*monitor);
    _Result result = ResultPass;
    monitor->Wait(milliseconds, result);
    return Succeeded(result);
}

void WaitEvent::Signal()
{
    ScopedLock hold(*monitor);
    _Result result = ResultPass;
    monitor->NotifyAll(result);
}

const SmartPtr<ILock>& WaitEvent::GetMonitor() const
{
    return monitor;
}

} // namespace KivPlr

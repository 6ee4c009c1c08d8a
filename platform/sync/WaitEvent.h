// SPDX-License-Identifier: Apache-2.0
// WaitEvent.h - a wait event carried by a monitor lock (ILock).
//
// Made with new by its user over a lock from the platform; it keeps a
// reference on the lock, which guards its state and does the waiting, so the
// event needs no condition variable of its own. Owned through SmartPtr; any
// thread may use it. ManualResetEvent builds on it.
//
// Example:
//   SmartPtr<IPlatform> platform(Platform::GetInstance());
//   SmartPtr<IWaitEvent> event(new WaitEvent(platform->CreateLock()));
//   event->Signal();
#ifndef KIVPLR_WAITEVENT_H
#define KIVPLR_WAITEVENT_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/ILock.h>
#include <KivPlr/sync/IWaitEvent.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API WaitEvent : protected Object, public virtual IWaitEvent
{
public:
    /// Keeps a reference on \p monitor. A missing monitor is fatal when the
    /// event is used ("SmartPtr<T>-> NULL reference").
    explicit WaitEvent(ILock* monitor);

    /// One wait on the monitor, under its lock.
    bool Wait() override;
    /// One timed wait on the monitor, under its lock.
    bool Wait(std::uint32_t milliseconds) override;
    /// NotifyAll on the monitor, under its lock.
    void Signal() override;

protected:
    ~WaitEvent() override = default;

    /// The monitor that guards the event's state.
    const SmartPtr<ILock>& GetMonitor() const;

private:
    SmartPtr<ILock> monitor;
};

} // namespace KivPlr

#endif

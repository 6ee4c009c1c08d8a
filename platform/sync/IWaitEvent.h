// SPDX-License-Identifier: Apache-2.0
// IWaitEvent.h - an event that threads wait on and another thread signals.
//
// Events are made directly by their users over a monitor lock from the
// platform (new WaitEvent(platform->CreateLock())) and owned through
// SmartPtr; any thread may wait or signal. A plain wait event remembers
// nothing: a signal wakes only the threads that wait at that moment.
//
// Example:
//   SmartPtr<IPlatform> platform(Platform::GetInstance());
//   SmartPtr<IWaitEvent> event(new WaitEvent(platform->CreateLock()));
//   event->Wait(200);        // consumer: true when woken, false on time-out
//   event->Signal();         // producer
#ifndef KIVPLR_IWAITEVENT_H
#define KIVPLR_IWAITEVENT_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>
#include <KivPlr/sync/WaitTimeout.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API IWaitEvent : public virtual IObject
{
public:
    /// Waits for one wake-up of the event's monitor; true when the monitor's
    /// wait succeeded. The wake-up may be spurious: re-check your condition.
    virtual bool Wait() = 0;
    /// As Wait, giving up after \p milliseconds (false then); WaitForever
    /// means no time-out.
    virtual bool Wait(std::uint32_t milliseconds) = 0;
    /// Wakes every thread that is waiting now.
    virtual void Signal() = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IWaitEvent() override = default;
};

} // namespace KivPlr

#endif

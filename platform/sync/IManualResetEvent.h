// SPDX-License-Identifier: Apache-2.0
// IManualResetEvent.h - an event that stays set until it is reset.
//
// Made directly by its users over a monitor lock from the platform
// (new ManualResetEvent(platform->CreateLock())) and owned through SmartPtr;
// any thread may set, reset, wait or ask. While set, waits return at once.
//
// Example:
//   SmartPtr<IPlatform> platform(Platform::GetInstance());
//   SmartPtr<IManualResetEvent> ready(new ManualResetEvent(platform->CreateLock()));
//   ready->Set();                               // one thread
//   while (!ready->IsSet()) ready->Wait(100);   // another: re-check after waking
#ifndef KIVPLR_IMANUALRESETEVENT_H
#define KIVPLR_IMANUALRESETEVENT_H

#include <KivPlr/core/Export.h>
#include <KivPlr/sync/IWaitEvent.h>

namespace KivPlr {

class KIVPLR_API IManualResetEvent : public virtual IWaitEvent
{
public:
    /// The flag, read without the lock; only a snapshot.
    virtual bool IsSet() = 0;
    /// Clears the flag: later waits block again.
    virtual void Reset() = 0;
    /// Wakes every waiter and marks the event set.
    virtual void Set() = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IManualResetEvent() override = default;
};

} // namespace KivPlr

#endif

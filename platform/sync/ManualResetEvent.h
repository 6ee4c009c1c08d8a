// SPDX-License-Identifier: Apache-2.0
// ManualResetEvent.h - a wait event with a set flag that stays until Reset.
//
// Made with new by its user over a lock from the platform; the lock guards
// the flag and carries the waiting. Owned through SmartPtr; any thread may
// use it. A wait tests the flag once, then waits for at most one wake-up:
// callers that must be sure ask IsSet after the wait.
//
// Example:
//   SmartPtr<IPlatform> platform(Platform::GetInstance());
//   SmartPtr<IManualResetEvent> done(new ManualResetEvent(platform->CreateLock()));
//   done->Wait(1000);
//   bool finished = done->IsSet();
#ifndef KIVPLR_MANUALRESETEVENT_H
#define KIVPLR_MANUALRESETEVENT_H

#include <KivPlr/core/Export.h>
#include <KivPlr/sync/IManualResetEvent.h>
#include <KivPlr/sync/WaitEvent.h>

#include <atomic>
#include <cstdint>

namespace KivPlr {

class KIVPLR_API ManualResetEvent : public WaitEvent, public IManualResetEvent
{
public:
    /// Not set at creation. Keeps a reference on \p monitor.
    explicit ManualResetEvent(ILock* monitor);

    bool IsSet() override;
    void Reset() override;
    /// NotifyAll on the monitor first, then marks the event set, both under
    /// the monitor's lock.
    void Set() override;
    /// True at once while set. Otherwise one wait on the monitor, and its
    /// success is the answer, even when the wake-up was not a Set.
    bool Wait() override;
    /// As Wait(), with a time-out (WaitForever meaning none).
    bool Wait(std::uint32_t milliseconds) override;

private:
    ~ManualResetEvent() override = default;

    // Written only under the monitor's lock; IsSet reads it without the lock.
    std::atomic<bool> set;
};

} // namespace KivPlr

#endif

// SPDX-License-Identifier: Apache-2.0
// ILock.h - a monitor: one mutex together with one condition variable.
//
// Made by the platform factory (IPlatform::CreateLock) and owned through
// SmartPtr. Any thread may lock it; the holder may wait for, and signal, a
// change of the state the lock guards. Always loop on your own condition:
// a wait may end without a notification.
//
// Example:
//   SmartPtr<IPlatform> platform(Platform::GetInstance());
//   SmartPtr<ILock> lock(platform->CreateLock());
//   bool ready = false;                     // set by another thread, under the lock
//   _Result result = ResultPass;
//   lock->Lock();
//   while (!ready && Succeeded(result))
//       lock->Wait(500, result);            // at most 500 ms per round
//   lock->Unlock();
#ifndef KIVPLR_ILOCK_H
#define KIVPLR_ILOCK_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>
#include <KivPlr/sync/WaitTimeout.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API ILock : public virtual IObject
{
public:
    /// Acquires the lock, blocking until it is free. Locking it again from
    /// the thread that holds it is not supported (the lock is not recursive).
    virtual void Lock() = 0;
    /// Acquires the lock only if it is free at once; true when acquired.
    virtual bool TryLock() = 0;
    /// Releases the lock held by the calling thread.
    virtual void Unlock() = 0;
    /// Wakes one waiter, if any. Call it while holding the lock.
    virtual void NotifyOne(_Result& result) = 0;
    /// Wakes every waiter. Call it while holding the lock.
    virtual void NotifyAll(_Result& result) = 0;
    /// Releases the lock, waits for a wake-up and re-acquires the lock before
    /// returning. Call it while holding the lock.
    virtual void Wait(_Result& result) = 0;
    /// As Wait, but gives up after \p milliseconds, counted from this call;
    /// the result then reports a failure. WaitForever (0xFFFFFFFF) means no
    /// time-out.
    virtual void Wait(std::uint32_t milliseconds, _Result& result) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~ILock() override = default;
};

} // namespace KivPlr

#endif

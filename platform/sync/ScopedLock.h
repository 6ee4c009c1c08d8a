// SPDX-License-Identifier: Apache-2.0
// ScopedLock.h - holds an ILock for the lifetime of a block.
//
// A stack object, never shared between threads: the constructor locks, the
// destructor unlocks, so the lock is released on every way out of the block,
// a thrown exception included.
//
// Lifetime: ScopedLock takes the lock by reference and keeps no reference
// count on it (no AddRef, no Release: holding a lock costs only Lock and
// Unlock). The caller keeps the lock alive until the ScopedLock is gone,
// normally by holding it in a SmartPtr member or local that outlives the
// block; do not pass a SmartPtr temporary that is the lock's only owner.
// Dereferencing an empty SmartPtr is fatal ("SmartPtr<T>-> NULL reference")
// before anything is locked.
//
// Example:
//   SmartPtr<ILock> lock(Platform::GetInstance()->CreateLock());
//   {
//       ScopedLock hold(*lock);    // lock->Lock()
//       // change the shared state; may return early or throw
//   }                              // lock->Unlock()
#ifndef KIVPLR_SCOPEDLOCK_H
#define KIVPLR_SCOPEDLOCK_H

#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/ILock.h>

namespace KivPlr {

class ScopedLock
{
public:
    /// Locks \p lock, which must outlive this object.
    explicit ScopedLock(ILock& lock) : lock(lock) { lock.Lock(); }
    /// Locks the lock \p owner holds, without taking a reference of its own:
    /// \p owner (or another holder) keeps it alive. An empty \p owner is
    /// fatal ("SmartPtr<T>-> NULL reference").
    explicit ScopedLock(const SmartPtr<ILock>& owner) : ScopedLock(*owner) {}
    /// Unlocks the lock taken by the constructor.
    ~ScopedLock() { lock.Unlock(); }

    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;

private:
    ILock& lock;
};

} // namespace KivPlr

#endif

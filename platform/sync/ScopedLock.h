// SPDX-License-Identifier: Apache-2.0
// ScopedLock.h - holds an ILock for the lifetime of a block.
//
// A stack object, never shared between threads: the constructor locks, the
// destructor unlocks, so the lock is released on every way out of the block,
// a thrown exception included. It keeps a reference on the lock meanwhile.
//
// Example:
//   SmartPtr<ILock> lock(Platform::GetInstance()->CreateLock());
//   {
//       ScopedLock hold(lock);     // lock->Lock()
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
    /// Locks \p lock. An empty \p lock is fatal ("SmartPtr<T>-> NULL
    /// reference").
    explicit ScopedLock(const SmartPtr<ILock>& lock);
    /// Unlocks the lock taken by the constructor.
    ~ScopedLock();

    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;

private:
    SmartPtr<ILock> lock;
};

} // namespace KivPlr

#endif

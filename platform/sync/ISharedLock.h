// SPDX-License-Identifier: Apache-2.0
// ISharedLock.h - a reader/writer lock.
//
// Made by the platform factory (IPlatform::CreateSharedLock) and owned
// through SmartPtr. Any number of threads may hold it for reading at once;
// a writer holds it alone. Unlock ends either kind of hold.
//
// Example:
//   SmartPtr<IPlatform> platform(Platform::GetInstance());
//   SmartPtr<ISharedLock> lock(platform->CreateSharedLock());
//   lock->ReadLock();
//   // read the shared state
//   lock->Unlock();
#ifndef KIVPLR_ISHAREDLOCK_H
#define KIVPLR_ISHAREDLOCK_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>

namespace KivPlr {

class KIVPLR_API ISharedLock : public virtual IObject
{
public:
    /// Acquires the lock for reading, blocking while a writer holds it.
    virtual void ReadLock() = 0;
    /// Acquires the lock for reading only if that is possible at once; true
    /// when acquired.
    virtual bool TryReadLock() = 0;
    /// Acquires the lock for writing, blocking while anyone else holds it.
    virtual void WriteLock() = 0;
    /// Acquires the lock for writing only if it is free at once; true when
    /// acquired.
    virtual bool TryWriteLock() = 0;
    /// Releases the calling thread's hold, whether for reading or writing.
    virtual void Unlock() = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~ISharedLock() override = default;
};

} // namespace KivPlr

#endif

// SPDX-License-Identifier: Apache-2.0
// SharedLockBase.h - the portable half of a reader/writer lock.
//
// SharedLockBase implements ISharedLock by handing every operation to the
// protected operation of the same position, which the system's own lock
// (PosixSharedLock) fills in. It is never made by itself, and is as
// thread-safe as the lock that derives from it.
//
// Example:
//   class OneThreadSharedLock : public SharedLockBase {  // a system's lock fills these in
//       int readers = 0;
//       bool writer = false;
//   protected:
//       void ReadLockImpl() override { ++readers; }
//       bool TryReadLockImpl() override { return !writer && ++readers > 0; }
//       void WriteLockImpl() override { writer = true; }
//       bool TryWriteLockImpl() override { return readers == 0 && !writer && (writer = true); }
//       void UnlockImpl() override { writer ? void(writer = false) : void(--readers); }
//   };
//   SmartPtr<ISharedLock> lock(new OneThreadSharedLock);
//   lock->ReadLock();
//   bool refused = !lock->TryWriteLock();  // a reader holds it
//   lock->Unlock();
#ifndef KIVPLR_SHAREDLOCKBASE_H
#define KIVPLR_SHAREDLOCKBASE_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/sync/ISharedLock.h>

namespace KivPlr {

class KIVPLR_API SharedLockBase : protected Object, public ISharedLock
{
public:
    void ReadLock() override;
    bool TryReadLock() override;
    void WriteLock() override;
    bool TryWriteLock() override;
    void Unlock() override;

protected:
    ~SharedLockBase() override = default;

    virtual void ReadLockImpl() = 0;
    virtual bool TryReadLockImpl() = 0;
    virtual void WriteLockImpl() = 0;
    virtual bool TryWriteLockImpl() = 0;
    virtual void UnlockImpl() = 0;
};

} // namespace KivPlr

#endif

// SPDX-License-Identifier: Apache-2.0
// PosixSharedLock.h - the reader/writer lock over a POSIX read-write lock.
//
// Made by IPosix::CreateSharedLock (through the platform factory) with its
// own result converter, which it keeps alive; owned through
// SmartPtr<ISharedLock>. Any thread may use it. The read-write lock has
// default attributes.
//
// Example:
//   SmartPtr<ISharedLock> lock(new PosixSharedLock(new PosixResultPassFail));
//   if (lock->TryWriteLock()) {
//       // change the shared state
//       lock->Unlock();
//   }
#ifndef KIVPLR_POSIXSHAREDLOCK_H
#define KIVPLR_POSIXSHAREDLOCK_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IResultConverter.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/SharedLockBase.h>

#include <pthread.h>

namespace KivPlr {

class KIVPLR_API PosixSharedLock : public SharedLockBase
{
public:
    /// Keeps a reference on the converter. A missing converter is fatal only
    /// when a try operation needs it ("SmartPtr<T>-> NULL reference").
    explicit PosixSharedLock(IResultConverter* resultConverter);

    /// The converter this lock uses, without touching its count; for
    /// diagnostics and tests.
    IResultConverter* GetResultConverter() const;

protected:
    void ReadLockImpl() override;
    /// Succeeded of the converted pthread_rwlock_tryrdlock return code.
    bool TryReadLockImpl() override;
    void WriteLockImpl() override;
    /// Succeeded of the converted pthread_rwlock_trywrlock return code.
    bool TryWriteLockImpl() override;
    void UnlockImpl() override;

private:
    ~PosixSharedLock() override;

    /// Succeeded of the converted \p nativeResult.
    bool Answer(int nativeResult);

    pthread_rwlock_t lock;
    SmartPtr<IResultConverter> resultConverter;
};

} // namespace KivPlr

#endif

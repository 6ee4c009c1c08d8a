// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/sync/PosixSharedLock.h>

namespace KivPlr {

PosixSharedLock::PosixSharedLock(IResultConverter* resultConverter)
    : resultConverter(resultConverter)
{
    pthread_rwlock_init(&lock, nullptr);
}

PosixSharedLock::~PosixSharedLock()
{
    pthread_rwlock_destroy(&lock);
}

IResultConverter* PosixSharedLock::GetResultConverter() const
{
    return resultConverter.Get();
}

// The blocking operations report nothing: a default read-write lock used as
// documented does not fail.
void PosixSharedLock::ReadLockImpl()
{
    pthread_rwlock_rdlock(&lock);
}

bool PosixSharedLock::TryReadLockImpl()
{
    return Answer(pthread_rwlock_tryrdlock(&lock));
}

void PosixSharedLock::WriteLockImpl()
{
    pthread_rwlock_wrlock(&lock);
}

bool PosixSharedLock::TryWriteLockImpl()
{
    return Answer(pthread_rwlock_trywrlock(&lock));
}

void PosixSharedLock::UnlockImpl()
{
    pthread_rwlock_unlock(&lock);
}

bool PosixSharedLock::Answer(int nativeResult)
{
    _Result result = ResultFail;
    resultConverter->Convert(nativeResult, result);
    return Succeeded(result);
}

} // namespace KivPlr

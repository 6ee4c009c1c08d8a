#include "PosixSharedLock.h"

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
    _Result result = ResultFail;
    resultConverter->Convert(pthread_rwlock_tryrdlock(&lock), result);
    return Succeeded(result);
}

void PosixSharedLock::WriteLockImpl()
{
    pthread_rwlock_wrlock(&lock);
}

bool PosixSharedLock::TryWriteLockImpl()
{
    _Result result = ResultFail;
    resultConverter->Convert(pthread_rwlock_trywrlock(&lock), result);
    return Succeeded(result);
}

void PosixSharedLock::UnlockImpl()
{
    pthread_rwlock_unlock(&lock);
}

} // namespace KivPlr

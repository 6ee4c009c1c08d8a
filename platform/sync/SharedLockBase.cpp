// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/sync/SharedLockBase.h>

namespace KivPlr {

void SharedLockBase::ReadLock()
{
    ReadLockImpl();
}

bool SharedLockBase::TryReadLock()
{
    return TryReadLockImpl();
}

void SharedLockBase::WriteLock()
{
    WriteLockImpl();
}

bool SharedLockBase::TryWriteLock()
{
    return TryWriteLockImpl();
}

void SharedLockBase::Unlock()
{
    UnlockImpl();
}

} // namespace KivPlr

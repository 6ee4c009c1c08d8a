// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/sync/ScopedLock.h>

namespace KivPlr {

ScopedLock::ScopedLock(const SmartPtr<ILock>& lock) : lock(lock)
{
    this->lock->Lock();
}

ScopedLock::~ScopedLock()
{
    lock->Unlock();
}

} // namespace KivPlr

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/sync/LockBase.h>

namespace KivPlr {

void LockBase::Lock()
{
    LockImpl();
}

bool LockBase::TryLock()
{
    return TryLockImpl();
}

void LockBase::Unlock()
{
    UnlockImpl();
}

void LockBase::NotifyOne(_Result& result)
{
    NotifyOneImpl(result);
}

void LockBase::NotifyAll(_Result& result)
{
    NotifyAllImpl(result);
}

void LockBase::Wait(_Result& result)
{
    WaitImpl(result);
}

void LockBase::Wait(std::uint32_t milliseconds, _Result& result)
{
    if (milliseconds == WaitForever)
        WaitImpl(result);
    else
        TimedWaitImpl(milliseconds, result);
}

} // namespace KivPlr

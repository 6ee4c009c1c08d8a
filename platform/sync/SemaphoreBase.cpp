// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/sync/SemaphoreBase.h>

namespace KivPlr {

int SemaphoreBase::Post()
{
    return PostImpl();
}

int SemaphoreBase::GetValue()
{
    return GetValueImpl();
}

bool SemaphoreBase::TryWait()
{
    return TryWaitImpl();
}

void SemaphoreBase::Wait(_Result& result)
{
    WaitImpl(result);
}

void SemaphoreBase::Wait(std::uint32_t milliseconds, _Result& result)
{
    if (milliseconds == WaitForever)
        WaitImpl(result);
    else
        TimedWaitImpl(milliseconds, result);
}

} // namespace KivPlr

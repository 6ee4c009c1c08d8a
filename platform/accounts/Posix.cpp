// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/accounts/Posix.h>

#include <KivPlr/core/FatalError.h>

#include <KivPlr/sync/PosixLock.h>
#include <KivPlr/sync/PosixSemaphore.h>
#include <KivPlr/sync/PosixSharedLock.h>
#include <KivPlr/sync/PosixThread.h>

namespace KivPlr {

namespace {

// Read, step, store, read back: deliberately no atomic instruction. The step
// is done on the unsigned representation so that it wraps instead of
// overflowing.
std::int32_t PlainStep(std::int32_t& counter, std::uint32_t step)
{
    if (IsNullReference(&counter))
        FatalError(L"Posix: counter NULL reference.");
    std::uint32_t value = static_cast<std::uint32_t>(counter);
    counter = static_cast<std::int32_t>(value + step);
    return counter;
}

} // namespace

IThread* Posix::CreateThread(IThreadObserver* observer,
                             IPosixThreadPriorityConverter* priorityConverter,
                             IResultConverter* resultConverter, std::uint32_t stackSize)
{
    return new PosixThread(observer, priorityConverter, resultConverter, stackSize);
}

ILock* Posix::CreateLock(IPosixTimespecOffsetCalculator* timeoutCalculator,
                         IResultConverter* resultConverter)
{
    return new PosixLock(timeoutCalculator, resultConverter);
}

ISharedLock* Posix::CreateSharedLock(IResultConverter* resultConverter)
{
    return new PosixSharedLock(resultConverter);
}

ISemaphore* Posix::CreateSemaphore(IPosixTimespecOffsetCalculator* timeoutCalculator,
                                   IResultConverter* resultConverter)
{
    return new PosixSemaphore(timeoutCalculator, resultConverter);
}

std::int32_t Posix::Increment(std::int32_t& counter)
{
    return PlainStep(counter, 1u);
}

std::int32_t Posix::Decrement(std::int32_t& counter)
{
    return PlainStep(counter, static_cast<std::uint32_t>(-1));
}

} // namespace KivPlr

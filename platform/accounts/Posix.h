// SPDX-License-Identifier: Apache-2.0
// Posix.h - the factory of the POSIX thread and synchronisation objects.
//
// LinuxPlatform makes one at construction and keeps it in its posix member;
// it has no state, so any thread may use it. Increment and Decrement are
// deliberately plain read-modify-write steps; atomic counting is the
// platform's (IPlatform::AtomicIncrement).
//
// Example:
//   SmartPtr<IPosix> posix(new Posix);
//   SmartPtr<ISemaphore> semaphore(posix->CreateSemaphore(
//       new PosixTimespecOffsetCalculator(new PosixCurrentTimespec(CLOCK_REALTIME)), new PosixResultPassFail));
#ifndef KIVPLR_POSIX_H
#define KIVPLR_POSIX_H

#include <KivPlr/accounts/IPosix.h>
#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API Posix : private Object, public IPosix
{
public:
    IThread* CreateThread(IThreadObserver* observer,
                          IPosixThreadPriorityConverter* priorityConverter,
                          IResultConverter* resultConverter, std::uint32_t stackSize) override;
    ILock* CreateLock(IPosixTimespecOffsetCalculator* timeoutCalculator,
                      IResultConverter* resultConverter) override;
    ISharedLock* CreateSharedLock(IResultConverter* resultConverter) override;
    ISemaphore* CreateSemaphore(IPosixTimespecOffsetCalculator* timeoutCalculator,
                                IResultConverter* resultConverter) override;
    std::int32_t Increment(std::int32_t& counter) override;
    std::int32_t Decrement(std::int32_t& counter) override;

private:
    ~Posix() override = default;
};

} // namespace KivPlr

#endif

// SPDX-License-Identifier: Apache-2.0
// IPosix.h - the small factory of the POSIX thread and synchronisation
// objects, plus two plain counters.
//
// LinuxPlatform holds one and builds its locks, shared locks, semaphores and
// threads through it, handing in the helpers each object keeps. The create
// operations may be called from any thread; the counters are not atomic.
//
// Example:
//   SmartPtr<IPosix> posix(new Posix);
//   SmartPtr<ILock> lock(posix->CreateLock(
//       new PosixTimespecOffsetCalculator(new PosixCurrentTimespec(CLOCK_REALTIME)), new PosixResultPassFail));
#ifndef KIVPLR_IPOSIX_H
#define KIVPLR_IPOSIX_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>

#include <cstdint>

namespace KivPlr {

class IThread;
class IThreadObserver;
class IPosixThreadPriorityConverter;
class IResultConverter;
class ILock;
class ISharedLock;
class ISemaphore;
class IPosixTimespecOffsetCalculator;

class KIVPLR_API IPosix : public virtual IObject
{
public:
    /// A new PosixThread (count 0) over the given helpers and stack size
    /// (0: the system default). Nothing is checked here.
    virtual IThread* CreateThread(IThreadObserver* observer,
                                  IPosixThreadPriorityConverter* priorityConverter,
                                  IResultConverter* resultConverter, std::uint32_t stackSize) = 0;
    /// A new PosixLock (count 0) over the given helpers.
    virtual ILock* CreateLock(IPosixTimespecOffsetCalculator* timeoutCalculator,
                              IResultConverter* resultConverter) = 0;
    /// A new PosixSharedLock (count 0) over the given converter.
    virtual ISharedLock* CreateSharedLock(IResultConverter* resultConverter) = 0;
    /// A new PosixSemaphore (count 0, semaphore value 0) over the given
    /// helpers.
    virtual ISemaphore* CreateSemaphore(IPosixTimespecOffsetCalculator* timeoutCalculator,
                                        IResultConverter* resultConverter) = 0;
    /// Adds 1 to \p counter and returns the stored value. Not atomic: for
    /// counters that one thread owns. Wraps from INT32_MAX to INT32_MIN.
    /// A null \p counter reference is fatal, here and in Decrement.
    virtual std::int32_t Increment(std::int32_t& counter) = 0;
    /// Subtracts 1 from \p counter and returns the stored value. Not atomic.
    /// Wraps from INT32_MIN to INT32_MAX.
    virtual std::int32_t Decrement(std::int32_t& counter) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IPosix() override = default;
};

} // namespace KivPlr

#endif

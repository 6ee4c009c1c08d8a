// SPDX-License-Identifier: Apache-2.0
// IPlatform.h - the factory of every platform service.
//
// Code never builds a lock, thread, clock or file manager itself: it asks the
// process-wide platform instance. Every factory operation returns a new
// object whose count is still 0; wrap it in a SmartPtr at once.
//
// Example:
//   SmartPtr<IPlatform> platform(Platform::GetInstance());
//   SmartPtr<ILock> lock(platform->CreateLock());
//   SmartPtr<IFileManager> files(platform->CreateFileManager());
//
// Factory operations may be called from any thread.
#ifndef KIVPLR_IPLATFORM_H
#define KIVPLR_IPLATFORM_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>

#include <cstdint>

namespace KivPlr {

class ILock;
class ISharedLock;
class ISemaphore;
class IThread;
class IClock;
class ISystemClock;
class IFileManager;
class IDirectoryManager;
class IUser;
class IUserGroup;
class ILogManager;

class KIVPLR_API IPlatform : public virtual IObject
{
public:
    /// A monitor (mutex and condition variable) with its own helpers.
    virtual ILock* CreateLock() = 0;
    /// A reader/writer lock.
    virtual ISharedLock* CreateSharedLock() = 0;
    /// A counting semaphore starting at 0.
    virtual ISemaphore* CreateSemaphore() = 0;
    /// A thread, not yet started, with the platform's priority ladder.
    virtual IThread* CreateThread() = 0;
    /// A stopwatch over the monotonic clock, started now.
    virtual IClock* CreateClock() = 0;
    /// The machine's wall clock.
    virtual ISystemClock* CreateSystemClock() = 0;
    virtual IFileManager* CreateFileManager() = 0;
    virtual IDirectoryManager* CreateDirectoryManager() = 0;
    virtual IUser* CreateUser() = 0;
    virtual IUserGroup* CreateUserGroup() = 0;
    virtual ILogManager* CreateLogManager() = 0;
    /// Atomically adds 1 to \p value; returns the new value. A null \p value
    /// reference is fatal, here and in AtomicDecrement.
    virtual std::int32_t AtomicIncrement(std::int32_t& value) = 0;
    /// Atomically subtracts 1 from \p value; returns the new value.
    virtual std::int32_t AtomicDecrement(std::int32_t& value) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IPlatform() override = default;
};

} // namespace KivPlr

#endif

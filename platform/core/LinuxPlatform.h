// SPDX-License-Identifier: Apache-2.0
// LinuxPlatform.h - the platform factory of Linux: builds the POSIX and Linux
// implementations of every platform service.
//
// The entry routine makes one with new and installs it with
// Platform::SetInstance; everything else reaches it through GetInstance.
// Every factory call builds the new object's helpers afresh, so no two
// objects share a converter, calculator or clock reader. Any thread may call
// the factory operations.
//
// Example:
//   Platform::SetInstance(new LinuxPlatform);
//   SmartPtr<ILock> lock(Platform::GetInstance()->CreateLock());
#ifndef KIVPLR_LINUXPLATFORM_H
#define KIVPLR_LINUXPLATFORM_H

#include <KivPlr/accounts/IPosix.h>
#include <KivPlr/core/Export.h>
#include <KivPlr/core/Platform.h>
#include <KivPlr/core/SmartPtr.h>

namespace KivPlr {

class PosixThreadPriorityMap;

class KIVPLR_API LinuxPlatform : public Platform
{
public:
    /// Makes the Posix object that builds the POSIX primitives.
    LinuxPlatform();

    /// A PosixLock with a new CLOCK_REALTIME deadline calculator and a new
    /// PosixResultPassFail.
    ILock* CreateLock() override;
    /// A PosixSharedLock with a new PosixResultPassFail.
    ISharedLock* CreateSharedLock() override;
    /// A PosixSemaphore (count 0) with a new CLOCK_REALTIME deadline
    /// calculator and a new PosixResultPassFail.
    ISemaphore* CreateSemaphore() override;
    /// A PosixThread with a new PassiveThreadObserver, a new priority map
    /// holding the priority ladder, a new PosixResultPassFail and the
    /// system's default stack size.
    IThread* CreateThread() override;
    IClock* CreateClock() override;
    ISystemClock* CreateSystemClock() override;
    IFileManager* CreateFileManager() override;
    IDirectoryManager* CreateDirectoryManager() override;
    /// A new User (default construction).
    IUser* CreateUser() override;
    /// A new UserGroup (default construction).
    IUserGroup* CreateUserGroup() override;
    ILogManager* CreateLogManager() override;

    /// Fills \p map with the platform's fixed priority ladder, in this order:
    /// 15, 12, 10, 8, 6, 4, 1, each mapped to POSIX priority 0. Every level
    /// is accepted, yet all threads run at the same POSIX priority.
    static void FillPriorityLadder(PosixThreadPriorityMap& map);

    /// The Posix object, without touching its count; for diagnostics and
    /// tests.
    IPosix* GetPosix() const;

private:
    SmartPtr<IPosix> posix;

protected:
    ~LinuxPlatform() override;
};

} // namespace KivPlr

#endif

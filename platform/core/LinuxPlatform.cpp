// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/LinuxPlatform.h>

#include <KivPlr/accounts/Posix.h>
#include <KivPlr/accounts/User.h>
#include <KivPlr/accounts/UserGroup.h>
#include <KivPlr/core/FatalError.h>
#include <KivPlr/core/PosixResultPassFail.h>
#include <KivPlr/io/DirectoryManager.h>
#include <KivPlr/io/FileManager.h>
#include <KivPlr/io/LogManager.h>
#include <KivPlr/sync/PassiveThreadObserver.h>
#include <KivPlr/sync/PosixThreadPriorityMap.h>
#include <KivPlr/time/ClockGetTimeClock.h>
#include <KivPlr/time/LinuxSystemClock.h>
#include <KivPlr/time/PosixCurrentTimespec.h>
#include <KivPlr/time/PosixTimespecOffsetCalculator.h>

#include <ctime>

namespace KivPlr {

namespace {

// Deadlines of locks and semaphores are wall-clock times: that is the clock
// pthread_cond_timedwait (default attributes) and sem_timedwait measure.
SmartPtr<IPosixTimespecOffsetCalculator> NewRealTimeDeadlineCalculator()
{
    SmartPtr<IPosixTimespecProvider> provider(new PosixCurrentTimespec(CLOCK_REALTIME));
    return SmartPtr<IPosixTimespecOffsetCalculator>(new PosixTimespecOffsetCalculator(provider));
}

} // namespace

LinuxPlatform::LinuxPlatform() : posix(new Posix) {}

LinuxPlatform::~LinuxPlatform() = default;

ILock* LinuxPlatform::CreateLock()
{
    SmartPtr<IPosixTimespecOffsetCalculator> calculator(NewRealTimeDeadlineCalculator());
    SmartPtr<IResultConverter> converter(new PosixResultPassFail);
    return posix->CreateLock(calculator.Get(), converter.Get());
}

ISharedLock* LinuxPlatform::CreateSharedLock()
{
    SmartPtr<IResultConverter> converter(new PosixResultPassFail);
    return posix->CreateSharedLock(converter.Get());
}

ISemaphore* LinuxPlatform::CreateSemaphore()
{
    SmartPtr<IPosixTimespecOffsetCalculator> calculator(NewRealTimeDeadlineCalculator());
    SmartPtr<IResultConverter> converter(new PosixResultPassFail);
    return posix->CreateSemaphore(calculator.Get(), converter.Get());
}

IThread* LinuxPlatform::CreateThread()
{
    SmartPtr<IThreadObserver> observer(new PassiveThreadObserver);
    PosixThreadPriorityMap* map = new PosixThreadPriorityMap;
    SmartPtr<IPosixThreadPriorityConverter> priorities(map);
    FillPriorityLadder(*map);
    SmartPtr<IResultConverter> converter(new PosixResultPassFail);
    return posix->CreateThread(observer.Get(), priorities.Get(), converter.Get(), 0);
}

IClock* LinuxPlatform::CreateClock()
{
    // The stopwatch reads the monotonic clock: setting the system time must
    // not make elapsed times jump. Its lock comes through our own slot.
    SmartPtr<ILock> lock(CreateLock());
    SmartPtr<IPosixTimespecProvider> provider(new PosixCurrentTimespec(CLOCK_MONOTONIC));
    return new ClockGetTimeClock(lock, provider);
}

ISystemClock* LinuxPlatform::CreateSystemClock()
{
    return new LinuxSystemClock;
}

IFileManager* LinuxPlatform::CreateFileManager()
{
    return new FileManager;
}

IDirectoryManager* LinuxPlatform::CreateDirectoryManager()
{
    return new DirectoryManager;
}

IUser* LinuxPlatform::CreateUser()
{
    return new User;
}

IUserGroup* LinuxPlatform::CreateUserGroup()
{
    return new UserGroup;
}

ILogManager* LinuxPlatform::CreateLogManager()
{
    return new LogManager;
}

void LinuxPlatform::FillPriorityLadder(PosixThreadPriorityMap& map)
{
    if (IsNullReference(&map))
        FatalError(L"LinuxPlatform: map NULL reference.");
    // The order and the values are the platform's fixed ladder.
    map.Add(15, 0);
    map.Add(12, 0);
    map.Add(10, 0);
    map.Add(8, 0);
    map.Add(6, 0);
    map.Add(4, 0);
    map.Add(1, 0);
}

IPosix* LinuxPlatform::GetPosix() const
{
    return posix.Get();
}

} // namespace KivPlr

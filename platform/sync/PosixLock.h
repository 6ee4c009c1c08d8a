// SPDX-License-Identifier: Apache-2.0
// PosixLock.h - the monitor lock over a POSIX mutex and condition variable.
//
// Made by IPosix::CreateLock (through the platform factory) with its own
// time-out calculator and result converter, which it keeps alive; owned
// through SmartPtr<ILock>. Any thread may use it. The mutex has default
// attributes, so it is not recursive, and timed waits use deadlines on the
// calculator's clock (CLOCK_REALTIME, as pthread_cond_timedwait expects).
//
// Example:
//   SmartPtr<ILock> lock(new PosixLock(
//       new PosixTimespecOffsetCalculator(new PosixCurrentTimespec(CLOCK_REALTIME)), new PosixResultPassFail));
//   _Result result = ResultFail;
//   lock->Lock();
//   lock->Wait(100, result);   // ResultFail after 100 ms without a wake-up
//   lock->Unlock();
#ifndef KIVPLR_POSIXLOCK_H
#define KIVPLR_POSIXLOCK_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IResultConverter.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/LockBase.h>
#include <KivPlr/time/IPosixTimespecOffsetCalculator.h>

#include <cstdint>
#include <pthread.h>

namespace KivPlr {

class KIVPLR_API PosixLock : public LockBase
{
public:
    /// Keeps a reference on both helpers. A missing helper is fatal only when
    /// an operation needs it ("SmartPtr<T>-> NULL reference").
    PosixLock(IPosixTimespecOffsetCalculator* timeoutCalculator, IResultConverter* resultConverter);

    /// The helpers this lock uses, without touching their counts; for
    /// diagnostics and tests.
    IPosixTimespecOffsetCalculator* GetTimeoutCalculator() const;
    IResultConverter* GetResultConverter() const;

protected:
    void LockImpl() override;
    /// True exactly when pthread_mutex_trylock returned 0.
    bool TryLockImpl() override;
    void UnlockImpl() override;
    void NotifyOneImpl(_Result& result) override;
    void NotifyAllImpl(_Result& result) override;
    void WaitImpl(_Result& result) override;
    /// The deadline is computed at the moment of the call; ETIMEDOUT and every
    /// other error become the converter's failure.
    void TimedWaitImpl(std::uint32_t milliseconds, _Result& result) override;

private:
    ~PosixLock() override;

    pthread_mutex_t mutex;
    pthread_cond_t condition;
    SmartPtr<IPosixTimespecOffsetCalculator> timeoutCalculator;
    SmartPtr<IResultConverter> resultConverter;
};

} // namespace KivPlr

#endif

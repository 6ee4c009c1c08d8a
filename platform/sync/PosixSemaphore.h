// SPDX-License-Identifier: Apache-2.0
// PosixSemaphore.h - the counting semaphore over a POSIX unnamed semaphore.
//
// Made by IPosix::CreateSemaphore (through the platform factory) with its own
// time-out calculator and result converter, which it keeps alive; owned
// through SmartPtr<ISemaphore>. Private to the process, count 0 at creation;
// any thread may use it. Timed waits use deadlines on the calculator's clock
// (CLOCK_REALTIME, as sem_timedwait expects).
//
// Example:
//   SmartPtr<ISemaphore> semaphore(new PosixSemaphore(
//       new PosixTimespecOffsetCalculator(new PosixCurrentTimespec(CLOCK_REALTIME)), new PosixResultPassFail));
//   _Result result = ResultFail;
//   semaphore->Wait(0, result);   // ResultFail at once: the count is 0
#ifndef KIVPLR_POSIXSEMAPHORE_H
#define KIVPLR_POSIXSEMAPHORE_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IResultConverter.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/SemaphoreBase.h>
#include <KivPlr/time/IPosixTimespecOffsetCalculator.h>

#include <cstdint>
#include <semaphore.h>

namespace KivPlr {

class KIVPLR_API PosixSemaphore : public SemaphoreBase
{
public:
    /// Keeps a reference on both helpers. A missing helper is fatal only when
    /// an operation needs it ("SmartPtr<T>-> NULL reference").
    PosixSemaphore(IPosixTimespecOffsetCalculator* timeoutCalculator,
                   IResultConverter* resultConverter);

    /// The helpers this semaphore uses, without touching their counts; for
    /// diagnostics and tests.
    IPosixTimespecOffsetCalculator* GetTimeoutCalculator() const;
    IResultConverter* GetResultConverter() const;

protected:
    /// sem_post's return value as it is.
    int PostImpl() override;
    int GetValueImpl() override;
    bool TryWaitImpl() override;
    void WaitImpl(_Result& result) override;
    /// The deadline is computed at the moment of the call; a time-out (-1
    /// from sem_timedwait) becomes the converter's failure.
    void TimedWaitImpl(std::uint32_t milliseconds, _Result& result) override;

private:
    ~PosixSemaphore() override;

    sem_t semaphore;
    SmartPtr<IPosixTimespecOffsetCalculator> timeoutCalculator;
    SmartPtr<IResultConverter> resultConverter;
};

} // namespace KivPlr

#endif

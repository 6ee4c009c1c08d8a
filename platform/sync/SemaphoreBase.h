// SPDX-License-Identifier: Apache-2.0
// SemaphoreBase.h - the portable half of a counting semaphore.
//
// SemaphoreBase implements ISemaphore by handing every operation to the
// protected operation of the same position, which the system's own semaphore
// (PosixSemaphore) fills in; it only decides between the waits with and
// without a time-out. Never made by itself; as thread-safe as its derived
// semaphore.
//
// Example:
//   class OneThreadSemaphore : public SemaphoreBase {  // a system's semaphore fills these in
//       int value = 0;
//   protected:
//       int PostImpl() override { ++value; return 0; }
//       int GetValueImpl() override { return value; }
//       bool TryWaitImpl() override { return value > 0 && value-- > 0; }
//       void WaitImpl(_Result& result) override { result = TryWaitImpl() ? ResultPass : ResultFail; }
//       void TimedWaitImpl(std::uint32_t, _Result& result) override { WaitImpl(result); }
//   };
//   SmartPtr<ISemaphore> semaphore(new OneThreadSemaphore);
//   semaphore->Post();
//   _Result result = ResultFail;
//   semaphore->Wait(WaitForever, result);  // reaches WaitImpl: ResultPass
#ifndef KIVPLR_SEMAPHOREBASE_H
#define KIVPLR_SEMAPHOREBASE_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/sync/ISemaphore.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API SemaphoreBase : protected Object, public ISemaphore
{
public:
    int Post() override;
    int GetValue() override;
    bool TryWait() override;
    void Wait(_Result& result) override;
    /// WaitForever goes to WaitImpl, every other value to TimedWaitImpl.
    void Wait(std::uint32_t milliseconds, _Result& result) override;

protected:
    ~SemaphoreBase() override = default;

    virtual int PostImpl() = 0;
    virtual int GetValueImpl() = 0;
    virtual bool TryWaitImpl() = 0;
    virtual void WaitImpl(_Result& result) = 0;
    virtual void TimedWaitImpl(std::uint32_t milliseconds, _Result& result) = 0;
};

} // namespace KivPlr

#endif

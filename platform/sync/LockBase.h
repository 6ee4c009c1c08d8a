// SPDX-License-Identifier: Apache-2.0
// LockBase.h - the portable half of a monitor lock.
//
// LockBase implements ILock by handing every operation to a protected
// operation that the system's own lock (PosixLock) fills in; it only decides
// between the waits with and without a time-out. It is never made by itself,
// only as the base of such a lock, and is as thread-safe as that lock.
//
// Example:
//   class OneThreadLock : public LockBase {  // a system's lock fills these in
//   public:
//       std::uint32_t lastTimeOut = 0;
//   protected:
//       void LockImpl() override {}
//       bool TryLockImpl() override { return true; }
//       void UnlockImpl() override {}
//       void NotifyOneImpl(_Result& result) override { result = ResultPass; }
//       void NotifyAllImpl(_Result& result) override { result = ResultPass; }
//       void WaitImpl(_Result& result) override { result = ResultPass; }
//       void TimedWaitImpl(std::uint32_t milliseconds, _Result& result) override
//       {
//           lastTimeOut = milliseconds;
//           result = ResultFail;  // nobody else can notify: the wait times out
//       }
//   };
//   SmartPtr<ILock> lock(new OneThreadLock);
//   _Result result = ResultPass;
//   lock->Wait(200, result);  // reaches TimedWaitImpl(200, result)
#ifndef KIVPLR_LOCKBASE_H
#define KIVPLR_LOCKBASE_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/sync/ILock.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API LockBase : protected Object, public ILock
{
public:
    void Lock() override;
    bool TryLock() override;
    void Unlock() override;
    void NotifyOne(_Result& result) override;
    void NotifyAll(_Result& result) override;
    void Wait(_Result& result) override;
    /// WaitForever goes to WaitImpl, every other value to TimedWaitImpl.
    void Wait(std::uint32_t milliseconds, _Result& result) override;

protected:
    ~LockBase() override = default;

    virtual void LockImpl() = 0;
    virtual bool TryLockImpl() = 0;
    virtual void UnlockImpl() = 0;
    virtual void NotifyOneImpl(_Result& result) = 0;
    virtual void NotifyAllImpl(_Result& result) = 0;
    virtual void WaitImpl(_Result& result) = 0;
    virtual void TimedWaitImpl(std::uint32_t milliseconds, _Result& result) = 0;
};

} // namespace KivPlr

#endif

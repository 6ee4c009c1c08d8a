// SPDX-License-Identifier: Apache-2.0
// ISemaphore.h - a counting semaphore, private to the process.
//
// Made by the platform factory (IPlatform::CreateSemaphore) with the count
// at 0 and owned through SmartPtr. Any thread may post; any number of threads
// may wait.
//
// Example:
//   SmartPtr<IPlatform> platform(Platform::GetInstance());
//   SmartPtr<ISemaphore> items(platform->CreateSemaphore());
//   items->Post();                          // producer
//   _Result result = ResultFail;
//   items->Wait(1000, result);              // consumer, at most 1 s
//   if (Succeeded(result)) {
//       // take one item
//   }
#ifndef KIVPLR_ISEMAPHORE_H
#define KIVPLR_ISEMAPHORE_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>
#include <KivPlr/sync/WaitTimeout.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API ISemaphore : public virtual IObject
{
public:
    /// Adds one to the count, waking one waiter; 0 on success, -1 on failure
    /// (errno tells why).
    virtual int Post() = 0;
    /// The current count, only a snapshot; 0 when it cannot be read.
    virtual int GetValue() = 0;
    /// Takes one from the count if it is above 0 at once; true when taken.
    virtual bool TryWait() = 0;
    /// Waits until the count is above 0 and takes one.
    virtual void Wait(_Result& result) = 0;
    /// As Wait, but gives up after \p milliseconds, counted from this call;
    /// the result then reports a failure. WaitForever means no time-out.
    virtual void Wait(std::uint32_t milliseconds, _Result& result) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~ISemaphore() override = default;
};

} // namespace KivPlr

#endif

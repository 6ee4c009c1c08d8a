// SPDX-License-Identifier: Apache-2.0
// IThread.h - a thread of the platform library.
//
// Made by the platform factory (IPlatform::CreateThread), not yet started,
// and owned through SmartPtr. Name and priority are set before Start; Join,
// Yield and Cancel act only on a started thread. The object is meant to be
// driven from one controlling thread; the started flag is not synchronised.
//
// Example:
//   SmartPtr<IPlatform> platform(Platform::GetInstance());
//   SmartPtr<IThread> thread(platform->CreateThread());
//   _Result result = ResultFail;
//   thread->SetPriority(10, result);
//   int job = 0;
//   ThreadBody work = [](void* argument) { ++*static_cast<int*>(argument); };
//   if (thread->Start(work, &job, result))
//       thread->Join();
#ifndef KIVPLR_ITHREAD_H
#define KIVPLR_ITHREAD_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>

#include <cstdint>
#include <string>

namespace KivPlr {

/// The body that a thread runs, once, with the argument given to Start.
typedef void (*ThreadBody)(void* argument);

class KIVPLR_API IThread : public virtual IObject
{
public:
    /// Starts a thread that runs \p body(\p argument). Returns true, and
    /// reports success, when the thread was created; the thread then counts
    /// as started until a successful Join. Starting a thread that has started
    /// and was not joined reports ResultAlreadyStarted and creates nothing.
    /// A null result reference is fatal.
    virtual bool Start(ThreadBody body, void* argument, _Result& result) = 0;
    /// Stores the name. ResultBadArgument without \p name; once started,
    /// ResultAlreadyStarted and the name is kept. Without a result reference
    /// nothing happens.
    virtual void SetName(const std::wstring* name, _Result& result) = 0;
    /// Copies the stored name (empty until set) to \p name. ResultBadArgument
    /// without \p name. Without a result reference nothing happens.
    virtual void GetName(std::wstring* name, _Result& result) = 0;
    /// Stores the platform priority that Start will map to a POSIX one; once
    /// started, ResultAlreadyStarted. Without a result reference nothing
    /// happens.
    virtual void SetPriority(std::int32_t priority, _Result& result) = 0;
    /// Copies the stored priority (0 until set) to \p priority.
    /// ResultBadArgument without \p priority. Without a result reference
    /// nothing happens.
    virtual void GetPriority(std::int32_t* priority, _Result& result) = 0;
    /// Waits for a started thread to end; true at once for a thread that was
    /// never started. A successful join makes the thread startable again.
    virtual bool Join() = 0;
    /// Yields the processor if the thread has started; ResultPass at once
    /// otherwise. A null result reference is fatal (for a started thread,
    /// after the yield, through the result converter).
    virtual void Yield(_Result& result) = 0;
    /// Asks a started thread to stop at its next cancellation point; ResultPass
    /// at once otherwise. Join it afterwards. Without a result reference
    /// nothing happens.
    virtual void Cancel(_Result& result) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IThread() override = default;
};

} // namespace KivPlr

#endif

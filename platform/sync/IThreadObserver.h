// SPDX-License-Identifier: Apache-2.0
// IThreadObserver.h - hears when a thread's body starts and ends.
//
// Handed to a thread when it is made (the platform gives every thread a
// PassiveThreadObserver); the thread keeps a reference on it. Both calls are
// made on the new thread itself, so an observer shared by several threads
// must be thread-safe.
//
// Example:
//   #include <atomic>
//   static std::atomic<int> running{0};
//   class CountingObserver : private Object, public IThreadObserver {
//       void BodyStarting(IThread&) override { ++running; }
//       void BodyFinished(IThread&) override { --running; }
//   };
//   SmartPtr<IThreadObserver> observer(new CountingObserver);
#ifndef KIVPLR_ITHREADOBSERVER_H
#define KIVPLR_ITHREADOBSERVER_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>

namespace KivPlr {

class IThread;

class KIVPLR_API IThreadObserver : public virtual IObject
{
public:
    /// Called once on the new thread, right before its body runs.
    virtual void BodyStarting(IThread& thread) = 0;
    /// Called once on the new thread, right after its body returned or while
    /// a cancellation unwinds it. Must not throw.
    virtual void BodyFinished(IThread& thread) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IThreadObserver() override = default;
};

} // namespace KivPlr

#endif

// SPDX-License-Identifier: Apache-2.0
// PosixThread.h - the thread over POSIX threads.
//
// Made by IPosix::CreateThread (through the platform factory) with an
// observer, a priority converter, a result converter and a stack size; it
// keeps references on all three helpers. Owned through SmartPtr<IThread>;
// a running thread also holds a reference on its object until its body has
// finished, so dropping the last outside reference never frees it under the
// thread's feet. Drive it from one controlling thread.
//
// Example:
//   SmartPtr<IThread> thread(
//       new PosixThread(new PassiveThreadObserver, new PosixThreadPriorityMap, new PosixResultPassFail, 0));
//   _Result result = ResultFail;
//   int job = 0;
//   thread->Start([](void* argument) { ++*static_cast<int*>(argument); }, &job, result);
//   thread->Join();
#ifndef KIVPLR_POSIXTHREAD_H
#define KIVPLR_POSIXTHREAD_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IResultConverter.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/IPosixThreadPriorityConverter.h>
#include <KivPlr/sync/ThreadBase.h>

#include <cstdint>
#include <pthread.h>

namespace KivPlr {

class KIVPLR_API PosixThread : public ThreadBase
{
public:
    /// \p stackSize in bytes; 0 keeps the system's default stack size, and a
    /// size the system refuses is ignored the same way. A null observer is
    /// fatal at once; a missing converter when Start needs it.
    PosixThread(IThreadObserver* observer, IPosixThreadPriorityConverter* priorityConverter,
                IResultConverter* resultConverter, std::uint32_t stackSize);

    /// The helpers and the stack size, without touching counts; for
    /// diagnostics and tests.
    IPosixThreadPriorityConverter* GetPriorityConverter() const;
    IResultConverter* GetResultConverter() const;
    std::uint32_t GetStackSize() const;

protected:
    /// Builds the attributes (scheduling priority from the priority
    /// converter, stack size) and creates the thread. Fails without a thread
    /// when the attributes cannot be initialised or read.
    void StartImpl(ThreadBody body, void* argument, _Result& result) override;
    void JoinImpl(_Result& result) override;
    void YieldImpl(_Result& result) override;
    void CancelImpl(_Result& result) override;

private:
    /// Destroys the attributes. A thread that was started and never joined is
    /// detached, so the system frees it when it ends.
    ~PosixThread() override;

    static void* Entry(void* startRecord);

    pthread_t thread;
    pthread_attr_t attributes;
    bool attributesInitialised;
    SmartPtr<IPosixThreadPriorityConverter> priorityConverter;
    SmartPtr<IResultConverter> resultConverter;
    std::uint32_t stackSize;
};

} // namespace KivPlr

#endif

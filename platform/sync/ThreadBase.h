// SPDX-License-Identifier: Apache-2.0
// ThreadBase.h - the portable half of a thread: name, priority, the started
// flag, the guarded operations and the observer's two notifications.
//
// It is never made by itself, only as the base of the system's own thread
// (PosixThread), which fills in the protected operations. The flag and the
// stored values are not synchronised: drive a thread object from one
// controlling thread.
//
// Example:
//   #include <KivPlr/sync/PassiveThreadObserver.h>
//   class InlineThread : public ThreadBase {  // runs the body on the caller's thread
//   public:
//       explicit InlineThread(IThreadObserver* observer) : ThreadBase(observer) {}
//   protected:
//       void StartImpl(ThreadBody body, void* argument, _Result& result) override
//       {
//           RunBody(body, argument);  // the observer's two notifications around it
//           result = ResultPass;
//       }
//       void JoinImpl(_Result& result) override { result = ResultPass; }
//       void YieldImpl(_Result& result) override { result = ResultPass; }
//       void CancelImpl(_Result& result) override { result = ResultNotSupported; }
//   };
//   SmartPtr<IThread> thread(new InlineThread(new PassiveThreadObserver));
//   int runs = 0;
//   _Result result = ResultFail;
//   thread->Start([](void* argument) { ++*static_cast<int*>(argument); }, &runs, result);
//   thread->Join();  // clears the started flag
#ifndef KIVPLR_THREADBASE_H
#define KIVPLR_THREADBASE_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/IThread.h>
#include <KivPlr/sync/IThreadObserver.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API ThreadBase : protected Object, public IThread
{
public:
    /// Keeps a reference on \p observer. A null observer is fatal:
    /// "ThreadBase: IThreadObserver* NULL reference".
    explicit ThreadBase(IThreadObserver* observer);

    /// Sets the started flag to Succeeded of the implementation's result and
    /// returns it. A thread that is still started reports
    /// ResultAlreadyStarted and returns false without starting another.
    bool Start(ThreadBody body, void* argument, _Result& result) override;
    void SetName(const std::wstring* name, _Result& result) override;
    void GetName(std::wstring* name, _Result& result) override;
    void SetPriority(std::int32_t priority, _Result& result) override;
    void GetPriority(std::int32_t* priority, _Result& result) override;
    /// True at once when not started; otherwise the join's success, which
    /// also clears the started flag.
    bool Join() override;
    void Yield(_Result& result) override;
    void Cancel(_Result& result) override;

    /// The observer, without touching its count; for diagnostics and tests.
    IThreadObserver* GetObserver() const;

protected:
    ~ThreadBase() override = default;

    virtual void StartImpl(ThreadBody body, void* argument, _Result& result) = 0;
    virtual void JoinImpl(_Result& result) = 0;
    virtual void YieldImpl(_Result& result) = 0;
    virtual void CancelImpl(_Result& result) = 0;

    /// Runs on the new thread: one BodyStarting, one call of \p body with
    /// \p argument, one BodyFinished (also when a cancellation unwinds the
    /// body).
    void RunBody(ThreadBody body, void* argument);
    /// True from a successful Start until a successful Join.
    bool IsStarted() const;

private:
    SmartPtr<IThreadObserver> observer;
    std::wstring name;
    std::int32_t priority;
    bool started;
};

} // namespace KivPlr

#endif

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/sync/ThreadBase.h>

#include <KivPlr/core/FatalError.h>

namespace KivPlr {

namespace {

// Tells the observer that the body is over when it goes out of scope, so a
// cancellation (which unwinds the thread's stack) is reported too.
class FinishedNotice
{
public:
    FinishedNotice(IThreadObserver& observer, IThread& thread) : observer(observer), thread(thread) {}
    ~FinishedNotice() { observer.BodyFinished(thread); }

    FinishedNotice(const FinishedNotice&) = delete;
    FinishedNotice& operator=(const FinishedNotice&) = delete;

private:
    IThreadObserver& observer;
    IThread& thread;
};

void CheckResultReference(const _Result* result)
{
    if (IsNullReference(result))
        FatalError(L"ThreadBase: result NULL reference.");
}

} // namespace

ThreadBase::ThreadBase(IThreadObserver* observer)
    : observer(observer), name(), priority(0), started(false)
{
    if (observer == nullptr)
        FatalError(L"ThreadBase: IThreadObserver* NULL reference");
}

bool ThreadBase::Start(ThreadBody body, void* argument, _Result& result)
{
    // A second start would overwrite the handle of a thread nobody joined.
    if (started) {
        CheckResultReference(&result);
        result = ResultAlreadyStarted;
        return false;
    }
    // The implementation hands what it gets from the system through its
    // result converter, which ends the process on a null result.
    StartImpl(body, argument, result);
    started = Succeeded(result);
    return started;
}

void ThreadBase::SetName(const std::wstring* newName, _Result& result)
{
    if (IsNullReference(&result))
        return;
    if (newName == nullptr) {
        result = ResultBadArgument;
    } else if (started) {
        result = ResultAlreadyStarted;
    } else {
        name = *newName;
        result = ResultPass;
    }
}

void ThreadBase::GetName(std::wstring* nameOut, _Result& result)
{
    if (IsNullReference(&result))
        return;
    if (nameOut == nullptr) {
        result = ResultBadArgument;
    } else {
        *nameOut = name;
        result = ResultPass;
    }
}

void ThreadBase::SetPriority(std::int32_t newPriority, _Result& result)
{
    if (IsNullReference(&result))
        return;
    if (started) {
        result = ResultAlreadyStarted;
    } else {
        priority = newPriority;
        result = ResultPass;
    }
}

void ThreadBase::GetPriority(std::int32_t* priorityOut, _Result& result)
{
    if (IsNullReference(&result))
        return;
    if (priorityOut == nullptr) {
        result = ResultBadArgument;
    } else {
        *priorityOut = priority;
        result = ResultPass;
    }
}

bool ThreadBase::Join()
{
    if (!started)
        return true;
    _Result result = ResultFail;
    JoinImpl(result);
    if (Succeeded(result))
        started = false;
    return Succeeded(result);
}

void ThreadBase::Yield(_Result& result)
{
    // Unlike the setters, getters and Cancel, Yield has no "nothing happens
    // without a result" rule: a null result is fatal. A started thread's
    // implementation yields and its result converter ends the process.
    if (started) {
        YieldImpl(result);
        return;
    }
    CheckResultReference(&result);
    result = ResultPass;
}

void ThreadBase::Cancel(_Result& result)
{
    if (IsNullReference(&result))
        return;
    if (started)
        CancelImpl(result);
    else
        result = ResultPass;
}

IThreadObserver* ThreadBase::GetObserver() const
{
    return observer.Get();
}

void ThreadBase::RunBody(ThreadBody body, void* argument)
{
    observer->BodyStarting(*this);
    FinishedNotice notice(*observer, *this);
    body(argument);
}

bool ThreadBase::IsStarted() const
{
    return started;
}

} // namespace KivPlr

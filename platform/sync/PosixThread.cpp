// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/sync/PosixThread.h>

#include <cstdint>
#include <sched.h>

namespace KivPlr {

namespace {

// What the new thread needs; it frees the record before running the body.
struct StartRecord
{
    ThreadBody body;
    void* argument;
    SmartPtr<IThread> thread;
};

} // namespace

PosixThread::PosixThread(IThreadObserver* observer,
                         IPosixThreadPriorityConverter* priorityConverter,
                         IResultConverter* resultConverter, std::uint32_t stackSize)
    : ThreadBase(observer),
      thread(),
      attributes(),
      attributesInitialised(false),
      priorityConverter(priorityConverter),
      resultConverter(resultConverter),
      stackSize(stackSize)
{
}

PosixThread::~PosixThread()
{
    if (IsStarted())
        pthread_detach(thread);
    if (attributesInitialised)
        pthread_attr_destroy(&attributes);
}

IPosixThreadPriorityConverter* PosixThread::GetPriorityConverter() const
{
    return priorityConverter.Get();
}

IResultConverter* PosixThread::GetResultConverter() const
{
    return resultConverter.Get();
}

std::uint32_t PosixThread::GetStackSize() const
{
    return stackSize;
}

void PosixThread::StartImpl(ThreadBody body, void* argument, _Result& result)
{
    if (attributesInitialised) {
        // Started before and joined: begin again from fresh attributes.
        pthread_attr_destroy(&attributes);
        attributesInitialised = false;
    }

    resultConverter->Convert(pthread_attr_init(&attributes), result);
    if (Failed(result))
        return;
    attributesInitialised = true;

    struct sched_param scheduling = {};
    resultConverter->Convert(pthread_attr_getschedparam(&attributes, &scheduling), result);
    if (Failed(result))
        return;

    // An unmapped priority leaves the attributes' own priority in place, so
    // neither the query nor the conversion is checked.
    std::int32_t platformPriority = 0;
    _Result priorityResult = ResultFail;
    GetPriority(&platformPriority, priorityResult);
    int posixPriority = scheduling.sched_priority;
    _Result conversionResult = ResultFail;
    priorityConverter->Convert(platformPriority, posixPriority, conversionResult);
    scheduling.sched_priority = posixPriority;
    pthread_attr_setschedparam(&attributes, &scheduling);

    if (stackSize != 0)
        pthread_attr_setstacksize(&attributes, stackSize);

    StartRecord* record = new StartRecord{body, argument, SmartPtr<IThread>(this)};
    int created = pthread_create(&thread, &attributes, &PosixThread::Entry, record);
    if (created != 0)
        delete record;
    resultConverter->Convert(created, result);
}

void PosixThread::JoinImpl(_Result& result)
{
    resultConverter->Convert(pthread_join(thread, nullptr), result);
}

void PosixThread::YieldImpl(_Result& result)
{
    resultConverter->Convert(sched_yield(), result);
}

void PosixThread::CancelImpl(_Result& result)
{
    resultConverter->Convert(pthread_cancel(thread), result);
}

void* PosixThread::Entry(void* startRecord)
{
    StartRecord* record = static_cast<StartRecord*>(startRecord);
    ThreadBody body = record->body;
    void* argument = record->argument;
    SmartPtr<IThread> self(record->thread);
    delete record;
    static_cast<PosixThread*>(self.Get())->RunBody(body, argument);
    return nullptr;
}

} // namespace KivPlr

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/sync/PosixLock.h>

namespace KivPlr {

PosixLock::PosixLock(IPosixTimespecOffsetCalculator* timeoutCalculator,
                     IResultConverter* resultConverter)
    : timeoutCalculator(timeoutCalculator), resultConverter(resultConverter)
{
    pthread_mutex_init(&mutex, nullptr);
    pthread_cond_init(&condition, nullptr);
}

PosixLock::~PosixLock()
{
    pthread_cond_destroy(&condition);
    pthread_mutex_destroy(&mutex);
}

IPosixTimespecOffsetCalculator* PosixLock::GetTimeoutCalculator() const
{
    return timeoutCalculator.Get();
}

IResultConverter* PosixLock::GetResultConverter() const
{
    return resultConverter.Get();
}

// Errors of locking and unlocking are not reported: a default mutex used as
// documented does not fail.
void PosixLock::LockImpl()
{
    pthread_mutex_lock(&mutex);
}

bool PosixLock::TryLockImpl()
{
    return pthread_mutex_trylock(&mutex) == 0;
}

void PosixLock::UnlockImpl()
{
    pthread_mutex_unlock(&mutex);
}

void PosixLock::NotifyOneImpl(_Result& result)
{
    resultConverter->Convert(pthread_cond_signal(&condition), result);
}

void PosixLock::NotifyAllImpl(_Result& result)
{
    resultConverter->Convert(pthread_cond_broadcast(&condition), result);
}

void PosixLock::WaitImpl(_Result& result)
{
    resultConverter->Convert(pthread_cond_wait(&condition, &mutex), result);
}

void PosixLock::TimedWaitImpl(std::uint32_t milliseconds, _Result& result)
{
    struct timespec deadline = {};
    timeoutCalculator->ComputeDeadline(milliseconds, deadline);
    resultConverter->Convert(pthread_cond_timedwait(&condition, &mutex, &deadline), result);
}

} // namespace KivPlr

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/sync/PosixSemaphore.h>

namespace KivPlr {

PosixSemaphore::PosixSemaphore(IPosixTimespecOffsetCalculator* timeoutCalculator,
                               IResultConverter* resultConverter)
    : timeoutCalculator(timeoutCalculator), resultConverter(resultConverter)
{
    sem_init(&semaphore, 0, 0);
}

PosixSemaphore::~PosixSemaphore()
{
    sem_destroy(&semaphore);
}

IPosixTimespecOffsetCalculator* PosixSemaphore::GetTimeoutCalculator() const
{
    return timeoutCalculator.Get();
}

IResultConverter* PosixSemaphore::GetResultConverter() const
{
    return resultConverter.Get();
}

int PosixSemaphore::PostImpl()
{
    return sem_post(&semaphore);
}

int PosixSemaphore::GetValueImpl()
{
    int value = 0;
    sem_getvalue(&semaphore, &value);
    return value;
}

bool PosixSemaphore::TryWaitImpl()
{
    return sem_trywait(&semaphore) == 0;
}

void PosixSemaphore::WaitImpl(_Result& result)
{
    resultConverter->Convert(sem_wait(&semaphore), result);
}

void PosixSemaphore::TimedWaitImpl(std::uint32_t milliseconds, _Result& result)
{
    struct timespec deadline = {};
    timeoutCalculator->ComputeDeadline(milliseconds, deadline);
    resultConverter->Convert(sem_timedwait(&semaphore, &deadline), result);
}

} // namespace KivPlr

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/time/PosixTimespecOffsetCalculator.h>

#include <KivPlr/core/FatalError.h>

namespace KivPlr {

namespace {

constexpr std::uint32_t MillisecondsPerSecond = 1000;
constexpr std::uint32_t NanosecondsPerMillisecond = 1000000;
constexpr std::uint32_t NanosecondsPerSecond = 1000000000;

} // namespace

PosixTimespecOffsetCalculator::PosixTimespecOffsetCalculator(
    const SmartPtr<IPosixTimespecProvider>& provider)
    : provider(provider)
{
}

void PosixTimespecOffsetCalculator::ComputeDeadline(std::uint32_t timeoutMilliseconds,
                                                    struct timespec& deadline)
{
    if (IsNullReference(&deadline))
        FatalError(L"PosixTimespecOffsetCalculator: deadline NULL reference.");
    struct timespec now = {};
    provider->GetCurrentTime(now);
    deadline = AddMilliseconds(now, timeoutMilliseconds);
}

struct timespec PosixTimespecOffsetCalculator::AddMilliseconds(const struct timespec& now,
                                                               std::uint32_t timeoutMilliseconds)
{
    std::uint32_t seconds =
        static_cast<std::uint32_t>(now.tv_sec) + timeoutMilliseconds / MillisecondsPerSecond;
    std::uint32_t nanoseconds = static_cast<std::uint32_t>(now.tv_nsec) +
                                (timeoutMilliseconds % MillisecondsPerSecond) * NanosecondsPerMillisecond;
    struct timespec deadline = {};
    deadline.tv_sec = static_cast<time_t>(seconds + nanoseconds / NanosecondsPerSecond);
    deadline.tv_nsec = static_cast<long>(nanoseconds % NanosecondsPerSecond);
    return deadline;
}

} // namespace KivPlr

// SPDX-License-Identifier: Apache-2.0
#include <KivTest/FakeTimespecOffsetCalculator.h>

namespace KivTest {

void FakeTimespecOffsetCalculator::ComputeDeadline(std::uint32_t timeoutMilliseconds,
                                                   struct timespec& deadline)
{
    std::lock_guard<std::mutex> hold(mutex);
    requests.push_back(timeoutMilliseconds);
    deadline = answer;
}

void FakeTimespecOffsetCalculator::SetDeadline(const struct timespec& deadline)
{
    std::lock_guard<std::mutex> hold(mutex);
    answer = deadline;
}

struct timespec FakeTimespecOffsetCalculator::SetDeadlineFromNow(std::uint32_t milliseconds)
{
    struct timespec deadline = RealTimeNow();
    deadline.tv_sec += static_cast<time_t>(milliseconds / 1000u);
    deadline.tv_nsec += static_cast<long>(milliseconds % 1000u) * 1000000L;
    if (deadline.tv_nsec >= 1000000000L) {
        deadline.tv_nsec -= 1000000000L;
        deadline.tv_sec += 1;
    }
    SetDeadline(deadline);
    return deadline;
}

std::vector<std::uint32_t> FakeTimespecOffsetCalculator::Requests()
{
    std::lock_guard<std::mutex> hold(mutex);
    return requests;
}

struct timespec RealTimeNow()
{
    struct timespec now = {0, 0};
    clock_gettime(CLOCK_REALTIME, &now);
    return now;
}

bool NotAfter(const struct timespec& earlier, const struct timespec& later)
{
    if (earlier.tv_sec != later.tv_sec)
        return earlier.tv_sec < later.tv_sec;
    return earlier.tv_nsec <= later.tv_nsec;
}

} // namespace KivTest

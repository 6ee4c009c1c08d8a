// SPDX-License-Identifier: Apache-2.0
#include <KivTest/RecordingLock.h>

namespace KivTest {

void RecordingLock::Lock()
{
    Record("Lock");
    std::lock_guard<std::mutex> hold(mutex);
    ++depth;
}

bool RecordingLock::TryLock()
{
    Record("TryLock");
    std::lock_guard<std::mutex> hold(mutex);
    ++depth;
    return true;
}

void RecordingLock::Unlock()
{
    Record("Unlock");
    std::lock_guard<std::mutex> hold(mutex);
    --depth;
}

void RecordingLock::NotifyOne(KivPlr::_Result& result)
{
    Record("NotifyOne");
    result = KivPlr::ResultPass;
}

void RecordingLock::NotifyAll(KivPlr::_Result& result)
{
    Record("NotifyAll");
    result = KivPlr::ResultPass;
}

void RecordingLock::Wait(KivPlr::_Result& result)
{
    Record("Wait");
    std::lock_guard<std::mutex> hold(mutex);
    result = waitResult;
}

void RecordingLock::Wait(std::uint32_t milliseconds, KivPlr::_Result& result)
{
    Record("Wait(" + std::to_string(milliseconds) + ")");
    std::lock_guard<std::mutex> hold(mutex);
    result = waitResult;
}

void RecordingLock::SetWaitResult(KivPlr::_Result result)
{
    std::lock_guard<std::mutex> hold(mutex);
    waitResult = result;
}

std::vector<std::string> RecordingLock::Calls()
{
    std::lock_guard<std::mutex> hold(mutex);
    return calls;
}

int RecordingLock::Depth()
{
    std::lock_guard<std::mutex> hold(mutex);
    return depth;
}

void RecordingLock::Record(const std::string& call)
{
    std::lock_guard<std::mutex> hold(mutex);
    calls.push_back(call);
}

} // namespace KivTest

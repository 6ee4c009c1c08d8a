// SPDX-License-Identifier: Apache-2.0
#include <KivTest/RecordingResultConverter.h>

namespace KivTest {

void RecordingResultConverter::Convert(int nativeResult, KivPlr::_Result& result)
{
    std::lock_guard<std::mutex> hold(mutex);
    nativeResults.push_back(nativeResult);
    result = nativeResult == 0 ? KivPlr::ResultPass : KivPlr::ResultFail;
}

std::vector<int> RecordingResultConverter::NativeResults()
{
    std::lock_guard<std::mutex> hold(mutex);
    return nativeResults;
}

} // namespace KivTest

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/sync/PosixThreadPriorityMap.h>

#include <KivPlr/core/FatalError.h>

namespace KivPlr {

void PosixThreadPriorityMap::Add(std::int32_t platformPriority, std::int32_t posixPriority)
{
    priorities[platformPriority] = posixPriority;
}

void PosixThreadPriorityMap::Convert(std::int32_t platformPriority, int& nPosixPriority,
                                     _Result& result)
{
    if (IsNullReference(&nPosixPriority))
        FatalError(L"PosixThreadPriorityMap: int& nPosixPriority NULL reference");
    if (IsNullReference(&result))
        FatalError(L"PosixThreadPriorityMap: Result& result NULL reference");
    result = ResultFail;
    std::map<std::int32_t, std::int32_t>::const_iterator found = priorities.find(platformPriority);
    if (found != priorities.end()) {
        nPosixPriority = found->second;
        result = ResultPass;
    }
}

} // namespace KivPlr

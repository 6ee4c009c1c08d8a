// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/io/ILog.h>

#include <KivPlr/core/FatalError.h>

namespace KivPlr {

void ILog::Write(std::uint32_t level, const char* message, _Result& result)
{
    if (IsNullReference(&result))
        FatalError(L"ILog: result NULL reference.");
    Write(level, std::string(message != nullptr ? message : ""), result);
}

} // namespace KivPlr

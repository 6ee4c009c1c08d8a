// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/LinuxResultConverter.h>

#include <KivPlr/core/FatalError.h>

namespace KivPlr {

void LinuxResultConverter::Convert(int nativeResult, _Result& result)
{
    if (IsNullReference(&result))
        FatalError(L"LinuxResultPassFail: result NULL reference.");
    result = nativeResult == 0 ? ResultPass : ResultFail;
}

} // namespace KivPlr

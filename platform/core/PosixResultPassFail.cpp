// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/PosixResultPassFail.h>

#include <KivPlr/core/FatalError.h>

namespace KivPlr {

void PosixResultPassFail::Convert(int nativeResult, _Result& result)
{
    if (IsNullReference(&result))
        FatalError(L"PosixResultPasFail: result NULL reference.");
    result = nativeResult == 0 ? ResultPass : ResultFail;
}

} // namespace KivPlr

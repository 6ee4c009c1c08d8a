// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/FatalError.h>

#include <cstdlib>

namespace KivPlr {

const wchar_t* volatile LastFatalErrorMessage = nullptr;

void FatalError(const wchar_t* message)
{
    LastFatalErrorMessage = message;
    std::exit(1);
}

} // namespace KivPlr

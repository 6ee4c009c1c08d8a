// SPDX-License-Identifier: Apache-2.0
// FatalError.h - the one way the platform library ends the process on a
// programming error (a null reference, a date out of range, ...).
//
// The routine takes a wide-character message that names the class and the
// fault, keeps it where a debugger or a core dump can find it, and ends the
// process with exit status 1. It prints nothing, deliberately: the message is
// for the developer at the debugger, not for a log.
//
// Example:
//   auto convert = [](int value, _Result& result) {
//       if (IsNullReference(&result))
//           FatalError(L"PosixResultPasFail: result NULL reference.");
//       result = value == 0 ? ResultPass : ResultFail;
//   };
#ifndef KIVPLR_FATALERROR_H
#define KIVPLR_FATALERROR_H

#include <KivPlr/core/Export.h>

namespace KivPlr {

/// Ends the process with exit(1) without printing anything. \p message is
/// stored in LastFatalErrorMessage first, for post-mortem inspection.
[[noreturn]] KIVPLR_API void FatalError(const wchar_t* message);

/// The message of the fatal error in progress, or null. Kept for debuggers.
extern KIVPLR_API const wchar_t* volatile LastFatalErrorMessage;

/// True when a reference parameter was bound to a null address; call it with
/// the reference's address: `if (IsNullReference(&result))`. Taking the
/// address (rather than binding the reference again) keeps the check itself
/// free of undefined behaviour, and the empty assembler statement stops the
/// optimiser from assuming that a reference is never null and dropping it.
template <typename T>
inline bool IsNullReference(const T* address)
{
    const void* seen = address;
    asm volatile("" : "+r"(seen));
    return seen == nullptr;
}

} // namespace KivPlr

#endif

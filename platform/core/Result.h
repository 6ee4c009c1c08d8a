// SPDX-License-Identifier: Apache-2.0
// Result.h - the result code that every platform operation reports.
//
// A _Result is handed in by reference as the last argument of an operation
// and compared for equality only. 200 and 250 are the two success values;
// everything else is a failure, though callers that must tell the end of a
// stream from a failure compare with ResultEndOfData.
//
// Example:
//   SmartPtr<IStream> stream;                // opened by IFileManager::OpenRead
//   char buffer[512];
//   std::uint64_t count = 0;
//   _Result result = ResultFail;
//   stream->Read(buffer, sizeof buffer, 0, 1, count, result);
//   if (result == ResultEndOfData) {
//       // the whole file has been read
//   } else if (Failed(result)) {
//       // the read failed
//   }
#ifndef KIVPLR_RESULT_H
#define KIVPLR_RESULT_H

#include <cstdint>

namespace KivPlr {

typedef std::uint32_t _Result;

constexpr _Result ResultPass = 200;          ///< the operation succeeded
constexpr _Result ResultPassAlternate = 250; ///< a second success value
constexpr _Result ResultOutOfRange = 400;    ///< a setter refused the value
constexpr _Result ResultBadArgument = 401;   ///< no place for an output value
constexpr _Result ResultAlreadyStarted = 405;///< the thread has already started
constexpr _Result ResultEndOfData = 450;     ///< a stream read found no more data
constexpr _Result ResultFail = 500;          ///< the operation failed
constexpr _Result ResultNotSupported = 501;  ///< the object does not support it

/// True for ResultPass and ResultPassAlternate, false for every other value.
constexpr bool Succeeded(_Result result)
{
    return result == ResultPass || result == ResultPassAlternate;
}

/// The exact negation of Succeeded.
constexpr bool Failed(_Result result)
{
    return !Succeeded(result);
}

} // namespace KivPlr

#endif

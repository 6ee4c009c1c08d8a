// SPDX-License-Identifier: Apache-2.0
// PosixResultPassFail.h - the result converter of the POSIX locks, threads and semaphores.
//
// Stateless; created with new and shared through SmartPtr by any number of
// threads.
//
// Example:
//   SmartPtr<IResultConverter> converter(new PosixResultPassFail);
//   _Result result = ResultPass;
//   converter->Convert(-1, result);   // result == ResultFail
#ifndef KIVPLR_POSIXRESULTPASSFAIL_H
#define KIVPLR_POSIXRESULTPASSFAIL_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IResultConverter.h>
#include <KivPlr/core/Object.h>

namespace KivPlr {

class KIVPLR_API PosixResultPassFail : private Object, public IResultConverter
{
public:
    /// 200 for 0, 500 for anything else. A null \p result reference is fatal:
    /// "PosixResultPasFail: result NULL reference."
    void Convert(int nativeResult, _Result& result) override;

private:
    ~PosixResultPassFail() override = default;
};

} // namespace KivPlr

#endif

// SPDX-License-Identifier: Apache-2.0
// IResultConverter.h - turns a native return code into a _Result.
//
// Zero means pass (200), anything else means fail (500): a positive error
// number as the pthread functions return it, or -1 as most system calls do.
// The native error number is not kept; read errno before the next call.
//
// Example:
//   #include <pthread.h>
//   pthread_cond_t condition = PTHREAD_COND_INITIALIZER;
//   SmartPtr<IResultConverter> converter(new PosixResultPassFail);
//   _Result result = ResultFail;
//   converter->Convert(pthread_cond_signal(&condition), result);
//
// Converters are stateless and may be shared between threads.
#ifndef KIVPLR_IRESULTCONVERTER_H
#define KIVPLR_IRESULTCONVERTER_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>

namespace KivPlr {

class KIVPLR_API IResultConverter : public virtual IObject
{
public:
    /// \p result = 200 if \p nativeResult is 0, else 500. A null \p result
    /// reference ends the process (fatal error).
    virtual void Convert(int nativeResult, _Result& result) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IResultConverter() override = default;
};

} // namespace KivPlr

#endif

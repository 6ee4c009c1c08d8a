// SPDX-License-Identifier: Apache-2.0
// IPosixThreadPriorityConverter.h - maps a platform thread priority to the
// POSIX scheduling priority that a new thread is created with.
//
// Handed to a PosixThread when it is made; the thread keeps a reference.
// Implementations hold no state that changes after they are filled, so any
// thread may convert.
//
// Example:
//   SmartPtr<IPosixThreadPriorityConverter> converter(new PosixThreadPriorityMap);
//   sched_param param = {};
//   int posixPriority = param.sched_priority;   // kept when unmapped
//   _Result result = ResultFail;
//   converter->Convert(10, posixPriority, result);
#ifndef KIVPLR_IPOSIXTHREADPRIORITYCONVERTER_H
#define KIVPLR_IPOSIXTHREADPRIORITYCONVERTER_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API IPosixThreadPriorityConverter : public virtual IObject
{
public:
    /// Sets \p nPosixPriority to the POSIX priority of \p platformPriority and
    /// reports ResultPass; a priority without a mapping reports ResultFail and
    /// leaves \p nPosixPriority untouched. A null reference is fatal.
    virtual void Convert(std::int32_t platformPriority, int& nPosixPriority, _Result& result) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IPosixThreadPriorityConverter() override = default;
};

} // namespace KivPlr

#endif

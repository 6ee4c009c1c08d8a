// SPDX-License-Identifier: Apache-2.0
// LinuxResultConverter.h - the result converter of the file and directory managers.
//
// Stateless; created with new and shared through SmartPtr by any number of
// threads.
//
// Example:
//   SmartPtr<IResultConverter> converter(new LinuxResultConverter);
//   _Result result = ResultPass;
//   converter->Convert(-1, result);   // result == ResultFail
#ifndef KIVPLR_LINUXRESULTCONVERTER_H
#define KIVPLR_LINUXRESULTCONVERTER_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IResultConverter.h>
#include <KivPlr/core/Object.h>

namespace KivPlr {

class KIVPLR_API LinuxResultConverter : private Object, public IResultConverter
{
public:
    /// 200 for 0, 500 for anything else. A null \p result reference is fatal:
    /// "LinuxResultPassFail: result NULL reference."
    void Convert(int nativeResult, _Result& result) override;

private:
    ~LinuxResultConverter() override = default;
};

} // namespace KivPlr

#endif

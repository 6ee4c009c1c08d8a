// SPDX-License-Identifier: Apache-2.0
// PosixThreadPriorityMap.h - a priority converter backed by a table of exact
// platform-to-POSIX priority pairs.
//
// The platform factory makes and fills one for every thread it creates
// (LinuxPlatform::FillPriorityLadder); the thread then owns it through
// SmartPtr. Fill it before handing it over: Add is not synchronised, Convert
// may be called from any thread once the table no longer changes.
//
// Example:
//   SmartPtr<PosixThreadPriorityMap> map(new PosixThreadPriorityMap);
//   map->Add(15, 0);
//   int posixPriority = 5;
//   _Result result = ResultFail;
//   map->Convert(15, posixPriority, result);   // posixPriority == 0
#ifndef KIVPLR_POSIXTHREADPRIORITYMAP_H
#define KIVPLR_POSIXTHREADPRIORITYMAP_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/sync/IPosixThreadPriorityConverter.h>

#include <cstdint>
#include <map>

namespace KivPlr {

class KIVPLR_API PosixThreadPriorityMap : protected Object, public IPosixThreadPriorityConverter
{
public:
    /// Maps \p platformPriority to \p posixPriority; adding a platform
    /// priority again replaces its mapping.
    virtual void Add(std::int32_t platformPriority, std::int32_t posixPriority);

    /// Exact matches only, no nearest neighbour. Fatal messages:
    /// "PosixThreadPriorityMap: int& nPosixPriority NULL reference" and
    /// "PosixThreadPriorityMap: Result& result NULL reference".
    void Convert(std::int32_t platformPriority, int& nPosixPriority, _Result& result) override;

private:
    std::map<std::int32_t, std::int32_t> priorities;

protected:
    ~PosixThreadPriorityMap() override = default;
};

} // namespace KivPlr

#endif

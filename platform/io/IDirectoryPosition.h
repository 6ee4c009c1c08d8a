// SPDX-License-Identifier: Apache-2.0
// IDirectoryPosition.h - the handle of one directory enumeration, from
// IDirectoryManager::FindFirst to FindRelease.
//
// The directory manager makes it and hands it out through SmartPtr; the
// caller passes it back to FindNext and FindRelease:
//
// Example:
//   SmartPtr<IPlatform> platform(Platform::GetInstance());
//   SmartPtr<IDirectoryManager> directories(platform->CreateDirectoryManager());
//   _Result result = ResultFail;
//   SmartPtr<IDirectoryPosition> position;
//   std::string name;
//   directories->FindFirst(Path("/var/lib"), position, name, result);
//   while (Succeeded(result)) {
//       // use name
//       directories->FindNext(position, name, result);
//   }
//   directories->FindRelease(position, result);
//
// One enumeration serves one thread at a time.
#ifndef KIVPLR_IDIRECTORYPOSITION_H
#define KIVPLR_IDIRECTORYPOSITION_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>
#include <KivPlr/core/Path.h>

namespace KivPlr {

class KIVPLR_API IDirectoryPosition : public virtual IObject
{
public:
    /// Copies the path of the enumerated directory (absolute, as it was
    /// opened) into \p path; 200.
    virtual void GetPath(Path& path, _Result& result) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IDirectoryPosition() override = default;
};

} // namespace KivPlr

#endif

// SPDX-License-Identifier: Apache-2.0
// LinuxDirectoryPosition.h - a directory enumeration over an open POSIX
// directory stream (DIR*).
//
// DirectoryManager::FindFirst makes it around the stream it opened and hands
// it out as an IDirectoryPosition; FindNext and FindRelease find their way
// back to the stream through QueryInterface with ClassId():
//
// Example:
//   SmartPtr<IDirectoryManager> directories(new DirectoryManager);
//   SmartPtr<IDirectoryPosition> position;
//   std::string name;
//   _Result result = ResultFail;
//   directories->FindFirst(Path("/var/lib"), position, name, result);
//   void* raw = nullptr;
//   position->QueryInterface(&LinuxDirectoryPosition::ClassId(), &raw, result);
//   DIR* handle = static_cast<LinuxDirectoryPosition*>(raw)->GetHandle();
//
// Only FindRelease closes the stream: a position that goes without it leaves
// the stream open. One enumeration serves one thread at a time.
#ifndef KIVPLR_LINUXDIRECTORYPOSITION_H
#define KIVPLR_LINUXDIRECTORYPOSITION_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/core/Uuid.h>
#include <KivPlr/io/IDirectoryPosition.h>

#include <dirent.h>

namespace KivPlr {

class KIVPLR_API LinuxDirectoryPosition : private Object, public IDirectoryPosition
{
public:
    /// Takes \p handle (an open directory stream) and a copy of \p path.
    LinuxDirectoryPosition(DIR* handle, const Path& path);

    void GetPath(Path& path, _Result& result) override;

    /// The identity under which QueryInterface hands out this class
    /// (d168b7a6-1727-40eb-ac9a-e1f2829365f0).
    static const Uuid& ClassId();

    /// The directory stream; null once FindRelease has closed it.
    DIR* GetHandle() const;
    /// Forgets the stream after FindRelease closed it.
    void ForgetHandle();

    /// Answers ClassId() (compared over its 16 bytes; an identity with more
    /// bytes matches by its first 16) with this object in \p object and 200,
    /// without adding a reference. Any other identity, a null identity or a
    /// null \p object gives 500.
    bool QueryInterfaceImpl(const Uuid* interfaceId, void** object, _Result& result) override;

private:
    /// Does not close the stream (see above).
    ~LinuxDirectoryPosition() override;

    DIR* handle;
    Path path;
};

} // namespace KivPlr

#endif

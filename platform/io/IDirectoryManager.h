// SPDX-License-Identifier: Apache-2.0
// IDirectoryManager.h - the platform library's service for directories:
// create, remove (also a whole tree), test, enumerate, list, and the
// process's current directory and executable.
//
// Made by the platform factory or directly with new, owned through SmartPtr.
// It has no state of its own, but relative paths are read against the
// process-wide current directory, which SetCurrent changes for every thread:
//
// Example:
//   SmartPtr<IDirectoryManager> directories(new DirectoryManager);
//   _Result result = ResultFail;
//   std::string saved;
//   directories->GetCurrent(saved, result);
//   directories->SetCurrent(Path("/var/lib/discovery"), result);
//   // work in /var/lib/discovery
//   directories->SetCurrent(Path(saved), result);
#ifndef KIVPLR_IDIRECTORYMANAGER_H
#define KIVPLR_IDIRECTORYMANAGER_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>
#include <KivPlr/core/Path.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/io/IDirectoryPosition.h>

#include <string>
#include <vector>

namespace KivPlr {

class KIVPLR_API IDirectoryManager : public virtual IObject
{
public:
    /// Makes the directory with mode 0774 (before the umask); parents are not
    /// made. 200 or 500 as mkdir answers.
    virtual void Create(const Path& path, _Result& result) = 0;
    /// Without \p recursive: rmdir, 200 or 500. With it: removes the tree
    /// below and the directory itself, 200 only when everything went. Entries
    /// that are neither directories nor regular files (symbolic links, FIFOs,
    /// sockets, devices) are left in place, so a tree holding one gives 500
    /// after everything else has been removed. A relative \p path is read
    /// against the current directory; when that cannot be read (GetCurrent
    /// fails) the recursive form removes nothing and gives 500.
    virtual void Remove(const Path& path, bool recursive, _Result& result) = 0;
    /// 200 when anything exists at \p path, else 500.
    virtual void Exists(const Path& path, _Result& result) = 0;
    /// Appends the names of the directory's entries that are directories
    /// ("." and ".." included). The vector is not cleared; 200 when it is not
    /// empty afterwards, else 500. Each bare entry name is classified against
    /// the process's current directory, not against \p path: the lists are
    /// right for the current directory. A relative \p path whose current
    /// directory cannot be read gives 500 and leaves the vector alone, even
    /// a vector that already held names.
    virtual void GetDirectories(const Path& path, std::vector<std::string>& names, _Result& result) = 0;
    /// As GetDirectories, for the entries that are not directories there.
    virtual void GetFiles(const Path& path, std::vector<std::string>& names, _Result& result) = 0;
    /// Starts an enumeration of the directory (a relative path is read
    /// against the current directory; one trailing "*" is dropped, so "dir/*"
    /// lists dir). 200 with the first bare entry name and the position; 500
    /// when the directory cannot be opened or is empty, or when \p path is
    /// relative and the current directory cannot be read, leaving
    /// \p position and \p name alone. "." and ".." are reported like any other name.
    virtual void FindFirst(const Path& path, SmartPtr<IDirectoryPosition>& position, std::string& name,
                           _Result& result) const = 0;
    /// The next entry name and 200; 500 at the end (for good), leaving
    /// \p name alone. An empty \p position is fatal.
    virtual void FindNext(SmartPtr<IDirectoryPosition>& position, std::string& name, _Result& result) const = 0;
    /// Closes the enumeration and empties \p position: 200. 500 when closing
    /// fails or the enumeration was already released (\p position is kept
    /// then). An empty \p position is fatal.
    virtual void FindRelease(SmartPtr<IDirectoryPosition>& position, _Result& result) const = 0;
    /// 200 for a directory (a symbolic link counts as what it points to), 500
    /// for anything else that exists, and 500 when nothing is there.
    virtual void IsDirectory(const Path& path, _Result& result) const = 0;
    /// The process's current directory: 200, or 500 when it cannot be read
    /// or is 1024 bytes long or longer.
    virtual void GetCurrent(std::string& current, _Result& result) const = 0;
    /// Changes the process's current directory: 200 or 500 as chdir answers.
    virtual void SetCurrent(const Path& path, _Result& result) = 0;
    /// The path of the running program: 200, or 500.
    virtual void GetExecutablePath(Path& path, _Result& result) = 0;
    /// Reserved slot; answers 501.
    virtual void Reserved1(_Result& result) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IDirectoryManager() override = default;
};

} // namespace KivPlr

#endif

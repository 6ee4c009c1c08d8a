// SPDX-License-Identifier: Apache-2.0
// DirectoryManager.h - the Linux directory manager: IDirectoryManager over
// mkdir, rmdir, stat, opendir/readdir/closedir, getcwd, chdir and readlink.
//
// Made by LinuxPlatform::CreateDirectoryManager or directly with new (the
// publisher makes its own), owned through SmartPtr. No state of its own; see
// IDirectoryManager for what the process-wide current directory means to
// relative paths when several threads use it.
//
// Example:
//   SmartPtr<IDirectoryManager> directories(new DirectoryManager);
//   _Result result = ResultFail;
//   directories->Remove(Path("/tmp/unpacked"), true, result);
#ifndef KIVPLR_DIRECTORYMANAGER_H
#define KIVPLR_DIRECTORYMANAGER_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/io/IDirectoryManager.h>

namespace KivPlr {

class KIVPLR_API DirectoryManager : private Object, public IDirectoryManager
{
public:
    void Create(const Path& path, _Result& result) override;
    void Remove(const Path& path, bool recursive, _Result& result) override;
    void Exists(const Path& path, _Result& result) override;
    void GetDirectories(const Path& path, std::vector<std::string>& names, _Result& result) override;
    void GetFiles(const Path& path, std::vector<std::string>& names, _Result& result) override;
    void FindFirst(const Path& path, SmartPtr<IDirectoryPosition>& position, std::string& name,
                   _Result& result) const override;
    void FindNext(SmartPtr<IDirectoryPosition>& position, std::string& name, _Result& result) const override;
    void FindRelease(SmartPtr<IDirectoryPosition>& position, _Result& result) const override;
    void IsDirectory(const Path& path, _Result& result) const override;
    void GetCurrent(std::string& current, _Result& result) const override;
    void SetCurrent(const Path& path, _Result& result) override;
    void GetExecutablePath(Path& path, _Result& result) override;
    void Reserved1(_Result& result) override;

private:
    ~DirectoryManager() override = default;

    /// GetDirectories (\p wantDirectories) and GetFiles in one.
    void List(const Path& path, bool wantDirectories, std::vector<std::string>& names, _Result& result);
    /// \p absolute = \p path made absolute against the current directory
    /// (an absolute \p path as it is). False, with nothing to go on, when
    /// \p path is relative and the current directory cannot be read.
    bool Absolute(const Path& path, Path& absolute) const;
};

} // namespace KivPlr

#endif

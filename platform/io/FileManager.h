// SPDX-License-Identifier: Apache-2.0
// FileManager.h - the Linux file manager: IFileManager over open(2), stat(2),
// link(2), unlink(2) and rename(2).
//
// Made by LinuxPlatform::CreateFileManager (or directly with new) and owned
// through SmartPtr. Stateless: any number of threads may share one.
//
// Example:
//   SmartPtr<IFileManager> files(new FileManager);
//   _Result result = ResultFail;
//   SmartPtr<IStream> stream;
//   files->OpenRead(Path("/etc/group"), stream, result);
#ifndef KIVPLR_FILEMANAGER_H
#define KIVPLR_FILEMANAGER_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/io/IFileManager.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API FileManager : private Object, public IFileManager
{
public:
    void CreateFile(const Path& path, _Result& result) override;
    void CreateNew(const Path& path, SmartPtr<IStream>& stream, _Result& result) override;
    void Link(const Path& existing, const Path& newName, bool replace, _Result& result) override;
    void Delete(const Path& path, _Result& result) override;
    void Exists(const Path& path, _Result& result) override;
    void Open(const Path& path, std::uint32_t disposition, std::uint32_t access, SmartPtr<IStream>& stream,
              _Result& result) override;
    void OpenRead(const Path& path, SmartPtr<IStream>& stream, _Result& result) override;
    void OpenReadWrite(const Path& path, SmartPtr<IStream>& stream, _Result& result) override;
    void OpenWrite(const Path& path, SmartPtr<IStream>& stream, _Result& result) override;
    void Move(const Path& from, const Path& to, _Result& result) override;
    void GetInfo(const Path& path, FileInfo& info, _Result& result) override;

private:
    ~FileManager() override = default;
};

} // namespace KivPlr

#endif

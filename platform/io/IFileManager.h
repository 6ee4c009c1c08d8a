// SPDX-License-Identifier: Apache-2.0
// IFileManager.h - the platform library's service for whole files: test,
// create, open, delete, rename, hard-link and describe a file named by a Path.
//
// Made by the platform factory (or with new) and owned through SmartPtr. It
// has no state, so one manager may serve any number of threads:
//
// Example:
//   SmartPtr<IFileManager> files(Platform::GetInstance()->CreateFileManager());
//   _Result result = ResultFail;
//   SmartPtr<IStream> stream;
//   files->Open(Path("/tmp/data"), FileOpenAlways, FileAccessRead | FileAccessWrite, stream, result);
//
// Openers touch the caller's SmartPtr<IStream> only when they succeed. Files
// made here get mode 0644 before the umask.
#ifndef KIVPLR_IFILEMANAGER_H
#define KIVPLR_IFILEMANAGER_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>
#include <KivPlr/core/Path.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/io/FileInfo.h>
#include <KivPlr/io/IStream.h>

#include <cstdint>

namespace KivPlr {

/// Open access bits: reading, writing, or both. Neither means reading.
constexpr std::uint32_t FileAccessRead = 1;
constexpr std::uint32_t FileAccessWrite = 2;

/// Open dispositions (the low two bits) and the truncation bit.
constexpr std::uint32_t FileOpenExisting = 0; ///< the file must exist
constexpr std::uint32_t FileCreateNew = 1;    ///< the file must not exist; it is made
constexpr std::uint32_t FileOpenAlways = 2;   ///< opened, made when missing
constexpr std::uint32_t FileCreateAlways = 3; ///< deleted first, then made afresh
constexpr std::uint32_t FileTruncate = 4;     ///< emptied on opening, with any of the above

class KIVPLR_API IFileManager : public virtual IObject
{
public:
    /// 200 when a new, empty file was made (it is closed at once); 500
    /// otherwise, also when it exists already.
    virtual void CreateFile(const Path& path, _Result& result) = 0;
    /// Makes a new file and opens it for reading and writing; 500 when it
    /// exists or cannot be made.
    virtual void CreateNew(const Path& path, SmartPtr<IStream>& stream, _Result& result) = 0;
    /// Gives \p existing the further name \p newName. With \p replace, a file
    /// at \p newName is deleted first (a failure of that is ignored). 200 or
    /// 500 as link(2) answers.
    virtual void Link(const Path& existing, const Path& newName, bool replace, _Result& result) = 0;
    /// Removes the name: 200 or 500 as unlink(2) answers.
    virtual void Delete(const Path& path, _Result& result) = 0;
    /// 200 only for an existing regular file (a symbolic link counts as what
    /// it points to); a directory, device, FIFO or missing path gives 500.
    virtual void Exists(const Path& path, _Result& result) = 0;
    /// Opens with a disposition (FileOpenExisting..FileCreateAlways, plus
    /// FileTruncate) and access bits (FileAccessRead, FileAccessWrite). Higher
    /// bits of both are ignored. FileCreateAlways deletes the file first, so a
    /// missing file is no error and an existing one is replaced by a new one.
    /// 200 with the stream in \p stream, or 500.
    virtual void Open(const Path& path, std::uint32_t disposition, std::uint32_t access,
                      SmartPtr<IStream>& stream, _Result& result) = 0;
    /// Opens an existing file read-only: 200 or 500.
    virtual void OpenRead(const Path& path, SmartPtr<IStream>& stream, _Result& result) = 0;
    /// Opens an existing file for reading and writing: 200 or 500.
    virtual void OpenReadWrite(const Path& path, SmartPtr<IStream>& stream, _Result& result) = 0;
    /// Opens an existing file write-only, without truncating it: 200 or 500.
    virtual void OpenWrite(const Path& path, SmartPtr<IStream>& stream, _Result& result) = 0;
    /// Renames \p from to \p to: 200 or 500 as rename(2) answers.
    virtual void Move(const Path& from, const Path& to, _Result& result) = 0;
    /// Describes the file (a symbolic link is followed). On 500 \p info is
    /// left as it was.
    virtual void GetInfo(const Path& path, FileInfo& info, _Result& result) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IFileManager() override = default;
};

} // namespace KivPlr

#endif

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/io/FileManager.h>

#include <KivPlr/core/FatalError.h>
#include <KivPlr/core/LinuxResultConverter.h>
#include <KivPlr/io/LinuxFileStream.h>

#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace KivPlr {

namespace {

// Every file made here: rw-r--r-- before the umask.
constexpr mode_t NewFileMode = 0644;

// Ends the process when an opener is handed a null result or stream, before
// anything is opened or deleted.
void RequireOpenReferences(SmartPtr<IStream>& stream, _Result& result)
{
    if (IsNullReference(&result))
        FatalError(L"FileManager: result NULL reference.");
    if (IsNullReference(&stream))
        FatalError(L"FileManager: stream NULL reference.");
}

// Opens \p path with \p flags and, on success, hands a new stream over the
// descriptor to \p stream. On failure the caller's pointer is not touched.
void OpenStream(const Path& path, int flags, SmartPtr<IStream>& stream, _Result& result)
{
    RequireOpenReferences(stream, result);
    int descriptor = open(path.GetPath(), flags, NewFileMode);
    if (descriptor == -1) {
        result = ResultFail;
        return;
    }
    stream = new LinuxFileStream(descriptor);
    result = ResultPass;
}

// The answer of a Linux result converter made for this one call.
void Convert(int nativeResult, _Result& result)
{
    SmartPtr<IResultConverter> converter(new LinuxResultConverter);
    converter->Convert(nativeResult, result);
}

int AccessFlags(std::uint32_t access)
{
    switch (access & (FileAccessRead | FileAccessWrite)) {
    case FileAccessWrite:
        return O_WRONLY;
    case FileAccessRead | FileAccessWrite:
        return O_RDWR;
    default:
        return O_RDONLY; // reading, and also neither bit
    }
}

std::uint32_t Attributes(mode_t mode)
{
    std::uint32_t attributes = 0;
    if (S_ISDIR(mode))
        attributes = FileAttributeDirectory;
    else if (S_ISREG(mode))
        attributes = FileAttributeRegular;
    if ((mode & S_IRUSR) != 0 && (mode & S_IWUSR) == 0)
        attributes |= FileAttributeReadOnly;
    if (S_ISLNK(mode) || S_ISSOCK(mode) || S_ISFIFO(mode))
        attributes |= FileAttributeSpecial;
    if (S_ISBLK(mode))
        attributes |= FileAttributeBlockDevice;
    return attributes;
}

} // namespace

void FileManager::CreateFile(const Path& path, _Result& result)
{
    if (IsNullReference(&result))
        FatalError(L"FileManager: result NULL reference.");
    int descriptor = open(path.GetPath(), O_RDWR | O_CREAT | O_EXCL, NewFileMode);
    if (descriptor == -1) {
        result = ResultFail;
        return;
    }
    close(descriptor);
    result = ResultPass;
}

void FileManager::CreateNew(const Path& path, SmartPtr<IStream>& stream, _Result& result)
{
    OpenStream(path, O_RDWR | O_CREAT | O_EXCL, stream, result);
}

void FileManager::Link(const Path& existing, const Path& newName, bool replace, _Result& result)
{
    // A null result ends the process in the converter, after the deletion
    // and the link have been made.
    if (replace) {
        _Result ignored = ResultPass;
        Path doomed(newName);
        Delete(doomed, ignored);
    }
    Convert(link(existing.GetPath(), newName.GetPath()), result);
}

void FileManager::Delete(const Path& path, _Result& result)
{
    // A null result ends the process in the converter, after unlink.
    Convert(unlink(path.GetPath()), result);
}

void FileManager::Exists(const Path& path, _Result& result)
{
    if (IsNullReference(&result))
        FatalError(L"FileManager: result NULL reference.");
    struct stat status;
    result = stat(path.GetPath(), &status) == 0 && S_ISREG(status.st_mode) ? ResultPass : ResultFail;
}

void FileManager::Open(const Path& path, std::uint32_t disposition, std::uint32_t access, SmartPtr<IStream>& stream,
                       _Result& result)
{
    RequireOpenReferences(stream, result); // before anything is deleted
    int flags = AccessFlags(access);
    switch (disposition & 3u) {
    case FileCreateNew:
        flags |= O_CREAT | O_EXCL;
        break;
    case FileOpenAlways:
        flags |= O_CREAT;
        break;
    case FileCreateAlways: {
        // Afresh: the old file goes first; a missing one is no error.
        _Result ignored = ResultPass;
        Path doomed(path);
        Delete(doomed, ignored);
        flags |= O_CREAT;
        break;
    }
    default: // FileOpenExisting
        break;
    }
    if ((disposition & FileTruncate) != 0)
        flags |= O_TRUNC;
    OpenStream(path, flags, stream, result);
}

void FileManager::OpenRead(const Path& path, SmartPtr<IStream>& stream, _Result& result)
{
    OpenStream(path, O_RDONLY, stream, result);
}

void FileManager::OpenReadWrite(const Path& path, SmartPtr<IStream>& stream, _Result& result)
{
    OpenStream(path, O_RDWR, stream, result);
}

void FileManager::OpenWrite(const Path& path, SmartPtr<IStream>& stream, _Result& result)
{
    OpenStream(path, O_WRONLY, stream, result);
}

void FileManager::Move(const Path& from, const Path& to, _Result& result)
{
    // A null result ends the process in the converter, after rename.
    Convert(rename(from.GetPath(), to.GetPath()), result);
}

void FileManager::GetInfo(const Path& path, FileInfo& info, _Result& result)
{
    if (IsNullReference(&result))
        FatalError(L"FileManager: result NULL reference.");
    if (IsNullReference(&info))
        FatalError(L"FileManager: info NULL reference.");
    struct stat status;
    if (stat(path.GetPath(), &status) == -1) {
        result = ResultFail;
        return;
    }
    info.attributes = Attributes(status.st_mode);
    info.changeTime = static_cast<std::uint32_t>(status.st_ctime);
    info.accessTime = static_cast<std::uint32_t>(status.st_atime);
    info.modifyTime = static_cast<std::uint32_t>(status.st_mtime);
    info.size = (info.attributes & FileAttributeDirectory) != 0 ? 0 : static_cast<std::int64_t>(status.st_size);
    result = ResultPass;
}

} // namespace KivPlr

// SPDX-License-Identifier: Apache-2.0
// FileInfo.h - what the file manager tells about one file: type and
// permission summary, the three times and the size.
//
// A plain record, filled by IFileManager::GetInfo and owned by its caller:
//
// Example:
//   SmartPtr<IPlatform> platform(Platform::GetInstance());
//   SmartPtr<IFileManager> files(platform->CreateFileManager());
//   _Result result = ResultFail;
//   FileInfo info;
//   files->GetInfo(Path("/etc/group"), info, result);
//   bool readOnly = Succeeded(result) && (info.attributes & FileAttributeReadOnly) != 0;
//
// A value type; copy it freely, share it like any plain struct.
#ifndef KIVPLR_FILEINFO_H
#define KIVPLR_FILEINFO_H

#include <KivPlr/core/Export.h>

#include <cstdint>

namespace KivPlr {

/// Owner may read but not write (mode 0400 set, 0200 clear).
constexpr std::uint32_t FileAttributeReadOnly = 1;
/// A symbolic link, a socket or a FIFO.
constexpr std::uint32_t FileAttributeSpecial = 2;
/// A block device.
constexpr std::uint32_t FileAttributeBlockDevice = 4;
/// A directory.
constexpr std::uint32_t FileAttributeDirectory = 16;
/// A regular file.
constexpr std::uint32_t FileAttributeRegular = 128;

struct KIVPLR_API FileInfo
{
    std::uint32_t attributes = 0; ///< FileAttribute... bits
    std::uint32_t changeTime = 0; ///< inode change time, seconds since 1970
    std::uint32_t accessTime = 0; ///< last access, seconds since 1970
    std::uint32_t modifyTime = 0; ///< last modification, seconds since 1970
    std::int64_t size = 0;        ///< bytes; 0 for a directory
};

} // namespace KivPlr

#endif

// SPDX-License-Identifier: Apache-2.0
// IStream.h - the platform library's byte stream.
//
// A stream is handed out by the file manager (LinuxFileStream over a file
// descriptor) and owned through SmartPtr; the last reference closes it if it
// is still open. Reads, writes and seeks share one position:
//
// Example:
//   SmartPtr<IPlatform> platform(Platform::GetInstance());
//   SmartPtr<IFileManager> files(platform->CreateFileManager());
//   _Result result = ResultFail;
//   SmartPtr<IStream> stream;
//   files->OpenRead(Path("/etc/group"), stream, result);
//   unsigned char buffer[64];
//   std::uint64_t count = 0;
//   stream->Read(buffer, sizeof buffer, 0, sizeof buffer, count, result);
//   if (result == ResultEndOfData) { /* nothing left */ }
//
// Not guarded: one user (one thread) at a time.
#ifndef KIVPLR_ISTREAM_H
#define KIVPLR_ISTREAM_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API IStream : public virtual IObject
{
public:
    /// Reserved slot; the file stream answers 500.
    virtual void Reserved1(_Result& result) = 0;
    /// Reserved slot; the file stream answers 500.
    virtual void Reserved2(_Result& result) = 0;
    /// Closes the stream: 200 the first time, 500 once it is closed or when
    /// the system refuses (the stream then stays open).
    virtual void Close(_Result& result) = 0;
    /// Reserved slot; the file stream answers 500.
    virtual void Reserved3(_Result& result) = 0;
    /// Reserved slot; the file stream answers 500.
    virtual void Reserved4(_Result& result) = 0;
    /// Commits written data to the device: 200, or 500 when that fails.
    virtual void Flush(_Result& result) = 0;
    /// Reads at most \p count bytes into \p buffer + \p offset with one system
    /// read. \p bytesRead is 0 unless the result is 200. 450 at the end of the
    /// data (also for a count of 0); 500 on failure or when \p offset +
    /// \p count exceeds \p bufferSize (nothing is read then).
    virtual void Read(void* buffer, std::uint64_t bufferSize, std::uint64_t offset, std::uint64_t count,
                      std::uint64_t& bytesRead, _Result& result) = 0;
    /// Moves the position. \p origin: 0 start, 1 current, 2 end; any other
    /// origin gives 500. Only the low 32 bits of \p offset are used, read as a
    /// signed value. The new position is not reported.
    virtual void Seek(std::int64_t offset, std::int32_t origin, _Result& result) = 0;
    /// The size in bytes; 0 when it cannot be learned.
    virtual std::int64_t GetSize() = 0;
    /// Writes at most \p count bytes from \p buffer + \p offset with one system
    /// write; a short write is reported as such. Bounds and out value as for
    /// Read; writing 0 bytes succeeds.
    virtual void Write(const void* buffer, std::uint64_t bufferSize, std::uint64_t offset, std::uint64_t count,
                       std::uint64_t& bytesWritten, _Result& result) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IStream() override = default;
};

} // namespace KivPlr

#endif

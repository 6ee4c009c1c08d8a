// SPDX-License-Identifier: Apache-2.0
// LinuxFileStream.h - the byte stream over an open POSIX file descriptor.
//
// The file manager opens the descriptor and hands the new stream out through
// SmartPtr<IStream>; the stream owns the descriptor from then on and closes it
// when the last reference goes, unless Close already did.
//
// Example:
//   #include <fcntl.h>
//   SmartPtr<IStream> stream(new LinuxFileStream(open("/etc/group", O_RDONLY)));
//   _Result result = ResultFail;
//   stream->Seek(0, 2, result);       // to the end
//
// Not guarded: one user (one thread) at a time.
#ifndef KIVPLR_LINUXFILESTREAM_H
#define KIVPLR_LINUXFILESTREAM_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/io/IStream.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API LinuxFileStream : private Object, public IStream
{
public:
    /// Takes over \p descriptor, which the caller has opened; the stream
    /// counts as open from here.
    explicit LinuxFileStream(std::int32_t descriptor);

    void Reserved1(_Result& result) override;
    void Reserved2(_Result& result) override;
    /// After a successful close every later Close gives 500, while Read,
    /// Write, Seek, Flush and GetSize keep using the old descriptor number
    /// and fail as the system answers.
    void Close(_Result& result) override;
    void Reserved3(_Result& result) override;
    void Reserved4(_Result& result) override;
    void Flush(_Result& result) override;
    /// A null \p buffer gives 500 without a system call.
    void Read(void* buffer, std::uint64_t bufferSize, std::uint64_t offset, std::uint64_t count,
              std::uint64_t& bytesRead, _Result& result) override;
    void Seek(std::int64_t offset, std::int32_t origin, _Result& result) override;
    /// fstat's size, widened with its sign; 0 when fstat fails.
    std::int64_t GetSize() override;
    /// A null \p buffer gives 500 without a system call.
    void Write(const void* buffer, std::uint64_t bufferSize, std::uint64_t offset, std::uint64_t count,
               std::uint64_t& bytesWritten, _Result& result) override;

private:
    /// Closes the descriptor if the stream is still open; the outcome is
    /// ignored.
    ~LinuxFileStream() override;

    std::int32_t fd;
    std::uint32_t isOpen;
};

} // namespace KivPlr

#endif

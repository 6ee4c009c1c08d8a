// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/io/LinuxFileStream.h>

#include <KivPlr/core/FatalError.h>

#include <cstddef>
#include <cstdint>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace KivPlr {

namespace {

// Ends the process when an operation is handed a null result.
void RequireResult(_Result& result)
{
    if (IsNullReference(&result))
        FatalError(L"LinuxFileStream: result NULL reference.");
}

// The checks that Read and Write share: zero the out value, then refuse a
// span that does not lie inside the caller's buffer. offset + count is
// compared without letting the sum wrap around 64 bits, and a count that the
// system call cannot take (beyond std::size_t on a 32-bit system) is refused too.
bool AcceptTransfer(const void* buffer, std::uint64_t bufferSize, std::uint64_t offset, std::uint64_t count,
                    std::uint64_t& transferred, const wchar_t* nullTransferredMessage, _Result& result)
{
    RequireResult(result);
    if (IsNullReference(&transferred))
        FatalError(nullTransferredMessage);
    transferred = 0;
    if (offset > bufferSize || count > bufferSize - offset || count > SIZE_MAX || buffer == nullptr) {
        result = ResultFail;
        return false;
    }
    return true;
}

// The reserved slots have nothing to do and say so.
void AnswerReserved(_Result& result)
{
    RequireResult(result);
    result = ResultFail;
}

} // namespace

LinuxFileStream::LinuxFileStream(std::int32_t descriptor) : fd(descriptor), isOpen(1) {}

LinuxFileStream::~LinuxFileStream()
{
    if (isOpen != 0)
        close(fd);
}

void LinuxFileStream::Reserved1(_Result& result)
{
    AnswerReserved(result);
}

void LinuxFileStream::Reserved2(_Result& result)
{
    AnswerReserved(result);
}

void LinuxFileStream::Close(_Result& result)
{
    RequireResult(result);
    if (isOpen == 0) {
        result = ResultFail;
        return;
    }
    if (close(fd) != 0) {
        result = ResultFail;
        return;
    }
    // The descriptor number is kept: later calls use it and fail as the
    // system answers.
    isOpen = 0;
    result = ResultPass;
}

void LinuxFileStream::Reserved3(_Result& result)
{
    AnswerReserved(result);
}

void LinuxFileStream::Reserved4(_Result& result)
{
    AnswerReserved(result);
}

void LinuxFileStream::Flush(_Result& result)
{
    RequireResult(result);
    result = fsync(fd) == 0 ? ResultPass : ResultFail;
}

void LinuxFileStream::Read(void* buffer, std::uint64_t bufferSize, std::uint64_t offset, std::uint64_t count,
                           std::uint64_t& bytesRead, _Result& result)
{
    if (!AcceptTransfer(buffer, bufferSize, offset, count, bytesRead, L"LinuxFileStream: bytesRead NULL reference.",
                        result))
        return;
    // One read only: a short read is handed back as it is.
    ssize_t got = read(fd, static_cast<unsigned char*>(buffer) + offset, static_cast<std::size_t>(count));
    if (got < 0) {
        result = ResultFail;
    } else if (got == 0) {
        result = ResultEndOfData;
    } else {
        bytesRead = static_cast<std::uint64_t>(got);
        result = ResultPass;
    }
}

void LinuxFileStream::Seek(std::int64_t offset, std::int32_t origin, _Result& result)
{
    RequireResult(result);
    if (origin != SEEK_SET && origin != SEEK_CUR && origin != SEEK_END) {
        result = ResultFail;
        return;
    }
    // Only the low 32 bits count, read as the signed 32-bit offset of the
    // controller, so -1 from the end means the last byte on every system.
    auto low = static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(offset) & 0xFFFFFFFFu));
    result = lseek(fd, static_cast<off_t>(low), origin) == static_cast<off_t>(-1) ? ResultFail : ResultPass;
}

std::int64_t LinuxFileStream::GetSize()
{
    struct stat status = {};
    // The outcome is deliberately not looked at: a failed fstat leaves the
    // zeroed record and the size reads 0.
    (void)fstat(fd, &status);
    return static_cast<std::int64_t>(status.st_size);
}

void LinuxFileStream::Write(const void* buffer, std::uint64_t bufferSize, std::uint64_t offset, std::uint64_t count,
                            std::uint64_t& bytesWritten, _Result& result)
{
    if (!AcceptTransfer(buffer, bufferSize, offset, count, bytesWritten,
                        L"LinuxFileStream: bytesWritten NULL reference.", result))
        return;
    // One write only: a short write is reported, not retried.
    ssize_t put = write(fd, static_cast<const unsigned char*>(buffer) + offset, static_cast<std::size_t>(count));
    if (put < 0) {
        result = ResultFail;
        return;
    }
    bytesWritten = static_cast<std::uint64_t>(put);
    result = ResultPass;
}

} // namespace KivPlr

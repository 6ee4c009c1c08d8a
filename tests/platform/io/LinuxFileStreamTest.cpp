// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/io/FileManager.h>
#include <KivPlr/io/LinuxFileStream.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>
#include <KivTest/OpenDescriptors.h>
#include <KivTest/TemporaryDirectory.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <functional>
#include <string>
#include <unistd.h>
#include <vector>

using namespace KivPlr;
using KivTest::DescriptorsOpenOn;
using KivTest::ReadFile;
using KivTest::TemporaryDirectory;
using KivTest::WriteFile;

namespace {

KIV_NULL_REFERENCE(NullResult, _Result)
KIV_NULL_REFERENCE(NullCount, std::uint64_t)

const std::string Digits = "0123456789";

class LinuxFileStreamTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        file = directory.Path() + "/data";
        ASSERT_TRUE(WriteFile(file, Digits));
    }

    // A stream on the test file, opened for reading and writing.
    SmartPtr<IStream> OpenData()
    {
        SmartPtr<IStream> stream;
        _Result result = ResultFail;
        files->OpenReadWrite(Path(file), stream, result);
        EXPECT_EQ(result, ResultPass);
        return stream;
    }

    // The next byte at the stream's position, or -1.
    static int NextByte(IStream& stream)
    {
        unsigned char byte = 0;
        std::uint64_t count = 0;
        _Result result = ResultFail;
        stream.Read(&byte, 1, 0, 1, count, result);
        return result == ResultPass && count == 1 ? byte : -1;
    }

    TemporaryDirectory directory;
    std::string file;
    SmartPtr<IFileManager> files{new FileManager};
};

// Both ends of a pipe; closed by the test unless a stream took them.
struct Pipe
{
    Pipe() { EXPECT_EQ(pipe(ends), 0); }
    int ends[2] = {-1, -1};
};

} // namespace

TEST_F(LinuxFileStreamTest, NewStreamHasCountZero)
{
    int descriptor = open(file.c_str(), O_RDONLY);
    ASSERT_GE(descriptor, 0);
    LinuxFileStream* stream = new LinuxFileStream(descriptor);
    IStream* asInterface = stream;
    EXPECT_EQ(asInterface->GetReferenceCount(), 0u);
    SmartPtr<IStream> owner(stream);
}

TEST_F(LinuxFileStreamTest, ReservedOperationsAnswerFail)
{
    SmartPtr<IStream> stream = OpenData();
    for (void (IStream::*reserved)(_Result&) :
         {&IStream::Reserved1, &IStream::Reserved2, &IStream::Reserved3, &IStream::Reserved4}) {
        _Result result = ResultPass;
        ((*stream).*reserved)(result);
        EXPECT_EQ(result, ResultFail);
    }
    EXPECT_EQ(NextByte(*stream), '0'); // nothing moved
}

TEST_F(LinuxFileStreamTest, ReadFillsBufferAtOffset)
{
    SmartPtr<IStream> stream = OpenData();
    unsigned char buffer[8];
    std::fill(buffer, buffer + 8, '.');
    std::uint64_t count = 0;
    _Result result = ResultFail;
    stream->Read(buffer, sizeof buffer, 2, 4, count, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(count, 4u);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer), 8), "..0123..");
}

TEST_F(LinuxFileStreamTest, ShortReadIsReportedAsItIs)
{
    SmartPtr<IStream> stream = OpenData();
    unsigned char buffer[32] = {};
    std::uint64_t count = 0;
    _Result result = ResultFail;
    stream->Read(buffer, sizeof buffer, 0, sizeof buffer, count, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(count, Digits.size());
}

TEST_F(LinuxFileStreamTest, ShortReadFromPipeIsNotRetried)
{
    Pipe channel;
    ASSERT_EQ(write(channel.ends[1], "abc", 3), 3);
    SmartPtr<IStream> stream(new LinuxFileStream(channel.ends[0]));
    unsigned char buffer[16] = {};
    std::uint64_t count = 0;
    _Result result = ResultFail;
    // A retry would block here, the write end is still open.
    stream->Read(buffer, sizeof buffer, 0, sizeof buffer, count, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(count, 3u);
    close(channel.ends[1]);
    stream->Read(buffer, sizeof buffer, 0, sizeof buffer, count, result);
    EXPECT_EQ(result, ResultEndOfData);
    EXPECT_EQ(count, 0u);
}

TEST_F(LinuxFileStreamTest, ReadAtEndOfFileGivesEndOfDataAndZeroBytes)
{
    SmartPtr<IStream> stream = OpenData();
    _Result result = ResultFail;
    stream->Seek(0, 2, result);
    ASSERT_EQ(result, ResultPass);
    unsigned char buffer[4];
    std::uint64_t count = 55;
    stream->Read(buffer, sizeof buffer, 0, sizeof buffer, count, result);
    EXPECT_EQ(result, ResultEndOfData);
    EXPECT_EQ(count, 0u);
}

TEST_F(LinuxFileStreamTest, ReadOfZeroBytesGivesEndOfData)
{
    SmartPtr<IStream> stream = OpenData();
    unsigned char buffer[4];
    std::uint64_t count = 55;
    _Result result = ResultFail;
    stream->Read(buffer, sizeof buffer, 0, 0, count, result);
    EXPECT_EQ(result, ResultEndOfData);
    EXPECT_EQ(count, 0u);
}

TEST_F(LinuxFileStreamTest, ReadUpToTheBufferEndIsAllowed)
{
    SmartPtr<IStream> stream = OpenData();
    unsigned char buffer[4] = {};
    std::uint64_t count = 0;
    _Result result = ResultFail;
    stream->Read(buffer, sizeof buffer, 1, 3, count, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(buffer[3], '2');
}

TEST_F(LinuxFileStreamTest, ReadOnePastTheBufferFailsWithoutTouchingTheFile)
{
    SmartPtr<IStream> stream = OpenData();
    unsigned char buffer[4] = {'.', '.', '.', '.'};
    std::uint64_t count = 99;
    _Result result = ResultPass;
    stream->Read(buffer, sizeof buffer, 1, 4, count, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer), 4), "....");
    EXPECT_EQ(NextByte(*stream), '0'); // the position did not move

    count = 99;
    stream->Read(buffer, sizeof buffer, 5, 0, count, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(count, 0u);
}

TEST_F(LinuxFileStreamTest, ReadBoundsDoNotWrapAround)
{
    SmartPtr<IStream> stream = OpenData();
    unsigned char buffer[4] = {};
    std::uint64_t count = 99;
    _Result result = ResultPass;
    // offset + count wraps to 1, which a 64-bit sum would let through.
    stream->Read(buffer, sizeof buffer, UINT64_MAX, 2, count, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(count, 0u);
    stream->Read(buffer, sizeof buffer, 2, UINT64_MAX, count, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(NextByte(*stream), '0');
}

TEST_F(LinuxFileStreamTest, ReadIntoNullBufferFails)
{
    SmartPtr<IStream> stream = OpenData();
    std::uint64_t count = 99;
    _Result result = ResultPass;
    stream->Read(nullptr, 4, 0, 4, count, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(NextByte(*stream), '0');
}

TEST_F(LinuxFileStreamTest, ReadFailureZeroesTheCount)
{
    SmartPtr<IFileManager> manager(new FileManager);
    SmartPtr<IStream> stream;
    _Result result = ResultFail;
    manager->OpenWrite(Path(file), stream, result);
    ASSERT_EQ(result, ResultPass);
    unsigned char buffer[4];
    std::uint64_t count = 99;
    stream->Read(buffer, sizeof buffer, 0, sizeof buffer, count, result);
    EXPECT_EQ(result, ResultFail); // a write-only descriptor
    EXPECT_EQ(count, 0u);
}

TEST_F(LinuxFileStreamTest, WriteStoresBytesFromBufferOffset)
{
    SmartPtr<IStream> stream = OpenData();
    const char text[] = "..ab..";
    std::uint64_t count = 0;
    _Result result = ResultFail;
    stream->Write(text, 6, 2, 2, count, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(ReadFile(file), "ab23456789");
}

TEST_F(LinuxFileStreamTest, WriteOfZeroBytesSucceeds)
{
    SmartPtr<IStream> stream = OpenData();
    std::uint64_t count = 99;
    _Result result = ResultFail;
    stream->Write("x", 1, 0, 0, count, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(ReadFile(file), Digits);
}

TEST_F(LinuxFileStreamTest, WriteOnePastTheBufferFailsWithoutTouchingTheFile)
{
    SmartPtr<IStream> stream = OpenData();
    std::uint64_t count = 99;
    _Result result = ResultPass;
    stream->Write("abcd", 4, 2, 3, count, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(count, 0u);
    stream->Write("abcd", 4, UINT64_MAX, 2, count, result);
    EXPECT_EQ(result, ResultFail);
    stream->Write(nullptr, 4, 0, 4, count, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(ReadFile(file), Digits);
    EXPECT_EQ(NextByte(*stream), '0');
}

TEST_F(LinuxFileStreamTest, WriteFailureZeroesTheCount)
{
    SmartPtr<IStream> stream;
    _Result result = ResultFail;
    files->OpenRead(Path(file), stream, result);
    ASSERT_EQ(result, ResultPass);
    std::uint64_t count = 99;
    stream->Write("ab", 2, 0, 2, count, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(count, 0u);
}

TEST_F(LinuxFileStreamTest, ShortWriteIsReportedNotRetried)
{
    Pipe channel;
    ASSERT_EQ(fcntl(channel.ends[1], F_SETFL, O_NONBLOCK), 0);
    int capacity = fcntl(channel.ends[1], F_GETPIPE_SZ);
    ASSERT_GT(capacity, 200);
    // Leave 100 bytes of room in the pipe.
    std::vector<char> filler(static_cast<std::size_t>(capacity - 100), 'f');
    ASSERT_EQ(write(channel.ends[1], filler.data(), filler.size()), static_cast<ssize_t>(filler.size()));
    SmartPtr<IStream> stream(new LinuxFileStream(channel.ends[1]));
    // The kernel tops up the pipe's last page with the part of a write that
    // is not a whole page, so give it one: 50 bytes fit, the rest does not.
    std::vector<char> data(8192 + 50, 'd');
    std::uint64_t count = 0;
    _Result result = ResultFail;
    stream->Write(data.data(), data.size(), 0, data.size(), count, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_GT(count, 0u);
    EXPECT_LT(count, data.size());
    close(channel.ends[0]);
}

TEST_F(LinuxFileStreamTest, SeekFromStartCurrentAndEnd)
{
    SmartPtr<IStream> stream = OpenData();
    _Result result = ResultFail;
    stream->Seek(3, 0, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(NextByte(*stream), '3');
    stream->Seek(2, 1, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(NextByte(*stream), '6');
    stream->Seek(-3, 1, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(NextByte(*stream), '4');
    stream->Seek(-1, 2, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(NextByte(*stream), '9');
    stream->Seek(0, 2, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(NextByte(*stream), -1);
}

TEST_F(LinuxFileStreamTest, SeekWithUnknownOriginFailsWithoutMoving)
{
    SmartPtr<IStream> stream = OpenData();
    _Result result = ResultPass;
    stream->Seek(5, 0, result);
    for (std::int32_t origin : {3, -1, 4, 1000}) {
        result = ResultPass;
        stream->Seek(1, origin, result);
        EXPECT_EQ(result, ResultFail) << origin;
    }
    EXPECT_EQ(NextByte(*stream), '5');
}

TEST_F(LinuxFileStreamTest, SeekUsesOnlyTheLowThirtyTwoBitsOfTheOffset)
{
    SmartPtr<IStream> stream = OpenData();
    _Result result = ResultFail;
    stream->Seek(INT64_C(0x100000005), 0, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(NextByte(*stream), '5');
    // Low 32 bits 0xFFFFFFFE: two before the end.
    stream->Seek(INT64_C(0x7FFFFFFFFFFFFFFE), 2, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(NextByte(*stream), '8');
}

TEST_F(LinuxFileStreamTest, SeekBeforeTheStartFails)
{
    SmartPtr<IStream> stream = OpenData();
    _Result result = ResultPass;
    stream->Seek(-20, 0, result);
    EXPECT_EQ(result, ResultFail);
    stream->Seek(-20, 2, result);
    EXPECT_EQ(result, ResultFail);
}

TEST_F(LinuxFileStreamTest, SeekOnPipeFails)
{
    Pipe channel;
    SmartPtr<IStream> stream(new LinuxFileStream(channel.ends[0]));
    _Result result = ResultPass;
    stream->Seek(0, 0, result);
    EXPECT_EQ(result, ResultFail);
    close(channel.ends[1]);
}

TEST_F(LinuxFileStreamTest, GetSizeFollowsTheFile)
{
    SmartPtr<IStream> stream = OpenData();
    EXPECT_EQ(stream->GetSize(), 10);
    _Result result = ResultFail;
    stream->Seek(0, 2, result);
    std::uint64_t count = 0;
    stream->Write("abc", 3, 0, 3, count, result);
    EXPECT_EQ(stream->GetSize(), 13);
}

TEST_F(LinuxFileStreamTest, FlushSucceedsOnFileAndFailsOnPipe)
{
    SmartPtr<IStream> stream = OpenData();
    _Result result = ResultFail;
    stream->Flush(result);
    EXPECT_EQ(result, ResultPass);

    Pipe channel;
    SmartPtr<IStream> pipeStream(new LinuxFileStream(channel.ends[1]));
    result = ResultPass;
    pipeStream->Flush(result);
    EXPECT_EQ(result, ResultFail);
    close(channel.ends[0]);
}

TEST_F(LinuxFileStreamTest, CloseTwiceGivesPassThenFail)
{
    SmartPtr<IStream> stream = OpenData();
    ASSERT_EQ(DescriptorsOpenOn(file).size(), 1u);
    _Result result = ResultFail;
    stream->Close(result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_TRUE(DescriptorsOpenOn(file).empty());
    stream->Close(result);
    EXPECT_EQ(result, ResultFail);
}

TEST_F(LinuxFileStreamTest, OperationsAfterCloseFail)
{
    SmartPtr<IStream> stream = OpenData();
    _Result result = ResultFail;
    stream->Close(result);
    ASSERT_EQ(result, ResultPass);
    unsigned char buffer[4];
    std::uint64_t count = 99;
    stream->Read(buffer, sizeof buffer, 0, sizeof buffer, count, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(count, 0u);
    stream->Write("ab", 2, 0, 2, count, result);
    EXPECT_EQ(result, ResultFail);
    stream->Seek(0, 0, result);
    EXPECT_EQ(result, ResultFail);
    stream->Flush(result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(stream->GetSize(), 0);
}

TEST_F(LinuxFileStreamTest, CloseFailureKeepsStreamOpen)
{
    // A descriptor that is not open: close fails, the stream stays "open",
    // and a second Close tries again (and fails again) instead of giving up.
    Pipe channel;
    close(channel.ends[0]);
    close(channel.ends[1]);
    SmartPtr<IStream> stream(new LinuxFileStream(channel.ends[0]));
    _Result result = ResultPass;
    stream->Close(result);
    EXPECT_EQ(result, ResultFail);
    // Now make the number valid again: the next Close closes it.
    int fresh = open(file.c_str(), O_RDONLY);
    ASSERT_GE(fresh, 0);
    if (fresh != channel.ends[0]) {
        ASSERT_EQ(dup2(fresh, channel.ends[0]), channel.ends[0]);
        close(fresh);
    }
    stream->Close(result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(fcntl(channel.ends[0], F_GETFD), -1);
}

TEST_F(LinuxFileStreamTest, ReleasingAnOpenStreamClosesItsDescriptor)
{
    SmartPtr<IStream> stream = OpenData();
    ASSERT_EQ(DescriptorsOpenOn(file).size(), 1u);
    stream.Reset();
    EXPECT_TRUE(DescriptorsOpenOn(file).empty());
}

TEST_F(LinuxFileStreamTest, ReleasingAClosedStreamDoesNotCloseAgain)
{
    SmartPtr<IStream> stream = OpenData();
    std::vector<int> descriptors = DescriptorsOpenOn(file);
    ASSERT_EQ(descriptors.size(), 1u);
    _Result result = ResultFail;
    stream->Close(result);
    ASSERT_EQ(result, ResultPass);
    // The freed number goes to the next open file; the old stream must not
    // close it when it goes.
    int other = open(file.c_str(), O_RDONLY);
    ASSERT_EQ(other, descriptors[0]);
    stream.Reset();
    EXPECT_NE(fcntl(other, F_GETFD), -1);
    close(other);
}

TEST_F(LinuxFileStreamTest, OperationsWithNullResultAreFatalAndTransferNothing)
{
    SmartPtr<IStream> stream = OpenData();
    std::uint64_t count = 0;
    unsigned char buffer[4];
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"Reserved1", [&] { stream->Reserved1(NullResult()); }},
        {"Reserved2", [&] { stream->Reserved2(NullResult()); }},
        {"Close", [&] { stream->Close(NullResult()); }},
        {"Reserved3", [&] { stream->Reserved3(NullResult()); }},
        {"Reserved4", [&] { stream->Reserved4(NullResult()); }},
        {"Flush", [&] { stream->Flush(NullResult()); }},
        {"Read", [&] { stream->Read(buffer, sizeof buffer, 0, sizeof buffer, count, NullResult()); }},
        {"Seek", [&] { stream->Seek(5, 0, NullResult()); }},
        {"Write", [&] { stream->Write("ab", 2, 0, 2, count, NullResult()); }},
    };
    for (const auto& entry : cases) {
        SCOPED_TRACE(entry.first);
        EXPECT_FATAL_MESSAGE(entry.second(), L"LinuxFileStream: result NULL reference.");
    }
    // The children shared the descriptor's file position with us: had one of
    // them read, written or sought, the next byte would not be the first.
    EXPECT_EQ(ReadFile(file), Digits);
    EXPECT_EQ(NextByte(*stream), '0');
}

TEST_F(LinuxFileStreamTest, NullCountsAreFatalAndTransferNothing)
{
    SmartPtr<IStream> stream = OpenData();
    unsigned char buffer[4];
    _Result result = ResultFail;
    EXPECT_FATAL_MESSAGE(stream->Read(buffer, sizeof buffer, 0, sizeof buffer, NullCount(), result),
                         L"LinuxFileStream: bytesRead NULL reference.");
    EXPECT_FATAL_MESSAGE(stream->Write("ab", 2, 0, 2, NullCount(), result),
                         L"LinuxFileStream: bytesWritten NULL reference.");
    EXPECT_EQ(ReadFile(file), Digits);
    EXPECT_EQ(NextByte(*stream), '0');
}

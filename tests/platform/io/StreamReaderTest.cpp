// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/io/FileManager.h>
#include <KivPlr/io/StreamReader.h>
#include <KivTest/ChildProcess.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>
#include <KivTest/TemporaryDirectory.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>
#include <unistd.h>
#include <vector>

using namespace KivPlr;
using KivTest::TemporaryDirectory;
using KivTest::WriteFile;

namespace {

KIV_NULL_REFERENCE(NullResult, _Result)
KIV_NULL_REFERENCE(NullLine, std::string)

// One ReadLine call: the line it gave and its result.
typedef std::pair<std::string, _Result> Piece;
typedef std::vector<Piece> Pieces;

// Which form a case reads with: the plain one, or the delimiter one.
constexpr std::int64_t NoDelimiter = -1;

struct ReaderCase
{
    std::string bytes;
    std::int64_t delimiter;
    Pieces expected; ///< every call up to and including the first result other than 200
};

// Reads a stream through the chosen form until the first result other than
// 200 (at most 50 calls).
Pieces ReadAll(IStreamReader& reader, std::int64_t delimiter)
{
    Pieces pieces;
    for (int call = 0; call < 50; ++call) {
        std::string line = "stale";
        _Result result = 0;
        if (delimiter == NoDelimiter)
            reader.ReadLine(line, result);
        else
            reader.ReadLine(line, static_cast<std::uint32_t>(delimiter), result);
        pieces.emplace_back(line, result);
        if (result != ResultPass)
            break;
    }
    return pieces;
}

std::string Printable(const std::string& bytes)
{
    std::string text;
    for (unsigned char c : bytes) {
        if (c >= 32 && c < 127 && c != '\\') {
            text += static_cast<char>(c);
        } else {
            static const char hex[] = "0123456789abcdef";
            text += "\\x";
            text += hex[c >> 4];
            text += hex[c & 15];
        }
    }
    return text;
}

std::string Describe(const Pieces& pieces)
{
    std::string text;
    for (const Piece& piece : pieces)
        text += "(\"" + Printable(piece.first) + "\", " + std::to_string(piece.second) + ") ";
    return text;
}

const _Result Pass = ResultPass;
const _Result End = ResultEndOfData;

// Worked out by hand from the reader's byte rules. In brief: a line feed ends
// a line; a carriage return waits for the next byte to decide; at the end of
// the data the byte of the step before is seen once more; each call starts
// with a zeroed buffer, so a call that meets the end at once stores nothing.
const std::vector<ReaderCase> PlainCases = {
    {"", NoDelimiter, {{"", End}}},
    {"\n", NoDelimiter, {{"", Pass}, {"", End}}},
    {"a\n", NoDelimiter, {{"a", Pass}, {"", End}}},
    {"a\r\nb\n", NoDelimiter, {{"a", Pass}, {"b", Pass}, {"", End}}},
    {"ab", NoDelimiter, {{"abb", End}}},
    {"a", NoDelimiter, {{"aa", End}}},
    {"ab\ncd", NoDelimiter, {{"ab", Pass}, {"cdd", End}}},
    {"a\rb\n", NoDelimiter, {{"a\rb", Pass}, {"", End}}},
    {"a\r\r\nb\n", NoDelimiter, {{"a", Pass}, {"b", Pass}, {"", End}}},
    {"a\r\rb\n", NoDelimiter, {{"a\rb", Pass}, {"", End}}},
    {"a\r", NoDelimiter, {{"a", End}}},
    {"\r\n", NoDelimiter, {{"", Pass}, {"", End}}},
    {"\r", NoDelimiter, {{"", End}}},
    {"\r\r\r\n", NoDelimiter, {{"", Pass}, {"", End}}},
    {std::string("a\0b\n", 4), NoDelimiter, {{"ab", Pass}, {"", End}}},
    {std::string("a\r\0b\n", 5), NoDelimiter, {{"a\rb", Pass}, {"", End}}},
    {std::string("\0", 1), NoDelimiter, {{"", End}}},
    {std::string("\0\n", 2), NoDelimiter, {{"", Pass}, {"", End}}},
    {std::string("ab\0", 3), NoDelimiter, {{"ab", End}}},
    {"\n\n", NoDelimiter, {{"", Pass}, {"", Pass}, {"", End}}},
    {"x:y", NoDelimiter, {{"x:yy", End}}},
    {"a\rb", NoDelimiter, {{"a\rbb", End}}},
    {"a\n\rb", NoDelimiter, {{"a", Pass}, {"\rbb", End}}},
    {"abc\r", NoDelimiter, {{"abc", End}}},
    {"root:x:0:\n", NoDelimiter, {{"root:x:0:", Pass}, {"", End}}},
    {"\xff\xfe\n", NoDelimiter, {{"\xff\xfe", Pass}, {"", End}}},
};

const std::vector<ReaderCase> DelimiterCases = {
    {"", ':', {{"", End}}},
    {"x:y", ':', {{"x", Pass}, {"yy", End}}},
    {"a:b\n", ':', {{"a", Pass}, {"b", Pass}, {"", End}}},
    {"root:x:0:\n", ':', {{"root", Pass}, {"x", Pass}, {"0", Pass}, {"", Pass}, {"", End}}},
    {"g:x:1:a,b\nh:x:2:\n", ':',
     {{"g", Pass}, {"x", Pass}, {"1", Pass}, {"a,b", Pass}, {"h", Pass}, {"x", Pass}, {"2", Pass}, {"", Pass},
      {"", End}}},
    {"a\r:b\n", ':', {{"a\r", Pass}, {"b", Pass}, {"", End}}},
    {"a\r\n", ':', {{"a", Pass}, {"", End}}},
    {std::string("a\0b:", 4), ':', {{"a", Pass}, {"b", Pass}, {"", End}}},
    {"ab", ':', {{"abb", End}}},
    {"a\r", ':', {{"a", End}}},
    {"::", ':', {{"", Pass}, {"", Pass}, {"", End}}},
    {"a:", ':', {{"a", Pass}, {"", End}}},
    {"a\rb:", ':', {{"a\rb", Pass}, {"", End}}},
    {"\r:", ':', {{"\r", Pass}, {"", End}}},
    {"x\r\r:", ':', {{"x\r", Pass}, {"", End}}},
    {"a\r\n", '\n', {{"a\r", Pass}, {"", End}}},
    {"a\r\nb", '\n', {{"a\r", Pass}, {"bb", End}}},
    {std::string("a\0b\n", 4), 300, {{"a", Pass}, {"b", Pass}, {"", End}}},
    {"x:y", 300, {{"x:yy", End}}},
    {std::string("a\r\0b\n", 5), 300, {{"a\r", Pass}, {"b", Pass}, {"", End}}},
    {"a\r\nb\n", 300, {{"a", Pass}, {"b", Pass}, {"", End}}},
    {"x:y", 256 + ':', {{"x:yy", End}}},
    {std::string("a\0b", 3), 0, {{"a", Pass}, {"bb", End}}},
    {"ba", 'a', {{"b", Pass}, {"", End}}},
    {"a\rb\n", '\r', {{"a", Pass}, {"b", Pass}, {"", End}}},
    {"a\r\n", '\r', {{"a", Pass}, {"", Pass}, {"", End}}},
    {"a\xff" "b\n", 0xff, {{"a", Pass}, {"b", Pass}, {"", End}}},
};

class StreamReaderTest : public ::testing::Test
{
protected:
    // A reader over a real file stream on \p bytes.
    SmartPtr<IStreamReader> ReaderOver(const std::string& bytes)
    {
        std::string file = directory.Path() + "/data" + std::to_string(fileNumber++);
        EXPECT_TRUE(WriteFile(file, bytes));
        SmartPtr<IStream> stream;
        _Result result = ResultFail;
        files->OpenRead(Path(file), stream, result);
        EXPECT_EQ(result, ResultPass);
        return SmartPtr<IStreamReader>(new StreamReader(stream));
    }

    void Check(const std::vector<ReaderCase>& cases)
    {
        for (const ReaderCase& entry : cases) {
            SmartPtr<IStreamReader> reader = ReaderOver(entry.bytes);
            Pieces seen = ReadAll(*reader, entry.delimiter);
            EXPECT_EQ(seen, entry.expected)
                << "bytes \"" << Printable(entry.bytes) << "\", delimiter " << entry.delimiter << "\n  got "
                << Describe(seen) << "\n  expected " << Describe(entry.expected);
        }
    }

    TemporaryDirectory directory;
    int fileNumber = 0;
    SmartPtr<IFileManager> files{new FileManager};
};

// A stream that hands out scripted bytes, then a scripted result, and
// records every Read call.
class ScriptedStream : private Object, public IStream
{
public:
    struct Call
    {
        std::uint64_t bufferSize, offset, count;
    };

    ScriptedStream(std::string bytes, _Result finalResult) : bytes(std::move(bytes)), finalResult(finalResult) {}

    void Reserved1(_Result& result) override { result = ResultFail; }
    void Reserved2(_Result& result) override { result = ResultFail; }
    void Close(_Result& result) override { result = ResultPass; }
    void Reserved3(_Result& result) override { result = ResultFail; }
    void Reserved4(_Result& result) override { result = ResultFail; }
    void Flush(_Result& result) override { result = ResultPass; }
    void Read(void* buffer, std::uint64_t bufferSize, std::uint64_t offset, std::uint64_t count,
              std::uint64_t& bytesRead, _Result& result) override
    {
        calls.push_back({bufferSize, offset, count});
        bytesRead = 0;
        if (position < bytes.size()) {
            static_cast<char*>(buffer)[offset] = bytes[position++];
            bytesRead = 1;
            result = ResultPass;
        } else {
            result = finalResult;
        }
    }
    void Seek(std::int64_t, std::int32_t, _Result& result) override { result = ResultFail; }
    std::int64_t GetSize() override { return static_cast<std::int64_t>(bytes.size()); }
    void Write(const void*, std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t& count,
               _Result& result) override
    {
        count = 0;
        result = ResultFail;
    }

    std::vector<Call> calls;

private:
    std::string bytes;
    std::size_t position = 0;
    _Result finalResult;
};

// In a test child that is meant to end without reading: the stream whose
// reads ReportReads announces on standard output as the child exits, where
// the silent-exit check sees them.
ScriptedStream* reportedScript = nullptr;

void ReportReads()
{
    if (reportedScript != nullptr && !reportedScript->calls.empty())
        (void)!write(STDOUT_FILENO, "read", 4);
}

} // namespace

TEST_F(StreamReaderTest, NewReaderHasCountZeroAndKeepsItsStream)
{
    SmartPtr<IStream> stream(new ScriptedStream("", ResultEndOfData));
    StreamReader* reader = new StreamReader(stream);
    IStreamReader* asInterface = reader;
    EXPECT_EQ(asInterface->GetReferenceCount(), 0u);
    EXPECT_EQ(stream->GetReferenceCount(), 2u);
    {
        SmartPtr<IStreamReader> owner(reader);
    }
    EXPECT_EQ(stream->GetReferenceCount(), 1u);
}

TEST_F(StreamReaderTest, CarriageReturnLineFeedEndsLinesAndEmptyCallEndsWithEndOfData)
{
    SmartPtr<IStreamReader> reader = ReaderOver("a\r\nb\n");
    std::string line;
    _Result result = 0;
    reader->ReadLine(line, result);
    EXPECT_EQ(line, "a");
    EXPECT_EQ(result, ResultPass);
    reader->ReadLine(line, result);
    EXPECT_EQ(line, "b");
    EXPECT_EQ(result, ResultPass);
    reader->ReadLine(line, result);
    EXPECT_EQ(line, "");
    EXPECT_EQ(result, ResultEndOfData);
}

TEST_F(StreamReaderTest, LastByteWithoutLineFeedIsRepeated)
{
    SmartPtr<IStreamReader> reader = ReaderOver("x:y");
    std::string line;
    _Result result = 0;
    reader->ReadLine(line, ':', result);
    EXPECT_EQ(line, "x");
    EXPECT_EQ(result, ResultPass);
    reader->ReadLine(line, ':', result);
    EXPECT_EQ(line, "yy");
    EXPECT_EQ(result, ResultEndOfData);
}

TEST_F(StreamReaderTest, DelimiterAboveByteRangeBehavesLikePlainFormExceptForZero)
{
    for (const std::string& bytes : {std::string("a:b\r\nc\n"), std::string("q\rr\r\r\n\n"), std::string("xy")}) {
        Pieces plain = ReadAll(*ReaderOver(bytes), NoDelimiter);
        Pieces wide = ReadAll(*ReaderOver(bytes), 300);
        EXPECT_EQ(plain, wide) << Printable(bytes);
    }
    Pieces plain = ReadAll(*ReaderOver(std::string("a\0b\n", 4)), NoDelimiter);
    Pieces wide = ReadAll(*ReaderOver(std::string("a\0b\n", 4)), 300);
    EXPECT_NE(plain, wide);
}

TEST_F(StreamReaderTest, PlainFormFollowsTheByteRules)
{
    ASSERT_GE(PlainCases.size(), 20u);
    Check(PlainCases);
}

TEST_F(StreamReaderTest, DelimiterFormFollowsTheByteRules)
{
    ASSERT_GE(DelimiterCases.size(), 20u);
    Check(DelimiterCases);
}

TEST_F(StreamReaderTest, ReadsOneByteAtATimeIntoTwoByteBuffer)
{
    ScriptedStream* script = new ScriptedStream("ab\ncd:", ResultEndOfData);
    SmartPtr<IStream> stream(script);
    SmartPtr<IStreamReader> reader(new StreamReader(stream));
    std::string line;
    _Result result = 0;
    reader->ReadLine(line, result);
    EXPECT_EQ(script->calls.size(), 3u);
    reader->ReadLine(line, ':', result);
    EXPECT_EQ(script->calls.size(), 6u);
    for (const ScriptedStream::Call& call : script->calls) {
        EXPECT_EQ(call.bufferSize, 2u);
        EXPECT_EQ(call.offset, 0u);
        EXPECT_EQ(call.count, 1u);
    }
}

TEST_F(StreamReaderTest, ReadFailureIsPassedOnWithWhatWasRead)
{
    for (_Result failure : {ResultFail, ResultNotSupported, ResultPassAlternate}) {
        SmartPtr<IStream> stream(new ScriptedStream("ab", failure));
        SmartPtr<IStreamReader> reader(new StreamReader(stream));
        std::string line;
        _Result result = 0;
        reader->ReadLine(line, result);
        EXPECT_EQ(result, failure);
        EXPECT_EQ(line, "ab");
        reader->ReadLine(line, ':', result);
        EXPECT_EQ(result, failure);
        EXPECT_EQ(line, "");
    }
}

TEST_F(StreamReaderTest, LineIsClearedFirst)
{
    SmartPtr<IStreamReader> reader = ReaderOver("");
    std::string line = "old";
    _Result result = 0;
    reader->ReadLine(line, result);
    EXPECT_EQ(line, "");
    line = "old";
    reader->ReadLine(line, ':', result);
    EXPECT_EQ(line, "");
    EXPECT_EQ(result, ResultEndOfData);
}

TEST_F(StreamReaderTest, ReaderWithoutStreamIsFatal)
{
    SmartPtr<IStreamReader> reader(new StreamReader(SmartPtr<IStream>()));
    std::string line;
    _Result result = 0;
    EXPECT_FATAL_SILENT(reader->ReadLine(line, result));
    EXPECT_FATAL_SILENT(reader->ReadLine(line, ':', result));
}

TEST_F(StreamReaderTest, NullReferencesAreFatalAndReadNothing)
{
    ScriptedStream* script = new ScriptedStream("ab\n", ResultEndOfData);
    SmartPtr<IStream> stream(script);
    SmartPtr<IStreamReader> reader(new StreamReader(stream));
    std::string line;
    _Result result = ResultFail;
    // Each child would report a read on its standard output.
    const std::pair<std::function<void()>, const wchar_t*> cases[] = {
        {[&] { reader->ReadLine(line, NullResult()); }, L"StreamReader: result NULL reference."},
        {[&] { reader->ReadLine(line, ':', NullResult()); }, L"StreamReader: result NULL reference."},
        {[&] { reader->ReadLine(NullLine(), result); }, L"StreamReader: line NULL reference."},
        {[&] { reader->ReadLine(NullLine(), ':', result); }, L"StreamReader: line NULL reference."},
    };
    for (const auto& entry : cases)
        EXPECT_FATAL_MESSAGE(std::atexit(ReportReads); reportedScript = script; entry.first(), entry.second);
    EXPECT_TRUE(script->calls.empty());
}

// SPDX-License-Identifier: Apache-2.0
// StreamReader.h - the line reader of the platform library: one byte per
// IStream::Read, no buffer of its own, meant for short configuration files
// such as /etc/group.
//
// Made with new around a stream it keeps for its whole life, owned through
// SmartPtr. A reader and its stream serve one thread at a time.
//
// Example:
//   SmartPtr<IPlatform> platform(Platform::GetInstance());
//   SmartPtr<IFileManager> files(platform->CreateFileManager());
//   _Result result = ResultFail;
//   SmartPtr<IStream> stream;
//   files->OpenRead(Path("/etc/group"), stream, result);
//   SmartPtr<IStreamReader> reader(new StreamReader(stream));
//   std::string piece;
//   reader->ReadLine(piece, ':', result);   // the first group name
//
// End your data with a line feed: when the data stops without one, the last
// byte of the last line is stored twice ("a", "b" at the end reads "abb",
// result 450). Readers of the kept format rely on this and end every file
// with a line feed.
#ifndef KIVPLR_STREAMREADER_H
#define KIVPLR_STREAMREADER_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/io/IStream.h>
#include <KivPlr/io/IStreamReader.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API StreamReader : private Object, public IStreamReader
{
public:
    /// Keeps \p stream until the reader goes. Reading through a reader made
    /// with an empty pointer is fatal ("SmartPtr<T>-> NULL reference").
    explicit StreamReader(const SmartPtr<IStream>& stream);

    void ReadLine(std::string& line, _Result& result) override;
    void ReadLine(std::string& line, std::uint32_t delimiter, _Result& result) override;

private:
    ~StreamReader() override = default;

    /// Both forms in one: \p delimiter is the piece delimiter, or none.
    void Read(std::string& line, bool useDelimiter, std::uint32_t delimiter, _Result& result);

    SmartPtr<IStream> stream;
};

} // namespace KivPlr

#endif

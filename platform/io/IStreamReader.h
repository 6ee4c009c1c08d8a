// SPDX-License-Identifier: Apache-2.0
// IStreamReader.h - reads text lines, or pieces ending at a chosen delimiter,
// from an IStream.
//
// The implementation (StreamReader) is made with new around a stream and owned
// through SmartPtr:
//
// Example:
//   SmartPtr<IPlatform> platform(Platform::GetInstance());
//   SmartPtr<IFileManager> files(platform->CreateFileManager());
//   _Result result = ResultFail;
//   SmartPtr<IStream> stream;
//   files->OpenRead(Path("/etc/group"), stream, result);
//   SmartPtr<IStreamReader> reader(new StreamReader(stream));
//   std::string line;
//   do {
//       reader->ReadLine(line, result);
//       // use line
//   } while (result == ResultPass);
//
// A reader and its stream serve one thread at a time.
#ifndef KIVPLR_ISTREAMREADER_H
#define KIVPLR_ISTREAMREADER_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>

#include <cstdint>
#include <string>

namespace KivPlr {

class KIVPLR_API IStreamReader : public virtual IObject
{
public:
    /// Clears \p line and reads up to the next line feed, which is not
    /// stored; a carriage return right before it is dropped too. 200 at a
    /// line feed; 450 when the data ends (\p line holds what was read, see
    /// StreamReader for the last byte); any other stream result is passed on
    /// at once, with \p line holding what was read so far.
    virtual void ReadLine(std::string& line, _Result& result) = 0;
    /// As above, and a piece also ends (200) at \p delimiter or at a zero
    /// byte. A line feed still ends a piece. A delimiter above 255 never
    /// matches.
    virtual void ReadLine(std::string& line, std::uint32_t delimiter, _Result& result) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IStreamReader() override = default;
};

} // namespace KivPlr

#endif

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/io/StreamReader.h>

#include <KivPlr/core/FatalError.h>

namespace KivPlr {

namespace {

constexpr unsigned char LineFeed = 10;
constexpr unsigned char CarriageReturn = 13;

} // namespace

StreamReader::StreamReader(const SmartPtr<IStream>& source) : stream(source) {}

void StreamReader::ReadLine(std::string& line, _Result& result)
{
    Read(line, false, 0, result);
}

void StreamReader::ReadLine(std::string& line, std::uint32_t delimiter, _Result& result)
{
    Read(line, true, delimiter, result);
}

void StreamReader::Read(std::string& line, bool useDelimiter, std::uint32_t delimiter, _Result& result)
{
    if (IsNullReference(&result))
        FatalError(L"StreamReader: result NULL reference.");
    if (IsNullReference(&line))
        FatalError(L"StreamReader: line NULL reference.");
    line.clear();
    // Zeroed once per call, not before each read: at the end of the data the
    // buffer still holds the byte of the step before.
    unsigned char buffer[2] = {0, 0};
    unsigned char previous = 0;
    for (;;) {
        std::uint64_t count = 0;
        _Result readResult = ResultFail;
        stream->Read(buffer, sizeof buffer, 0, 1, count, readResult);
        if (readResult != ResultPass && readResult != ResultEndOfData) {
            result = readResult;
            return;
        }
        // At the end of the data nothing was read and c is the byte of the
        // step before, stored once more: callers end their data with a line
        // feed so that this never reaches a line they use.
        unsigned char c = buffer[0];
        if (useDelimiter && (static_cast<std::uint32_t>(c) == delimiter || c == 0)) {
            if (previous == CarriageReturn)
                line += static_cast<char>(CarriageReturn);
            result = readResult;
            return;
        }
        if (c == LineFeed) {
            result = readResult; // a pending carriage return is dropped
            return;
        }
        if (c == 0) {
            if (previous == CarriageReturn)
                line += static_cast<char>(CarriageReturn);
        } else if (c != CarriageReturn) {
            // A carriage return is held back until the next byte shows it is
            // not the first half of a line end.
            if (previous == CarriageReturn)
                line += static_cast<char>(CarriageReturn);
            line += static_cast<char>(c);
        }
        if (readResult == ResultEndOfData) {
            result = readResult;
            return;
        }
        previous = c;
    }
}

} // namespace KivPlr

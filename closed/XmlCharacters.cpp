// SPDX-License-Identifier: Apache-2.0
#include <KivClosed/XmlCharacters.h>

#include <cstdio>

namespace KivClosed {

namespace {

std::string ByteNotation(unsigned char byte)
{
    char text[8];
    std::snprintf(text, sizeof text, "0x%02X", static_cast<unsigned>(byte));
    return text;
}

bool IsContinuation(unsigned char byte)
{
    return (byte & 0xC0u) == 0x80u;
}

} // namespace

bool XmlCharacters::IsAllowed(std::uint32_t codePoint)
{
    if (codePoint < 0x20u)
        return codePoint == 0x09u || codePoint == 0x0Au || codePoint == 0x0Du;
    if (codePoint <= 0xD7FFu)
        return true;
    if (codePoint < 0xE000u)
        return false;
    if (codePoint <= 0xFFFDu)
        return true;
    return codePoint >= 0x10000u && codePoint <= 0x10FFFFu;
}

std::string XmlCharacters::Notation(std::uint32_t codePoint)
{
    char text[16];
    std::snprintf(text, sizeof text, "U+%04X", static_cast<unsigned>(codePoint));
    return text;
}

bool XmlCharacters::Check(const char* data, std::size_t size, std::size_t& faultOffset, std::string& fault)
{
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(data);
    std::size_t index = 0;
    while (index < size) {
        unsigned char lead = bytes[index];
        std::uint32_t codePoint = 0;
        std::size_t length = 0;
        // The bounds of the second byte exclude overlong forms, surrogates and
        // values above U+10FFFF in one comparison.
        unsigned char secondLow = 0x80u;
        unsigned char secondHigh = 0xBFu;
        if (lead < 0x80u) {
            codePoint = lead;
            length = 1;
        } else if (lead >= 0xC2u && lead <= 0xDFu) {
            codePoint = lead & 0x1Fu;
            length = 2;
        } else if (lead >= 0xE0u && lead <= 0xEFu) {
            codePoint = lead & 0x0Fu;
            length = 3;
            if (lead == 0xE0u)
                secondLow = 0xA0u;
            else if (lead == 0xEDu)
                secondHigh = 0x9Fu;
        } else if (lead >= 0xF0u && lead <= 0xF4u) {
            codePoint = lead & 0x07u;
            length = 4;
            if (lead == 0xF0u)
                secondLow = 0x90u;
            else if (lead == 0xF4u)
                secondHigh = 0x8Fu;
        } else {
            faultOffset = index;
            fault = "invalid UTF-8 byte " + ByteNotation(lead);
            return false;
        }
        for (std::size_t next = 1; next < length; ++next) {
            if (index + next >= size) {
                faultOffset = index;
                fault = "truncated UTF-8 sequence at the end of the text";
                return false;
            }
            unsigned char byte = bytes[index + next];
            bool fits = next == 1 ? (byte >= secondLow && byte <= secondHigh) : IsContinuation(byte);
            if (!fits) {
                faultOffset = index;
                fault = "invalid UTF-8 sequence starting with byte " + ByteNotation(lead);
                return false;
            }
            codePoint = (codePoint << 6) | (byte & 0x3Fu);
        }
        if (!IsAllowed(codePoint)) {
            faultOffset = index;
            fault = "character " + Notation(codePoint) + " is not allowed in XML";
            return false;
        }
        index += length;
    }
    return true;
}

} // namespace KivClosed

// SPDX-License-Identifier: Apache-2.0
// XmlCharacters.h - which bytes may stand in an XML 1.0 document that is
// encoded in UTF-8.
//
// Used by the description writer (which refuses a text that no XML file can
// carry) and by the XML record reader (which names the first such character
// of a file that libexpat refused, wherever the parser stopped).
// Stateless; any thread may use it.
//
// Example:
//   std::string text = "a\x01b";
//   std::size_t offset = 0;
//   std::string fault;
//   if (!XmlCharacters::Check(text.data(), text.size(), offset, fault))
//       std::printf("%zu: %s\n", offset, fault.c_str());   // "character U+0001 is not allowed in XML"
#ifndef KIV_CLOSED_XMLCHARACTERS_H
#define KIV_CLOSED_XMLCHARACTERS_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace KivClosed {

class XmlCharacters
{
public:
    /// True for the code points XML 1.0 allows in a document: tab, line
    /// feed, carriage return, U+0020..U+D7FF, U+E000..U+FFFD and
    /// U+10000..U+10FFFF.
    static bool IsAllowed(std::uint32_t codePoint);

    /// Checks that \p data is valid UTF-8 (no overlong forms, no surrogates,
    /// nothing above U+10FFFF, no truncated sequence) and holds only allowed
    /// code points. On the first fault answers false, with \p faultOffset the
    /// offset of the first byte of the faulty sequence and \p fault a short
    /// description such as "invalid UTF-8 byte 0xFF". A zero byte is a fault.
    static bool Check(const char* data, std::size_t size, std::size_t& faultOffset, std::string& fault);

    /// "U+0001", "U+1F600": the usual notation of a code point.
    static std::string Notation(std::uint32_t codePoint);
};

} // namespace KivClosed

#endif

// SPDX-License-Identifier: Apache-2.0
// Quote.h - a text as a message shows it: in double quotes, with backslash
// escapes for the quote, the backslash and every control character, so that
// each byte is seen.
//
// Used by the XML record reader for the values its fault messages name and
// by discovery-check for the fields it prints. Stateless; any thread may use
// it. Not part of any installed interface.
//
// Example:
//   std::string shown = KivClosed::Quote("a\tb\"c");          // "\"a\\tb\\\"c\""
//   std::string cut = KivClosed::Quote(std::string(50, 'x'), 40); // 40 x, then ...
#ifndef KIV_CLOSED_QUOTE_H
#define KIV_CLOSED_QUOTE_H

#include <cstddef>
#include <string>

namespace KivClosed {

/// No limit on how much of the text Quote shows.
constexpr std::size_t WholeText = static_cast<std::size_t>(-1);

/// \p text in double quotes. '"' and '\' get a backslash; tab, line feed and
/// carriage return are written \t, \n and \r; other bytes below 0x20 and
/// 0x7F are written \xNN (two upper-case hex digits). Bytes from 0x80 pass
/// unchanged. When \p text is longer than \p longest bytes, only the first
/// \p longest are shown, followed by "..." inside the quotes.
std::string Quote(const std::string& text, std::size_t longest = WholeText);

} // namespace KivClosed

#endif

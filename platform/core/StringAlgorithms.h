// SPDX-License-Identifier: Apache-2.0
// StringAlgorithms.h - small string conversions shared by the library: the
// packed-U8 hexadecimal encoding of binary values (identifiers, keys), case
// conversion and trimming.
//
// Free functions without state; any thread may call them on strings it owns.
// A null reference for the string or vector they write ends the process
// through FatalError.
//
// Example:
//   std::vector<unsigned char> bytes;
//   StringAlgorithms::ToPackedU8("DEAD", bytes);   // {0xDE, 0xAD}
//   std::string hex;
//   StringAlgorithms::FromPackedU8(bytes, hex);    // "dead"
#ifndef KIVPLR_STRINGALGORITHMS_H
#define KIVPLR_STRINGALGORITHMS_H

#include <KivPlr/core/Export.h>

#include <string>
#include <vector>

namespace KivPlr {
namespace StringAlgorithms {

/// Hexadecimal text to bytes. \p bytes becomes (n + 1) / 2 zero bytes, n
/// being the length of \p hex with every character counted; then each digit
/// (0-9, a-f, A-F) in turn is shifted into its byte, two digits per byte,
/// high nibble first. Other characters are skipped and do not count as
/// digits, so they leave zero bytes at the end. An odd number of digits
/// leaves the last digit in the low nibble of the last byte:
///   "0a1B" -> {0x0A, 0x1B}   "abc" -> {0xAB, 0x0C}   "a-b" -> {0xAB, 0x00}
KIVPLR_API void ToPackedU8(const std::string& hex, std::vector<unsigned char>& bytes);

/// Bytes to lower-case hexadecimal text, two characters per byte, high
/// nibble first. \p hex is cleared first; no bytes give an empty text.
KIVPLR_API void FromPackedU8(const std::vector<unsigned char>& bytes, std::string& hex);

/// Every byte through toupper of the C library's current locale, in place.
KIVPLR_API void ToUpper(std::string& text);
/// Every byte through tolower of the C library's current locale, in place.
KIVPLR_API void ToLower(std::string& text);
/// Every character through towupper of the C library's current locale.
KIVPLR_API void ToUpper(std::wstring& text);
/// Every character through towlower of the C library's current locale.
KIVPLR_API void ToLower(std::wstring& text);

/// Removes, at both ends, the characters that the ctype facet of the default
/// locale (std::locale(), the program's global C++ locale) classes as space;
/// space inside the text stays. A text of nothing but space becomes empty.
KIVPLR_API void Trim(std::string& text);
/// As Trim(std::string&), with the wide ctype facet of the default locale.
KIVPLR_API void Trim(std::wstring& text);

} // namespace StringAlgorithms
} // namespace KivPlr

#endif

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/StringAlgorithms.h>

#include <KivPlr/core/FatalError.h>

#include <cctype>
#include <cwctype>
#include <locale>

namespace KivPlr {
namespace StringAlgorithms {

namespace {

// The value of a hexadecimal digit, or -1 for any other character.
int DigitValue(char character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    return -1;
}

// Every operation here writes through its one reference parameter. The
// helper takes its address: passing the reference itself on would bind a
// new reference to the null address.
template <typename Written>
void CheckReference(const Written* written, const wchar_t* message)
{
    if (IsNullReference(written))
        FatalError(message);
}

template <typename Character>
void TrimWithFacet(std::basic_string<Character>& text)
{
    const std::ctype<Character>& facet = std::use_facet<std::ctype<Character>>(std::locale());
    typename std::basic_string<Character>::size_type end = text.size();
    while (end > 0 && facet.is(std::ctype_base::space, text[end - 1]))
        --end;
    typename std::basic_string<Character>::size_type begin = 0;
    while (begin < end && facet.is(std::ctype_base::space, text[begin]))
        ++begin;
    text.erase(end);
    text.erase(0, begin);
}

} // namespace

void ToPackedU8(const std::string& hex, std::vector<unsigned char>& bytes)
{
    CheckReference(&bytes, L"StringAlgorithms: bytes NULL reference.");
    bytes.assign(hex.size() / 2 + hex.size() % 2, 0);
    std::string::size_type digitIndex = 0;
    for (char character : hex) {
        const int value = DigitValue(character);
        if (value < 0)
            continue;
        unsigned char& byte = bytes[digitIndex / 2];
        byte = static_cast<unsigned char>((byte << 4) | value);
        ++digitIndex;
    }
}

void FromPackedU8(const std::vector<unsigned char>& bytes, std::string& hex)
{
    static const char digits[] = "0123456789abcdef";
    CheckReference(&hex, L"StringAlgorithms: hex NULL reference.");
    hex.clear();
    hex.reserve(bytes.size() * 2);
    for (unsigned char byte : bytes) {
        hex += digits[byte >> 4];
        hex += digits[byte & 0x0F];
    }
}

void ToUpper(std::string& text)
{
    CheckReference(&text, L"StringAlgorithms: text NULL reference.");
    for (char& character : text)
        character = static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
}

void ToLower(std::string& text)
{
    CheckReference(&text, L"StringAlgorithms: text NULL reference.");
    for (char& character : text)
        character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
}

void ToUpper(std::wstring& text)
{
    CheckReference(&text, L"StringAlgorithms: text NULL reference.");
    for (wchar_t& character : text)
        character = static_cast<wchar_t>(std::towupper(static_cast<std::wint_t>(character)));
}

void ToLower(std::wstring& text)
{
    CheckReference(&text, L"StringAlgorithms: text NULL reference.");
    for (wchar_t& character : text)
        character = static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(character)));
}

void Trim(std::string& text)
{
    CheckReference(&text, L"StringAlgorithms: text NULL reference.");
    TrimWithFacet(text);
}

void Trim(std::wstring& text)
{
    CheckReference(&text, L"StringAlgorithms: text NULL reference.");
    TrimWithFacet(text);
}

} // namespace StringAlgorithms
} // namespace KivPlr

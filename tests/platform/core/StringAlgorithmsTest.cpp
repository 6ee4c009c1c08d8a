// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/StringAlgorithms.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <locale>
#include <random>
#include <string>
#include <vector>

using namespace KivPlr;

namespace {

typedef std::vector<unsigned char> Bytes;

Bytes Packed(const std::string& hex)
{
    Bytes bytes{0x55, 0x66, 0x77};
    StringAlgorithms::ToPackedU8(hex, bytes);
    return bytes;
}

std::string Unpacked(const Bytes& bytes)
{
    std::string hex = "left over";
    StringAlgorithms::FromPackedU8(bytes, hex);
    return hex;
}

// Converted copies, so that each expectation reads on one line.
template <typename Text>
Text Upper(Text text)
{
    StringAlgorithms::ToUpper(text);
    return text;
}

template <typename Text>
Text Lower(Text text)
{
    StringAlgorithms::ToLower(text);
    return text;
}

template <typename Text>
Text Trimmed(Text text)
{
    StringAlgorithms::Trim(text);
    return text;
}

// Installs a global C++ locale for the lifetime of the object and puts the
// previous one back afterwards.
class GlobalLocale
{
public:
    explicit GlobalLocale(const std::locale& locale) : previous(std::locale::global(locale)) {}
    ~GlobalLocale() { std::locale::global(previous); }
    GlobalLocale(const GlobalLocale&) = delete;
    GlobalLocale& operator=(const GlobalLocale&) = delete;

private:
    std::locale previous;
};

// A narrow ctype facet that classes '*' as space as well.
class StarIsSpaceCtype : public std::ctype<char>
{
public:
    StarIsSpaceCtype() : std::ctype<char>(MakeTable(), false) {}

private:
    static const mask* MakeTable()
    {
        static std::vector<mask> table(classic_table(), classic_table() + table_size);
        table[static_cast<unsigned char>('*')] |= space;
        return table.data();
    }
};

// A wide ctype facet that classes L'*' as space as well.
class WideStarIsSpaceCtype : public std::ctype<wchar_t>
{
protected:
    bool do_is(mask m, wchar_t character) const override
    {
        if (character == L'*' && (m & space) != 0)
            return true;
        return std::ctype<wchar_t>::do_is(m, character);
    }
};

} // namespace

// --- ToPackedU8 / FromPackedU8 --------------------------------------------------

TEST(StringAlgorithmsTest, AllByteValuesRoundTrip)
{
    Bytes all;
    for (int value = 0; value < 256; ++value)
        all.push_back(static_cast<unsigned char>(value));

    const std::string hex = Unpacked(all);
    ASSERT_EQ(hex.size(), 512u);
    for (int value = 0; value < 256; ++value) {
        char expected[3];
        std::snprintf(expected, sizeof expected, "%02x", static_cast<unsigned>(value));
        EXPECT_EQ(hex.substr(static_cast<std::size_t>(value) * 2, 2), expected) << value;
    }
    EXPECT_EQ(Packed(hex), all);

    std::string upper = hex;
    StringAlgorithms::ToUpper(upper);
    EXPECT_EQ(Packed(upper), all);
}

TEST(StringAlgorithmsTest, RandomVectorsRoundTrip)
{
    std::mt19937 engine(20240611u);
    std::uniform_int_distribution<int> byteValue(0, 255);
    std::uniform_int_distribution<int> length(0, 80);
    for (int round = 0; round < 500; ++round) {
        Bytes bytes(static_cast<std::size_t>(length(engine)));
        for (unsigned char& byte : bytes)
            byte = static_cast<unsigned char>(byteValue(engine));
        const std::string hex = Unpacked(bytes);
        ASSERT_EQ(hex.size(), bytes.size() * 2);
        ASSERT_EQ(Packed(hex), bytes) << hex;
    }
}

TEST(StringAlgorithmsTest, MixedCaseDigitsPackTwoPerByte)
{
    EXPECT_EQ(Packed("0a1B"), (Bytes{0x0A, 0x1B}));
}

TEST(StringAlgorithmsTest, OddDigitCountLeavesLastDigitInLowNibble)
{
    EXPECT_EQ(Packed("abc"), (Bytes{0xAB, 0x0C}));
    EXPECT_EQ(Packed("f"), (Bytes{0x0F}));
}

TEST(StringAlgorithmsTest, SkippedCharactersLeaveZeroBytesAtTheEnd)
{
    EXPECT_EQ(Packed("a-b"), (Bytes{0xAB, 0x00}));
    EXPECT_EQ(Packed("0x1F"), (Bytes{0x01, 0x0F}));
    EXPECT_EQ(Packed("de:ad"), (Bytes{0xDE, 0xAD, 0x00}));
    EXPECT_EQ(Packed("zz"), (Bytes{0x00}));
    EXPECT_EQ(Packed("g G"), (Bytes{0x00, 0x00}));
}

TEST(StringAlgorithmsTest, FromPackedU8GivesLowerCaseHex)
{
    EXPECT_EQ(Unpacked(Bytes{0xDE, 0xAD}), "dead");
    EXPECT_EQ(Unpacked(Bytes{0x00, 0x0F, 0xF0}), "000ff0");
}

TEST(StringAlgorithmsTest, UpperCaseHexPacksLikeLowerCase)
{
    EXPECT_EQ(Packed("DEAD"), (Bytes{0xDE, 0xAD}));
    EXPECT_EQ(Packed("dead"), (Bytes{0xDE, 0xAD}));
}

TEST(StringAlgorithmsTest, EmptyTextGivesNoBytes)
{
    EXPECT_EQ(Packed(""), Bytes{});
}

TEST(StringAlgorithmsTest, NoBytesGiveEmptyText)
{
    EXPECT_EQ(Unpacked(Bytes{}), "");
}

TEST(StringAlgorithmsTest, ToPackedU8ReplacesEarlierContent)
{
    Bytes bytes{0xFF, 0xFF, 0xFF, 0xFF};
    StringAlgorithms::ToPackedU8("1", bytes);
    EXPECT_EQ(bytes, Bytes{0x01});
}

// --- ToUpper / ToLower ------------------------------------------------------------

TEST(StringAlgorithmsTest, ToUpperChangesLettersOnly)
{
    EXPECT_EQ(Upper(std::string("Hello, World 42 az AZ")), "HELLO, WORLD 42 AZ AZ");
}

TEST(StringAlgorithmsTest, ToLowerChangesLettersOnly)
{
    EXPECT_EQ(Lower(std::string("Hello, World 42 az AZ")), "hello, world 42 az az");
}

TEST(StringAlgorithmsTest, CaseConversionKeepsHighBytesAndLength)
{
    const std::string text("a\x80\xff\0b", 5);
    EXPECT_EQ(Upper(text), std::string("A\x80\xff\0B", 5));
    EXPECT_EQ(Lower(Upper(text)), text);
}

TEST(StringAlgorithmsTest, WideToUpperAndToLower)
{
    EXPECT_EQ(Upper(std::wstring(L"Mixed Case 7")), L"MIXED CASE 7");
    EXPECT_EQ(Lower(std::wstring(L"Mixed Case 7")), L"mixed case 7");
}

TEST(StringAlgorithmsTest, CaseConversionOfEmptyTextsStaysEmpty)
{
    EXPECT_EQ(Upper(std::string()), "");
    EXPECT_EQ(Lower(std::string()), "");
    EXPECT_EQ(Upper(std::wstring()), L"");
    EXPECT_EQ(Lower(std::wstring()), L"");
}

// --- Trim -------------------------------------------------------------------------

TEST(StringAlgorithmsTest, TrimRemovesSpaceAtBothEnds)
{
    EXPECT_EQ(Trimmed(std::string(" \t\r\n\v\f a b \t\n")), "a b");
}

TEST(StringAlgorithmsTest, TrimKeepsSpaceInside)
{
    EXPECT_EQ(Trimmed(std::string("a \t b")), "a \t b");
}

TEST(StringAlgorithmsTest, TrimOfOnlySpaceGivesEmptyText)
{
    EXPECT_EQ(Trimmed(std::string(" \t \n ")), "");
    EXPECT_EQ(Trimmed(std::string()), "");
}

TEST(StringAlgorithmsTest, TrimOfOneEndOnly)
{
    EXPECT_EQ(Trimmed(std::string("  x")), "x");
    EXPECT_EQ(Trimmed(std::string("x  ")), "x");
}

TEST(StringAlgorithmsTest, WideTrimRemovesSpaceAtBothEnds)
{
    EXPECT_EQ(Trimmed(std::wstring(L"\t  wide text \n ")), L"wide text");
    EXPECT_EQ(Trimmed(std::wstring(L" \t ")), L"");
}

TEST(StringAlgorithmsTest, TrimFollowsTheGlobalLocale)
{
    std::string text = "**a*b**";
    {
        GlobalLocale starIsSpace(std::locale(std::locale::classic(), new StarIsSpaceCtype));
        StringAlgorithms::Trim(text);
    }
    EXPECT_EQ(text, "a*b");

    std::string untouched = "**a**";
    StringAlgorithms::Trim(untouched);
    EXPECT_EQ(untouched, "**a**");
}

TEST(StringAlgorithmsTest, WideTrimFollowsTheGlobalLocale)
{
    std::wstring text = L"* a*b *";
    {
        GlobalLocale starIsSpace(std::locale(std::locale::classic(), new WideStarIsSpaceCtype));
        StringAlgorithms::Trim(text);
    }
    EXPECT_EQ(text, L"a*b");
}

namespace {

// A function the sanitizer leaves alone (see NullReference.h): g++ checks a
// null vector reference where this call binds it, before ToPackedU8 can.
__attribute__((no_sanitize("undefined"))) void PackIntoANullVector()
{
    StringAlgorithms::ToPackedU8("dead", KivTest::NullReference<Bytes>());
}

} // namespace

TEST(StringAlgorithmsTest, ANullBytesReferenceIsFatal)
{
    EXPECT_FATAL_MESSAGE(PackIntoANullVector(), L"StringAlgorithms: bytes NULL reference.");
}

TEST(StringAlgorithmsTest, ANullHexReferenceIsFatal)
{
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<std::string>(
                             [](std::string& none) { StringAlgorithms::FromPackedU8(Bytes{0xDE}, none); }),
                         L"StringAlgorithms: hex NULL reference.");
}

TEST(StringAlgorithmsTest, ANullTextReferenceIsFatalForCaseConversionAndTrim)
{
    const wchar_t* const message = L"StringAlgorithms: text NULL reference.";
    typedef void (*Narrow)(std::string&);
    typedef void (*Wide)(std::wstring&);
    for (Narrow change : {static_cast<Narrow>(&StringAlgorithms::ToUpper),
                          static_cast<Narrow>(&StringAlgorithms::ToLower),
                          static_cast<Narrow>(&StringAlgorithms::Trim)})
        EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<std::string>([&](std::string& none) { change(none); }),
                             message);
    for (Wide change : {static_cast<Wide>(&StringAlgorithms::ToUpper),
                        static_cast<Wide>(&StringAlgorithms::ToLower),
                        static_cast<Wide>(&StringAlgorithms::Trim)})
        EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<std::wstring>([&](std::wstring& none) { change(none); }),
                             message);
}

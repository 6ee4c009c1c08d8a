// SPDX-License-Identifier: Apache-2.0
#include <KivClosed/XmlCharacters.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

using KivClosed::XmlCharacters;

namespace {

bool Valid(const std::string& text)
{
    std::size_t offset = 0;
    std::string fault;
    return XmlCharacters::Check(text.data(), text.size(), offset, fault);
}

std::string Fault(const std::string& text, std::size_t& offset)
{
    std::string fault;
    EXPECT_FALSE(XmlCharacters::Check(text.data(), text.size(), offset, fault));
    return fault;
}

} // namespace

TEST(XmlCharactersTest, AllowedRangesHaveExactEdges)
{
    EXPECT_FALSE(XmlCharacters::IsAllowed(0x00));
    EXPECT_FALSE(XmlCharacters::IsAllowed(0x08));
    EXPECT_TRUE(XmlCharacters::IsAllowed(0x09));
    EXPECT_TRUE(XmlCharacters::IsAllowed(0x0A));
    EXPECT_FALSE(XmlCharacters::IsAllowed(0x0B));
    EXPECT_FALSE(XmlCharacters::IsAllowed(0x0C));
    EXPECT_TRUE(XmlCharacters::IsAllowed(0x0D));
    EXPECT_FALSE(XmlCharacters::IsAllowed(0x1F));
    EXPECT_TRUE(XmlCharacters::IsAllowed(0x20));
    EXPECT_TRUE(XmlCharacters::IsAllowed(0x7F));
    EXPECT_TRUE(XmlCharacters::IsAllowed(0xD7FF));
    EXPECT_FALSE(XmlCharacters::IsAllowed(0xD800));
    EXPECT_FALSE(XmlCharacters::IsAllowed(0xDFFF));
    EXPECT_TRUE(XmlCharacters::IsAllowed(0xE000));
    EXPECT_TRUE(XmlCharacters::IsAllowed(0xFFFD));
    EXPECT_FALSE(XmlCharacters::IsAllowed(0xFFFE));
    EXPECT_FALSE(XmlCharacters::IsAllowed(0xFFFF));
    EXPECT_TRUE(XmlCharacters::IsAllowed(0x10000));
    EXPECT_TRUE(XmlCharacters::IsAllowed(0x10FFFF));
    EXPECT_FALSE(XmlCharacters::IsAllowed(0x110000));
}

TEST(XmlCharactersTest, WellFormedUtf8OfEveryLengthPasses)
{
    EXPECT_TRUE(Valid(""));
    EXPECT_TRUE(Valid("plain \t\r\n text"));
    EXPECT_TRUE(Valid("\xC2\x80\xDF\xBF"));
    EXPECT_TRUE(Valid("\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBD"));
    EXPECT_TRUE(Valid("\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"));
}

TEST(XmlCharactersTest, OverlongFormsFail)
{
    std::size_t offset = 0;
    EXPECT_EQ(Fault("ab\xC0\x80", offset), "invalid UTF-8 byte 0xC0");
    EXPECT_EQ(offset, 2u);
    EXPECT_EQ(Fault("\xC1\xBF", offset), "invalid UTF-8 byte 0xC1");
    EXPECT_EQ(Fault("\xE0\x9F\xBF", offset), "invalid UTF-8 sequence starting with byte 0xE0");
    EXPECT_EQ(Fault("\xF0\x8F\xBF\xBF", offset), "invalid UTF-8 sequence starting with byte 0xF0");
}

TEST(XmlCharactersTest, SurrogatesAndValuesBeyondTheLastPlaneFail)
{
    std::size_t offset = 0;
    EXPECT_EQ(Fault("\xED\xA0\x80", offset), "invalid UTF-8 sequence starting with byte 0xED");
    EXPECT_EQ(Fault("\xED\xBF\xBF", offset), "invalid UTF-8 sequence starting with byte 0xED");
    EXPECT_EQ(Fault("\xF4\x90\x80\x80", offset), "invalid UTF-8 sequence starting with byte 0xF4");
    EXPECT_EQ(Fault("\xF5\x80\x80\x80", offset), "invalid UTF-8 byte 0xF5");
    EXPECT_EQ(Fault("\xFF", offset), "invalid UTF-8 byte 0xFF");
}

TEST(XmlCharactersTest, StrayAndMissingContinuationBytesFail)
{
    std::size_t offset = 0;
    EXPECT_EQ(Fault("a\x80", offset), "invalid UTF-8 byte 0x80");
    EXPECT_EQ(offset, 1u);
    EXPECT_EQ(Fault("\xE2\x82x", offset), "invalid UTF-8 sequence starting with byte 0xE2");
    EXPECT_EQ(Fault("xy\xE2\x82", offset), "truncated UTF-8 sequence at the end of the text");
    EXPECT_EQ(offset, 2u);
}

TEST(XmlCharactersTest, ForbiddenCharactersFailWithTheirCodePoint)
{
    std::size_t offset = 0;
    EXPECT_EQ(Fault(std::string("a\0b", 3), offset), "character U+0000 is not allowed in XML");
    EXPECT_EQ(offset, 1u);
    EXPECT_EQ(Fault("\x0B", offset), "character U+000B is not allowed in XML");
    EXPECT_EQ(Fault("\xC3\xA9\xEF\xBF\xBF", offset), "character U+FFFF is not allowed in XML");
    EXPECT_EQ(offset, 2u);
}

TEST(XmlCharactersTest, NotationPadsToFourDigits)
{
    EXPECT_EQ(XmlCharacters::Notation(0x1), "U+0001");
    EXPECT_EQ(XmlCharacters::Notation(0x1F600), "U+1F600");
}

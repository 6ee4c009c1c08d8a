// SPDX-License-Identifier: Apache-2.0
#include <KivClosed/Quote.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

using KivClosed::Quote;

namespace {

struct QuoteCase
{
    const char* behaviour; ///< the test's name
    std::string text;
    std::size_t longest;
    std::string shown;
};

class QuoteTest : public ::testing::TestWithParam<QuoteCase>
{
};

TEST_P(QuoteTest, ShowsEveryByte)
{
    EXPECT_EQ(Quote(GetParam().text, GetParam().longest), GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, QuoteTest,
    ::testing::Values(QuoteCase{"EmptyTextIsTwoQuotes", "", KivClosed::WholeText, "\"\""},
                      QuoteCase{"PlainTextPassesUnchanged", "wall left", KivClosed::WholeText, "\"wall left\""},
                      QuoteCase{"QuoteAndBackslashGetABackslash", "a\"b\\c", KivClosed::WholeText, "\"a\\\"b\\\\c\""},
                      QuoteCase{"TabLineFeedAndReturnAreNamed", "\t\n\r", KivClosed::WholeText, "\"\\t\\n\\r\""},
                      QuoteCase{"OtherControlBytesAreHex", std::string("\x01\x1f\x7f", 3), KivClosed::WholeText,
                                "\"\\x01\\x1F\\x7F\""},
                      QuoteCase{"NulIsShownNotEnded", std::string("a\0b", 3), KivClosed::WholeText, "\"a\\x00b\""},
                      QuoteCase{"BytesFromHexEightyPassUnchanged", "\xc3\xa9", KivClosed::WholeText, "\"\xc3\xa9\""},
                      QuoteCase{"TextAtTheLimitIsWhole", "abcd", 4, "\"abcd\""},
                      QuoteCase{"LongerTextIsCutWithDots", "abcde", 4, "\"abcd...\""},
                      QuoteCase{"CutCountsBytesBeforeEscaping", "\t\t\t", 2, "\"\\t\\t...\""}),
    [](const ::testing::TestParamInfo<QuoteCase>& entry) { return std::string(entry.param.behaviour); });

} // namespace

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/Result.h>

#include <cstdint>
#include <gtest/gtest.h>

using namespace KivPlr;

TEST(ResultTest, NamedCodesHaveTheirValues)
{
    EXPECT_EQ(ResultPass, 200u);
    EXPECT_EQ(ResultPassAlternate, 250u);
    EXPECT_EQ(ResultOutOfRange, 400u);
    EXPECT_EQ(ResultBadArgument, 401u);
    EXPECT_EQ(ResultAlreadyStarted, 405u);
    EXPECT_EQ(ResultEndOfData, 450u);
    EXPECT_EQ(ResultFail, 500u);
    EXPECT_EQ(ResultNotSupported, 501u);
}

TEST(ResultTest, SucceededOnlyForTheTwoSuccessValues)
{
    EXPECT_TRUE(Succeeded(200));
    EXPECT_TRUE(Succeeded(250));
    EXPECT_FALSE(Succeeded(0));
    EXPECT_FALSE(Succeeded(201));
    EXPECT_FALSE(Succeeded(500));
    EXPECT_FALSE(Succeeded(501));
    EXPECT_FALSE(Succeeded(400));
    EXPECT_FALSE(Succeeded(401));
    EXPECT_FALSE(Succeeded(405));
    EXPECT_FALSE(Succeeded(450));
}

TEST(ResultTest, FailedIsFalseForExactlyTwoHundredAndTwoFifty)
{
    for (std::uint32_t code = 0; code < 1000; ++code)
        EXPECT_EQ(Failed(code), code != 200 && code != 250) << code;
    EXPECT_TRUE(Failed(0xFFFFFFFFu));
}

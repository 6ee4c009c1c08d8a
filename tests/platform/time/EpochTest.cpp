// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/time/Epoch.h>

#include <gtest/gtest.h>

using namespace KivPlr;

TEST(EpochTest, IsTheFirstOfJanuary1970)
{
    Epoch epoch;
    EXPECT_EQ(epoch.GetKind(), KindFinite);
    EXPECT_EQ(epoch.GetDayNumber(), 0);
    EXPECT_TRUE(epoch == Date(1970, 1, 1));
}

TEST(EpochTest, CountsDatesFromDayZero)
{
    EXPECT_EQ((Date(2000, 1, 1) - Epoch()).GetDays(), 10957);
    EXPECT_EQ((Epoch() - Date(1970, 1, 2)).GetDays(), -1);
    EXPECT_TRUE(Epoch() + DateDuration(366) == Date(1971, 1, 2));
}

TEST(EpochTest, IsAThursday)
{
    EXPECT_EQ(Epoch().GetWeekday(), 4);
}

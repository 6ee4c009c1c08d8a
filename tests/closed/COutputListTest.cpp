// SPDX-License-Identifier: Apache-2.0
#include <VpSts/COutputList.h>

#include <gtest/gtest.h>

using VpSts::COutput;
using VpSts::COutputList;

TEST(COutputListTest, IndexPastTheEndAnswersNull)
{
    COutputList list;
    EXPECT_EQ(list[0u], nullptr);
    list.Add(COutput(1, 0, 2, 4));
    ASSERT_NE(list[0u], nullptr);
    EXPECT_EQ(list[0u]->outputNumber, 1u);
    EXPECT_EQ(list[0u]->outputKind, 0u);
    EXPECT_EQ(list[0u]->translationRows, 2u);
    EXPECT_EQ(list[0u]->translationColumns, 4u);
    EXPECT_EQ(list[1u], nullptr);
    EXPECT_EQ(list.Count(), 1u);
}

TEST(COutputListTest, SwapExchangesTheEntries)
{
    COutputList first;
    COutputList second;
    first.Add(COutput(7, 1, 1, 1));
    second.Swap(first);
    EXPECT_EQ(first[0u], nullptr);
    ASSERT_NE(second[0u], nullptr);
    EXPECT_EQ(second[0u]->outputNumber, 7u);
}

// SPDX-License-Identifier: Apache-2.0
#include <VpCfg/CServiceList.h>

#include <gtest/gtest.h>

using VpCfg::CServiceEntry;
using VpCfg::CServiceList;

TEST(CServiceListTest, EmptyListAnswersNullAtIndexZero)
{
    CServiceList list;
    EXPECT_EQ(list[0u], nullptr);
    EXPECT_EQ(list.Count(), 0u);
}

TEST(CServiceListTest, IndexPastTheEndAnswersNull)
{
    CServiceList list;
    list.Add(CServiceEntry(0, 80));
    list.Add(CServiceEntry(2, 554));
    ASSERT_NE(list[1u], nullptr);
    EXPECT_EQ(list[1u]->serviceKind, 2u);
    EXPECT_EQ(list[1u]->servicePort, 554u);
    EXPECT_EQ(list[2u], nullptr);
    EXPECT_EQ(list[4294967295u], nullptr);
}

TEST(CServiceListTest, SwapExchangesTheEntries)
{
    CServiceList first;
    CServiceList second;
    first.Add(CServiceEntry(0, 80));
    second.Swap(first);
    EXPECT_EQ(first.Count(), 0u);
    ASSERT_EQ(second.Count(), 1u);
    EXPECT_EQ(second[0u]->servicePort, 80u);
}

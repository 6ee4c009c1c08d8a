// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataStatusOutput.h>
#include <KivPlr/core/SmartPtr.h>
#include <VpSts/CStatus.h>
#include "MetadataTesting.h"

#include <gtest/gtest.h>

#include <string>

using namespace KivConfig;
using KivPlr::SmartPtr;
using KivTest::AddOutput;

namespace {

std::string FragmentOf(const VpSts::CStatus& status)
{
    return KivTest::RefreshedXml(new MetadataStatusOutput(status));
}

} // namespace

TEST(MetadataStatusOutputTest, EmptyOutputListGivesAnEmptyOutputsElement)
{
    VpSts::CStatus status;
    EXPECT_EQ(FragmentOf(status), "<Outputs></Outputs>");
}

TEST(MetadataStatusOutputTest, PublishedOutputCarriesItsTranslationTableSize)
{
    VpSts::CStatus status;
    AddOutput(status, 1, 0, 2, 4);
    EXPECT_EQ(FragmentOf(status),
              R"(<Outputs><Output number=\"1\" i:type=\"Cablor6Type\">)"
              R"(<TranslationTable><Rows>2</Rows><Columns>4</Columns></TranslationTable>)"
              R"(</Output></Outputs>)");
}

TEST(MetadataStatusOutputTest, OutputsOfOtherKindsLeaveNoTraceAndNumbersKeepTheirGaps)
{
    VpSts::CStatus status;
    AddOutput(status, 1, 0, 1, 1);
    AddOutput(status, 2, 1, 9, 9);
    AddOutput(status, 3, 7, 9, 9);
    AddOutput(status, 4, 0, 3, 5);
    EXPECT_EQ(FragmentOf(status),
              R"(<Outputs>)"
              R"(<Output number=\"1\" i:type=\"Cablor6Type\"><TranslationTable>)"
              R"(<Rows>1</Rows><Columns>1</Columns></TranslationTable></Output>)"
              R"(<Output number=\"4\" i:type=\"Cablor6Type\"><TranslationTable>)"
              R"(<Rows>3</Rows><Columns>5</Columns></TranslationTable></Output>)"
              R"(</Outputs>)");
}

TEST(MetadataStatusOutputTest, OnlyUnpublishedOutputsGiveAnEmptyOutputsElement)
{
    VpSts::CStatus status;
    AddOutput(status, 1, 1, 1, 1);
    EXPECT_EQ(FragmentOf(status), "<Outputs></Outputs>");
}

TEST(MetadataStatusOutputTest, NumbersAreWrittenUnsignedWithoutPadding)
{
    VpSts::CStatus status;
    AddOutput(status, 0, 0, 4294967295u, 0);
    EXPECT_EQ(FragmentOf(status),
              R"(<Outputs><Output number=\"0\" i:type=\"Cablor6Type\">)"
              R"(<TranslationTable><Rows>4294967295</Rows><Columns>0</Columns></TranslationTable>)"
              R"(</Output></Outputs>)");
}

TEST(MetadataStatusOutputTest, IdenticalListsInTwoCyclesLeaveTheFlagUnsetInTheSecond)
{
    VpSts::CStatus status;
    AddOutput(status, 1, 0, 2, 2);
    SmartPtr<IMetadata> provider(new MetadataStatusOutput(status));
    provider->Refresh();
    EXPECT_TRUE(provider->IsChanged());
    provider->ClearChanged();
    provider->Refresh();
    EXPECT_FALSE(provider->IsChanged());
}

TEST(MetadataStatusOutputTest, UnpublishedOutputAddedLaterIsNoChange)
{
    VpSts::CStatus status;
    AddOutput(status, 1, 0, 2, 2);
    SmartPtr<IMetadata> provider(new MetadataStatusOutput(status));
    provider->Refresh();
    provider->ClearChanged();
    AddOutput(status, 2, 3, 2, 2);
    provider->Refresh();
    EXPECT_FALSE(provider->IsChanged());
}

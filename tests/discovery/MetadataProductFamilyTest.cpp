// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataProductFamily.h>
#include <KivPlr/core/SmartPtr.h>
#include <VpSts/CStatus.h>
#include "MetadataTesting.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

using namespace KivConfig;
using KivPlr::SmartPtr;

namespace {

std::string FragmentFor(std::uint32_t modelCode)
{
    VpSts::CStatus status;
    status.modelCode = modelCode;
    return KivTest::RefreshedXml(new MetadataProductFamily(status));
}

} // namespace

TEST(MetadataProductFamilyTest, CodeZeroIsTheTrx7160)
{
    EXPECT_EQ(FragmentFor(0), "<ProductFamily>TRX-7160</ProductFamily>");
}

TEST(MetadataProductFamilyTest, CodeOneAndEveryCodeAboveFiveShareTheTrx7060)
{
    EXPECT_EQ(FragmentFor(1), "<ProductFamily>TRX-7060</ProductFamily>");
    EXPECT_EQ(FragmentFor(6), "<ProductFamily>TRX-7060</ProductFamily>");
    EXPECT_EQ(FragmentFor(4294967295u), "<ProductFamily>TRX-7060</ProductFamily>");
}

TEST(MetadataProductFamilyTest, CodesTwoToFiveHaveTheirOwnModels)
{
    EXPECT_EQ(FragmentFor(2), "<ProductFamily>TRX-6060</ProductFamily>");
    EXPECT_EQ(FragmentFor(3), "<ProductFamily>TRX-7250</ProductFamily>");
    EXPECT_EQ(FragmentFor(4), "<ProductFamily>TRX-7150</ProductFamily>");
    EXPECT_EQ(FragmentFor(5), "<ProductFamily>TRX-7050</ProductFamily>");
}

TEST(MetadataProductFamilyTest, CodesWithTheHighBitSetCountAsUnknownNotNegative)
{
    EXPECT_STREQ(MetadataProductFamily::ModelText(0x80000000u), "TRX-7060");
    EXPECT_STREQ(MetadataProductFamily::ModelText(0xFFFFFFFAu), "TRX-7060");
}

TEST(MetadataProductFamilyTest, CodeChangeFromThreeToFourSetsTheFlagOnce)
{
    VpSts::CStatus status;
    status.modelCode = 3;
    SmartPtr<IMetadata> provider(new MetadataProductFamily(status));
    provider->Refresh();
    provider->ClearChanged();

    status.modelCode = 4;
    provider->Refresh();
    EXPECT_TRUE(provider->IsChanged());
    provider->ClearChanged();

    provider->Refresh();
    EXPECT_FALSE(provider->IsChanged());
    std::string xml;
    provider->GetXml(xml);
    EXPECT_EQ(xml, "<ProductFamily>TRX-7150</ProductFamily>");
}

TEST(MetadataProductFamilyTest, CodesWithTheSameModelTextAreNoChange)
{
    VpSts::CStatus status;
    status.modelCode = 1;
    SmartPtr<IMetadata> provider(new MetadataProductFamily(status));
    provider->Refresh();
    provider->ClearChanged();
    status.modelCode = 77;
    provider->Refresh();
    EXPECT_FALSE(provider->IsChanged());
}

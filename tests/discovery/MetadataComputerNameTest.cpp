// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataComputerName.h>
#include <KivPlr/core/SmartPtr.h>
#include <VpCfg/CConfig.h>
#include "MetadataTesting.h"

#include <gtest/gtest.h>

#include <string>

using namespace KivConfig;
using KivPlr::SmartPtr;

TEST(MetadataComputerNameTest, NameIsWrittenBetweenComputerNameTags)
{
    VpCfg::CConfig config;
    config.computerName = "unit-1";
    EXPECT_EQ(KivTest::RefreshedXml(new MetadataComputerName(config)),
              "<ComputerName>unit-1</ComputerName>");
}

TEST(MetadataComputerNameTest, DefaultRecordGivesTrxDefault)
{
    VpCfg::CConfig config;
    EXPECT_EQ(KivTest::RefreshedXml(new MetadataComputerName(config)),
              "<ComputerName>trxDefault</ComputerName>");
}

TEST(MetadataComputerNameTest, BeforeTheFirstRefreshNothingIsCachedOrChanged)
{
    VpCfg::CConfig config;
    SmartPtr<IMetadata> provider(new MetadataComputerName(config));
    EXPECT_FALSE(provider->IsChanged());
    std::string xml = "left over";
    provider->GetXml(xml);
    EXPECT_EQ(xml, "");
}

TEST(MetadataComputerNameTest, SameValueTwiceSetsTheFlagOnceAndClearedFlagStaysClear)
{
    VpCfg::CConfig config;
    config.computerName = "unit-1";
    SmartPtr<IMetadata> provider(new MetadataComputerName(config));
    provider->Refresh();
    EXPECT_TRUE(provider->IsChanged());
    provider->Refresh();
    EXPECT_TRUE(provider->IsChanged()) << "an unchanged text must not clear a set flag";
    provider->ClearChanged();
    EXPECT_FALSE(provider->IsChanged());
    EXPECT_EQ(KivTest::RefreshedXml(provider), "<ComputerName>unit-1</ComputerName>");
    EXPECT_FALSE(provider->IsChanged());
}

TEST(MetadataComputerNameTest, ValueChangedBackAndForthSetsTheFlagEachCycle)
{
    VpCfg::CConfig config;
    SmartPtr<IMetadata> provider(new MetadataComputerName(config));
    const char* values[] = {"unit-1", "unit-2", "unit-1", "unit-2"};
    for (const char* value : values) {
        config.computerName = value;
        EXPECT_EQ(KivTest::RefreshedXml(provider),
                  std::string("<ComputerName>") + value + "</ComputerName>");
        EXPECT_TRUE(provider->IsChanged()) << value;
        provider->ClearChanged();
    }
}

TEST(MetadataComputerNameTest, TextOfSameLengthButOtherBytesIsAChange)
{
    VpCfg::CConfig config;
    config.computerName = "unit-1";
    SmartPtr<IMetadata> provider(new MetadataComputerName(config));
    provider->Refresh();
    provider->ClearChanged();
    config.computerName = "unit-9";
    provider->Refresh();
    EXPECT_TRUE(provider->IsChanged());
}

// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataTimezone.h>
#include <KivPlr/core/SmartPtr.h>
#include <VpCfg/CConfig.h>
#include "MetadataTesting.h"

#include <gtest/gtest.h>

#include <string>

using namespace KivConfig;
using KivPlr::SmartPtr;

TEST(MetadataTimezoneTest, ZoneNameIsWrittenBetweenTimeZoneTags)
{
    VpCfg::CConfig config;
    config.timeZoneName = "America/Argentina/Buenos_Aires";
    SmartPtr<IMetadata> provider(new MetadataTimezone(config));
    EXPECT_EQ(KivTest::RefreshedXml(provider), "<TimeZone>America/Argentina/Buenos_Aires</TimeZone>");
    EXPECT_TRUE(provider->IsChanged());
}

TEST(MetadataTimezoneTest, DefaultRecordGivesTheRecordsDefaultZone)
{
    VpCfg::CConfig config;
    EXPECT_EQ(KivTest::RefreshedXml(new MetadataTimezone(config)),
              std::string("<TimeZone>") + config.timeZoneName + "</TimeZone>");
    EXPECT_NE(std::string(config.timeZoneName), "");
}

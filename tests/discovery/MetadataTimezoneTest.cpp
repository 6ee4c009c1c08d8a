#include "CConfig.h"
#include "MetadataTimezone.h"
#include "SmartPtr.h"

#include <gtest/gtest.h>

#include <string>

using namespace KivConfig;
using KivPlr::SmartPtr;

TEST(MetadataTimezoneTest, ZoneNameIsWrittenBetweenTimeZoneTags)
{
    VpCfg::CConfig config;
    config.timeZoneName = "America/Argentina/Buenos_Aires";
    SmartPtr<IMetadata> provider(new MetadataTimezone(config));
    provider->Refresh();
    std::string xml;
    provider->GetXml(xml);
    EXPECT_EQ(xml, "<TimeZone>America/Argentina/Buenos_Aires</TimeZone>");
    EXPECT_TRUE(provider->IsChanged());
}

TEST(MetadataTimezoneTest, DefaultRecordGivesTheRecordsDefaultZone)
{
    VpCfg::CConfig config;
    SmartPtr<IMetadata> provider(new MetadataTimezone(config));
    provider->Refresh();
    std::string xml;
    provider->GetXml(xml);
    EXPECT_EQ(xml, std::string("<TimeZone>") + config.timeZoneName + "</TimeZone>");
    EXPECT_NE(std::string(config.timeZoneName), "");
}

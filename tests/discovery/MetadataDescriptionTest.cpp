// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataDescription.h>
#include <KivPlr/core/SmartPtr.h>
#include <VpCfg/CConfig.h>
#include "MetadataTesting.h"

#include <gtest/gtest.h>

#include <string>

using namespace KivConfig;
using KivPlr::SmartPtr;

namespace {

std::string RefreshedXml(const char* description)
{
    VpCfg::CConfig config;
    config.descriptionText = description;
    return KivTest::RefreshedXml(new MetadataDescription(config));
}

} // namespace

TEST(MetadataDescriptionTest, MarkupCharactersAreWrittenUnescaped)
{
    EXPECT_EQ(RefreshedXml("a<b"), "<Description>a<b</Description>");
    EXPECT_EQ(RefreshedXml("R&D \"wall\" 'left' >"),
              "<Description>R&D \"wall\" 'left' ></Description>");
}

TEST(MetadataDescriptionTest, SpacesAndLineBreaksAreKeptAsTheyAre)
{
    EXPECT_EQ(RefreshedXml("  wall\r\n left  "), "<Description>  wall\r\n left  </Description>");
}

TEST(MetadataDescriptionTest, EmptyValueGivesBothTagsAndReportsAChangeOnFirstRefresh)
{
    VpCfg::CConfig config;
    config.descriptionText = "";
    SmartPtr<IMetadata> provider(new MetadataDescription(config));
    EXPECT_EQ(KivTest::RefreshedXml(provider), "<Description></Description>");
    EXPECT_TRUE(provider->IsChanged());
}

TEST(MetadataDescriptionTest, MissingValueEndsTheFragmentAfterTheOpeningTag)
{
    // The record never holds a null text; should one appear, the fragment
    // stops where the value would be, like the status texts do.
    EXPECT_EQ(RefreshedXml(nullptr), "<Description>");
}

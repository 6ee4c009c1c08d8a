// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataComputerName.h>
#include <KivConfig/MetadataDescription.h>
#include <KivConfig/MetadataGroup.h>
#include <KivConfig/MetadataTimezone.h>
#include <KivTest/ChildProcess.h>
#include <VpCfg/CConfig.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace KivConfig;
using KivPlr::SmartPtr;

namespace {

// A provider with a fixed text and flag that writes every call it gets into a
// shared journal, so that the tests can see which providers were asked.
class RecordingProvider : public MetadataBase
{
public:
    RecordingProvider(const std::string& name, const std::string& text, bool reportsChange,
                      std::vector<std::string>& journal)
        : name(name), text(text), reportsChange(reportsChange), journal(journal)
    {
    }
    void Refresh() override
    {
        journal.push_back("Refresh " + name);
        AcceptFragment(text);
    }
    bool IsChanged() const override
    {
        journal.push_back("IsChanged " + name);
        return reportsChange;
    }
    void ClearChanged() override
    {
        journal.push_back("ClearChanged " + name);
        reportsChange = false;
    }

private:
    std::string name;
    std::string text;
    bool reportsChange;
    std::vector<std::string>& journal;
};

} // namespace

TEST(MetadataGroupTest, EmptyGroupGivesOpeningAndClosingTagOnly)
{
    SmartPtr<MetadataGroup> group(new MetadataGroup("cpp:State"));
    group->Refresh();
    std::string xml = "left over";
    group->GetXml(xml);
    EXPECT_EQ(xml, "<cpp:State></cpp:State>");
}

TEST(MetadataGroupTest, EmptyGroupIsNotChanged)
{
    SmartPtr<MetadataGroup> group(new MetadataGroup("cpp:Config"));
    group->Refresh();
    EXPECT_FALSE(group->IsChanged());
}

TEST(MetadataGroupTest, GetXmlWrapsProviderTextsInAddOrder)
{
    std::vector<std::string> journal;
    SmartPtr<MetadataGroup> group(new MetadataGroup("g"));
    group->Add(new RecordingProvider("first", "<A>1</A>", false, journal));
    group->Add(new RecordingProvider("second", "<B>2</B>", false, journal));
    group->Refresh();
    std::string xml;
    group->GetXml(xml);
    EXPECT_EQ(xml, "<g><A>1</A><B>2</B></g>");
}

TEST(MetadataGroupTest, RefreshAndClearChangedVisitEveryProviderInAddOrder)
{
    std::vector<std::string> journal;
    SmartPtr<MetadataGroup> group(new MetadataGroup("g"));
    group->Add(new RecordingProvider("first", "a", true, journal));
    group->Add(new RecordingProvider("second", "b", true, journal));
    group->Add(new RecordingProvider("third", "c", true, journal));
    group->Refresh();
    group->ClearChanged();
    EXPECT_EQ(journal, (std::vector<std::string>{"Refresh first", "Refresh second",
                                                 "Refresh third", "ClearChanged first",
                                                 "ClearChanged second", "ClearChanged third"}));
}

TEST(MetadataGroupTest, IsChangedStopsAskingAtFirstChangedProvider)
{
    std::vector<std::string> journal;
    SmartPtr<MetadataGroup> group(new MetadataGroup("g"));
    group->Add(new RecordingProvider("first", "a", false, journal));
    group->Add(new RecordingProvider("second", "b", true, journal));
    group->Add(new RecordingProvider("third", "c", true, journal));
    EXPECT_TRUE(group->IsChanged());
    EXPECT_EQ(journal, (std::vector<std::string>{"IsChanged first", "IsChanged second"}));
}

TEST(MetadataGroupTest, IsChangedAsksEveryProviderWhenNoneChanged)
{
    std::vector<std::string> journal;
    SmartPtr<MetadataGroup> group(new MetadataGroup("g"));
    group->Add(new RecordingProvider("first", "a", false, journal));
    group->Add(new RecordingProvider("second", "b", false, journal));
    EXPECT_FALSE(group->IsChanged());
    EXPECT_EQ(journal, (std::vector<std::string>{"IsChanged first", "IsChanged second"}));
}

TEST(MetadataGroupTest, AddSharesOwnershipOfTheProvider)
{
    std::vector<std::string> journal;
    SmartPtr<IMetadata> provider(new RecordingProvider("only", "x", false, journal));
    {
        SmartPtr<MetadataGroup> group(new MetadataGroup("g"));
        group->Add(provider);
        EXPECT_EQ(provider->GetReferenceCount(), 2u);
    }
    EXPECT_EQ(provider->GetReferenceCount(), 1u);
}

TEST(MetadataGroupTest, ConfigGroupWithThreeIdentityProvidersGivesTheirFragmentsInOrder)
{
    VpCfg::CConfig config;
    config.descriptionText = "D";
    config.timeZoneName = "T";
    config.computerName = "C";
    SmartPtr<MetadataGroup> group(new MetadataGroup("cpp:Config"));
    group->Add(new MetadataDescription(config));
    group->Add(new MetadataTimezone(config));
    group->Add(new MetadataComputerName(config));
    group->Refresh();
    std::string xml;
    group->GetXml(xml);
    EXPECT_EQ(xml, "<cpp:Config><Description>D</Description><TimeZone>T</TimeZone>"
                   "<ComputerName>C</ComputerName></cpp:Config>");
    EXPECT_TRUE(group->IsChanged());
}

TEST(MetadataGroupTest, EmptyProviderPointerIsFatalOnceUsed)
{
    SmartPtr<MetadataGroup> group(new MetadataGroup("g"));
    group->Add(SmartPtr<IMetadata>());
    EXPECT_FATAL_SILENT(group->Refresh());
}

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/accounts/UserGroupList.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>
#include <KivTest/RecordingShellTools.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace KivPlr;
using KivTest::RecordingShellTools;

namespace {

std::vector<std::string> Split(const std::string& output, UserGroupList::OwnGroup ownGroup)
{
    std::vector<std::string> groups;
    UserGroupList::Split(output, "alice", ownGroup, groups);
    return groups;
}

typedef std::vector<std::string> Names;

} // namespace

TEST(UserGroupListTest, SplitsAtSpacesAndLineFeeds)
{
    EXPECT_EQ(Split("alice video\naudio\n", UserGroupList::KeepOwnGroup), (Names{"alice", "video", "audio"}));
}

TEST(UserGroupListTest, LeavesOutTheOwnNameGroupOnRequest)
{
    EXPECT_EQ(Split("video alice audio\n", UserGroupList::LeaveOutOwnGroup), (Names{"video", "audio"}));
}

TEST(UserGroupListTest, OwnGroupMatchesWholeWordsOnly)
{
    EXPECT_EQ(Split("alice2 malice\n", UserGroupList::LeaveOutOwnGroup), (Names{"alice2", "malice"}));
}

TEST(UserGroupListTest, TwoSeparatorsInARowEndTheSplitting)
{
    EXPECT_EQ(Split("alice video  audio\n", UserGroupList::KeepOwnGroup), (Names{"alice", "video"}));
    EXPECT_EQ(Split("alice\n\nvideo\n", UserGroupList::KeepOwnGroup), (Names{"alice"}));
}

TEST(UserGroupListTest, SeparatorAtTheStartEndsTheSplitting)
{
    EXPECT_EQ(Split(" alice video\n", UserGroupList::KeepOwnGroup), Names{});
    EXPECT_EQ(Split("\nalice\n", UserGroupList::KeepOwnGroup), Names{});
}

TEST(UserGroupListTest, LastWordWithoutSeparatorCounts)
{
    EXPECT_EQ(Split("alice video", UserGroupList::KeepOwnGroup), (Names{"alice", "video"}));
}

TEST(UserGroupListTest, EmptyOutputGivesNothing)
{
    EXPECT_EQ(Split("", UserGroupList::KeepOwnGroup), Names{});
}

TEST(UserGroupListTest, AppendsWithoutClearing)
{
    std::vector<std::string> groups{"earlier"};
    UserGroupList::Split("alice video\n", "alice", UserGroupList::LeaveOutOwnGroup, groups);
    EXPECT_EQ(groups, (Names{"earlier", "video"}));
}

TEST(UserGroupListTest, ReadRunsIdWithTheNameGroupsOption)
{
    RecordingShellTools tools;
    tools.Install("id", 0, "alice video audio\n");
    std::vector<std::string> groups;
    UserGroupList::Read("alice", UserGroupList::KeepOwnGroup, groups);
    EXPECT_EQ(tools.Calls(), Names{"id -nG alice"});
    EXPECT_EQ(groups, (Names{"alice", "video", "audio"}));
}

TEST(UserGroupListTest, ReadOfANullNameRunsNothing)
{
    RecordingShellTools tools;
    tools.Install("id", 0, "root\n");
    std::vector<std::string> groups;
    UserGroupList::Read(nullptr, UserGroupList::KeepOwnGroup, groups);
    EXPECT_TRUE(tools.Calls().empty());
    EXPECT_TRUE(groups.empty());
}

namespace {

typedef std::vector<std::string> Groups;

// Functions the sanitizer leaves alone (see NullReference.h): g++ checks a
// null vector reference where these calls bind it, before the code under
// test can.
__attribute__((no_sanitize("undefined"))) void ReadIntoANullVector()
{
    UserGroupList::Read("alice", UserGroupList::KeepOwnGroup, KivTest::NullReference<Groups>());
}

__attribute__((no_sanitize("undefined"))) void SplitIntoANullVector()
{
    UserGroupList::Split("alice video\n", "alice", UserGroupList::KeepOwnGroup, KivTest::NullReference<Groups>());
}

} // namespace

TEST(UserGroupListTest, ANullGroupsReferenceIsFatalAndRunsNothing)
{
    RecordingShellTools tools;
    tools.Install("id", 0, "alice video\n");
    EXPECT_FATAL_MESSAGE(ReadIntoANullVector(), L"UserGroupList: groups NULL reference.");
    EXPECT_FATAL_MESSAGE(SplitIntoANullVector(), L"UserGroupList: groups NULL reference.");
    EXPECT_TRUE(tools.Calls().empty());
}

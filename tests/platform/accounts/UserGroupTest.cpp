// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/accounts/User.h>
#include <KivPlr/accounts/UserGroup.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivTest/ChildProcess.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/InnerTest.h>
#include <KivTest/MountNamespace.h>
#include <KivTest/NullReference.h>
#include <KivTest/RecordingShellTools.h>
#include <KivTest/TemporaryDirectory.h>
#include <KivTest/ThrowawayAccounts.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <ostream>
#include <string>
#include <vector>

using namespace KivPlr;
using namespace KivTest;

namespace {

typedef std::vector<std::string> Names;

KIV_NULL_REFERENCE(NullResultReference, _Result)
KIV_NULL_REFERENCE(NullMembersReference, std::vector<std::string>)

class UserGroupTest : public ::testing::Test
{
protected:
    RecordingShellTools tools;
    SmartPtr<IUserGroup> group{new UserGroup};
};

// A UserGroup that reads its group file from where the test says.
class GroupFileUserGroup : public UserGroup
{
public:
    explicit GroupFileUserGroup(const std::string& file) : file(file) {}

protected:
    const char* GroupFile() override { return file.c_str(); }

private:
    std::string file;
};

// GetMembers over a group file with the given content.
class UserGroupMembersTest : public ::testing::Test
{
protected:
    _Result GetMembers(const std::string& content, const char* groupName, Names& members)
    {
        std::string file = directory.Path() + "/group";
        EXPECT_TRUE(WriteFile(file, content));
        SmartPtr<IUserGroup> group(new GroupFileUserGroup(file));
        _Result result = ResultNotSupported;
        group->GetMembers(groupName, members, result);
        return result;
    }

    TemporaryDirectory directory;
};

} // namespace

// --- Command lines, with recording stand-ins for the tools -----------------

TEST_F(UserGroupTest, NewUserGroupHasCountZero)
{
    IUserGroup* fresh = new UserGroup;
    EXPECT_EQ(fresh->GetReferenceCount(), 0u);
    SmartPtr<IUserGroup> owner(fresh);
    EXPECT_EQ(fresh->GetReferenceCount(), 1u);
}

namespace {

// Add, Delete and AddUser each run one tool and pass on whether it succeeded.
struct ToolCase
{
    const char* behaviour; ///< the test's name
    const char* tool;
    int exitStatus;
    void (*operation)(IUserGroup& group, _Result& result);
    _Result expected;
    const char* command; ///< the one command line the tool sees, either way
};

std::ostream& operator<<(std::ostream& stream, const ToolCase& entry)
{
    return stream << entry.behaviour;
}

class UserGroupToolTest : public UserGroupTest, public ::testing::WithParamInterface<ToolCase>
{
};

void AddUserToVideo(IUserGroup& group, _Result& result)
{
    group.AddUser("alice", "video", result);
}

void AddVideo(IUserGroup& group, _Result& result)
{
    group.Add("video", result);
}

void DeleteVideo(IUserGroup& group, _Result& result)
{
    group.Delete("video", result);
}

} // namespace

TEST_P(UserGroupToolTest, RunsOneToolAndReportsItsOutcome)
{
    const ToolCase& entry = GetParam();
    tools.Install(entry.tool, entry.exitStatus);
    _Result result = entry.expected == ResultPass ? ResultFail : ResultPass;
    entry.operation(*group, result);
    EXPECT_EQ(result, entry.expected);
    EXPECT_EQ(tools.Calls(), Names{entry.command});
}

INSTANTIATE_TEST_SUITE_P(
    Tools, UserGroupToolTest,
    ::testing::Values(
        ToolCase{"AddUserRunsUsermodAppendingTheGroup", "usermod", 0, AddUserToVideo, ResultPass,
                 "usermod -aG video alice"},
        ToolCase{"AddUserGivesFailWhenUsermodFails", "usermod", 6, AddUserToVideo, ResultFail,
                 "usermod -aG video alice"},
        ToolCase{"AddRunsGroupadd", "groupadd", 0, AddVideo, ResultPass, "groupadd video"},
        ToolCase{"AddGivesFailWhenGroupaddFails", "groupadd", 9, AddVideo, ResultFail, "groupadd video"},
        ToolCase{"DeleteRunsGroupdel", "groupdel", 0, DeleteVideo, ResultPass, "groupdel video"},
        ToolCase{"DeleteGivesFailWhenGroupdelFails", "groupdel", 8, DeleteVideo, ResultFail, "groupdel video"}),
    [](const ::testing::TestParamInfo<ToolCase>& entry) { return std::string(entry.param.behaviour); });

TEST_F(UserGroupTest, RemoveUserSetsTheRemainingGroupsSeparatedBySpaces)
{
    // User U in U, V and A, in that order: removing V keeps A.
    tools.Install("id", 0, "U V A\n");
    tools.Install("usermod", 0);
    _Result result = ResultFail;
    group->RemoveUser("U", "V", result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(tools.Calls(), (Names{"id -nG U", "usermod -G A U"}));
}

TEST_F(UserGroupTest, RemoveUserListsEveryOtherGroupInOrder)
{
    tools.Install("id", 0, "alice video audio disk\n");
    tools.Install("usermod", 0);
    _Result result = ResultFail;
    group->RemoveUser("alice", "audio", result);
    EXPECT_EQ(tools.Calls(), (Names{"id -nG alice", "usermod -G video disk alice"}));
}

TEST_F(UserGroupTest, RemoveUserWithExactlyTwoGroupsUsesThePrimaryGroupOption)
{
    tools.Install("id", 0, "video audio\n");
    tools.Install("usermod", 0);
    _Result result = ResultFail;
    group->RemoveUser("alice", "video", result);
    EXPECT_EQ(tools.Calls(), (Names{"id -nG alice", "usermod -g audio alice"}));
}

TEST_F(UserGroupTest, RemoveUserFromItsOwnGroupOfTwoLeavesNoGroupName)
{
    tools.Install("id", 0, "alice video\n");
    tools.Install("usermod", 0);
    _Result result = ResultFail;
    group->RemoveUser("alice", "video", result);
    EXPECT_EQ(tools.Calls(), (Names{"id -nG alice", "usermod -g alice"}));
}

TEST_F(UserGroupTest, RemoveUserOfAUserInNoGroupsGivesFailWithoutACommand)
{
    tools.Install("id", 1, "");
    tools.Install("usermod", 0);
    _Result result = ResultPass;
    group->RemoveUser("alice", "video", result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(tools.Calls(), Names{"id -nG alice"});
}

TEST_F(UserGroupTest, RemoveUserGivesFailWhenUsermodFails)
{
    tools.Install("id", 0, "alice video audio\n");
    tools.Install("usermod", 3);
    _Result result = ResultPass;
    group->RemoveUser("alice", "video", result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(tools.Calls().size(), 2u);
}

TEST_F(UserGroupTest, NullArgumentsGiveFailAndRunNothing)
{
    tools.Install("usermod", 0);
    tools.Install("groupadd", 0);
    tools.Install("groupdel", 0);
    tools.Install("id", 0, "alice video\n");
    Names members{"kept"};
    _Result result = ResultPass;
    group->AddUser(nullptr, "video", result);
    EXPECT_EQ(result, ResultFail);
    result = ResultPass;
    group->AddUser("alice", nullptr, result);
    EXPECT_EQ(result, ResultFail);
    result = ResultPass;
    group->Add(nullptr, result);
    EXPECT_EQ(result, ResultFail);
    result = ResultPass;
    group->Delete(nullptr, result);
    EXPECT_EQ(result, ResultFail);
    result = ResultPass;
    group->RemoveUser(nullptr, "video", result);
    EXPECT_EQ(result, ResultFail);
    result = ResultPass;
    group->RemoveUser("alice", nullptr, result);
    EXPECT_EQ(result, ResultFail);
    result = ResultPass;
    group->GetMembers(nullptr, members, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(members, Names{"kept"});
    EXPECT_TRUE(tools.Calls().empty());
}

TEST_F(UserGroupTest, EveryOperationWithANullResultReferenceIsFatalAndRunsNothing)
{
    for (const char* tool : {"usermod", "groupadd", "groupdel", "id"})
        tools.Install(tool, 0, "alice video audio\n");
    std::vector<std::string> members;
    const wchar_t* const message = L"UserGroup: result NULL reference.";
    EXPECT_FATAL_MESSAGE(group->AddUser("alice", "video", NullResultReference()), message);
    EXPECT_FATAL_MESSAGE(group->Add("video", NullResultReference()), message);
    EXPECT_FATAL_MESSAGE(group->Delete("video", NullResultReference()), message);
    EXPECT_FATAL_MESSAGE(group->GetMembers("video", members, NullResultReference()), message);
    EXPECT_FATAL_MESSAGE(group->RemoveUser("alice", "video", NullResultReference()), message);
    EXPECT_TRUE(tools.Calls().empty());
}

TEST_F(UserGroupTest, NullMembersReferenceEndsTheProcessSilently)
{
    _Result result = ResultFail;
    EXPECT_FATAL_SILENT(group->GetMembers("video", NullMembersReference(), result));
}

// --- GetMembers over a group file ---------------------------------------------

TEST_F(UserGroupMembersTest, ReadsOnPastTheMatchingEntryToTheEndOfTheFile)
{
    Names members;
    EXPECT_EQ(GetMembers("root:x:0:\nV:x:100:u1,u2\nW:x:101:w1\n", "V", members), ResultPass);
    EXPECT_EQ(members, (Names{"u1", "u2", "W:x:101:w1"}));
}

TEST_F(UserGroupMembersTest, LaterLinesAreSplitAtCommas)
{
    Names members;
    GetMembers("V:x:100:u1\nW:x:101:w1,w2\nX:x:102:\n", "V", members);
    EXPECT_EQ(members, (Names{"u1", "W:x:101:w1", "w2", "X:x:102:"}));
}

TEST_F(UserGroupMembersTest, EmptyMemberListGivesOneEmptyNameFirst)
{
    Names members;
    EXPECT_EQ(GetMembers("V:x:100:\nW:x:101:w1\n", "V", members), ResultPass);
    EXPECT_EQ(members, (Names{"", "W:x:101:w1"}));
}

TEST_F(UserGroupMembersTest, LastEntryGivesOnlyItsMembers)
{
    Names members;
    EXPECT_EQ(GetMembers("root:x:0:\nV:x:100:u1,u2\n", "V", members), ResultPass);
    EXPECT_EQ(members, (Names{"u1", "u2"}));
}

TEST_F(UserGroupMembersTest, UnknownGroupGivesFailAndNoNames)
{
    Names members;
    EXPECT_EQ(GetMembers("root:x:0:\nV:x:100:u1,u2\n", "video", members), ResultFail);
    EXPECT_TRUE(members.empty());
}

TEST_F(UserGroupMembersTest, GroupNameMatchesWholePiecesOnly)
{
    Names members;
    EXPECT_EQ(GetMembers("VV:x:100:u1\nV2:x:101:u2\n", "V", members), ResultFail);
    EXPECT_TRUE(members.empty());
}

TEST_F(UserGroupMembersTest, AMemberListEqualToTheNameCountsAsAMatch)
{
    // Pieces are not tied to their field: the member list "V" of group A
    // matches, the next entry's name and password are skipped as if they
    // were the password and group id, and its id and members follow.
    Names members;
    EXPECT_EQ(GetMembers("A:x:1:V\nB:x:2:b1\n", "V", members), ResultPass);
    EXPECT_EQ(members, (Names{"2:b1"}));
}

TEST_F(UserGroupMembersTest, LastNameOfAFileWithoutFinalLineFeedIsLost)
{
    // The reader reports the end of the data with the last piece, and only
    // pieces that ended at a delimiter or line feed are appended.
    Names members;
    GetMembers("V:x:100:u1,u2", "V", members);
    EXPECT_EQ(members, Names{"u1"});
}

TEST_F(UserGroupMembersTest, AppendsToWhatTheVectorHeld)
{
    Names members{"earlier"};
    EXPECT_EQ(GetMembers("V:x:100:u1\n", "V", members), ResultPass);
    EXPECT_EQ(members, (Names{"earlier", "u1"}));
}

TEST_F(UserGroupMembersTest, UnreadableFileGivesFail)
{
    SmartPtr<IUserGroup> group(new GroupFileUserGroup(directory.Path() + "/missing"));
    Names members;
    _Result result = ResultPass;
    group->GetMembers("V", members, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_TRUE(members.empty());
}

TEST_F(UserGroupMembersTest, UnreadableFileWithANonEmptyVectorGivesPass)
{
    SmartPtr<IUserGroup> group(new GroupFileUserGroup(directory.Path() + "/missing"));
    Names members{"earlier"};
    _Result result = ResultFail;
    group->GetMembers("V", members, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(members, Names{"earlier"});
}

// --- The real tools and /etc/group, on throwaway copies of the account files --

namespace {

class UserGroupSystemToolsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::string reason;
        if (!MountNamespace::Available(reason))
            GTEST_SKIP() << reason;
    }

    void ExpectInnerPasses(const std::string& name)
    {
        EXPECT_INNER_TEST_PASSED(
            RunWithThrowawayAccounts("UserGroupAccountsInner." + name, {{"PATH", SystemSearchPath}}));
    }
};

// Adds the user name with a throwaway password and expects it to work.
void AddUser(const char* userName)
{
    SmartPtr<IUser> user(new User);
    _Result result = ResultFail;
    user->Add(userName, "Secret12", result);
    ASSERT_EQ(result, ResultPass);
}

Names GroupsOf(const char* userName)
{
    SmartPtr<IUser> user(new User);
    Names groups;
    _Result result = ResultFail;
    user->GetGroups(userName, groups, result);
    return groups;
}

} // namespace

TEST(UserGroupAccountsInner, AddAndDelete)
{
    KIV_SKIP_UNLESS_INNER_TEST();
    SmartPtr<IUserGroup> group(new UserGroup);
    _Result result = ResultFail;
    group->Add("kivvideo", result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_NE(("\n" + ReadFile("/etc/group")).find("\nkivvideo:"), std::string::npos);
    EXPECT_NE(("\n" + ReadFile("/etc/gshadow")).find("\nkivvideo:"), std::string::npos);
    group->Add("kivvideo", result);
    EXPECT_EQ(result, ResultFail) << "groupadd refuses an existing group";
    group->Delete("kivvideo", result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(("\n" + ReadFile("/etc/group")).find("\nkivvideo:"), std::string::npos);
    group->Delete("kivvideo", result);
    EXPECT_EQ(result, ResultFail) << "groupdel refuses a missing group";
}

TEST_F(UserGroupSystemToolsTest, AddAndDeleteChangeOnlyTheThrowawayFiles)
{
    ExpectInnerPasses("AddAndDelete");
}

TEST(UserGroupAccountsInner, Membership)
{
    KIV_SKIP_UNLESS_INNER_TEST();
    AddUser("kivtest5");
    SmartPtr<IUserGroup> group(new UserGroup);
    _Result result = ResultFail;
    group->Add("kivaudio", result);
    ASSERT_EQ(result, ResultPass);
    group->Add("kivvideo", result);
    ASSERT_EQ(result, ResultPass);
    group->AddUser("kivtest5", "kivaudio", result);
    EXPECT_EQ(result, ResultPass);
    group->AddUser("kivtest5", "kivvideo", result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(GroupsOf("kivtest5"), (Names{"kivaudio", "kivvideo"}));

    // kivvideo is the file's last entry, so only its member follows.
    Names members;
    group->GetMembers("kivvideo", members, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(members, Names{"kivtest5"});
    // kivaudio's member, then the whole kivvideo line after it.
    std::string groupFile = ReadFile("/etc/group");
    std::string::size_type videoLine = groupFile.find("\nkivvideo:") + 1;
    std::string video = groupFile.substr(videoLine, groupFile.find('\n', videoLine) - videoLine);
    members.clear();
    group->GetMembers("kivaudio", members, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(members, (Names{"kivtest5", video}));

    // Three groups (own, kivaudio, kivvideo): "usermod -G kivaudio kivtest5".
    group->RemoveUser("kivtest5", "kivvideo", result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(GroupsOf("kivtest5"), Names{"kivaudio"});

    // Two groups (own, kivaudio): "usermod -g kivtest5", which names no user,
    // so usermod refuses it and nothing changes.
    group->RemoveUser("kivtest5", "kivaudio", result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(GroupsOf("kivtest5"), Names{"kivaudio"});

    group->RemoveUser("kivnobody", "kivaudio", result);
    EXPECT_EQ(result, ResultFail);
}

TEST_F(UserGroupSystemToolsTest, MembershipWorksWithTheRealTools)
{
    ExpectInnerPasses("Membership");
}

TEST(UserGroupAccountsInner, GetMembersReadsEtcGroup)
{
    KIV_SKIP_UNLESS_INNER_TEST();
    ASSERT_TRUE(WriteFile("/etc/group", "root:x:0:\nV:x:100:u1,u2\nW:x:101:\n"));
    SmartPtr<IUserGroup> group(new UserGroup);
    Names members;
    _Result result = ResultFail;
    group->GetMembers("V", members, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(members, (Names{"u1", "u2", "W:x:101:"}));
}

TEST_F(UserGroupSystemToolsTest, GetMembersReadsTheSystemGroupFile)
{
    ExpectInnerPasses("GetMembersReadsEtcGroup");
}

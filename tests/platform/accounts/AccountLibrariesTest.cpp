// SPDX-License-Identifier: Apache-2.0
// libpam and libcrypt are loaded by User on first use, not linked: a program
// that checks no password and adds no user maps neither, nor what they pull
// in; one that cannot load them gets 500 from the operations that need them.
// Each check runs in a fresh process (an inner test), since any earlier test
// of this executable may have loaded the libraries already.
#include <KivPlr/accounts/IUserGroup.h>
#include <KivPlr/accounts/User.h>
#include <KivPlr/core/LinuxPlatform.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/ILock.h>
#include <KivPlr/time/IClock.h>
#include <KivTest/ChildProcess.h>
#include <KivTest/Emulation.h>
#include <KivTest/InnerTest.h>
#include <KivTest/RecordingShellTools.h>
#include <KivTest/TemporaryDirectory.h>

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>
#include <vector>

using namespace KivPlr;
using namespace KivTest;

namespace {

// The account libraries (and those they bring in) that this process has
// mapped, from /proc/self/maps: "libpam", "libcrypt", ... (the files' names
// go on with their versions, libcrypt.so.1.1.0).
std::set<std::string> MappedAccountLibraries()
{
    std::set<std::string> found;
    std::ifstream maps("/proc/self/maps");
    std::string line;
    while (std::getline(maps, line)) {
        std::string::size_type slash = line.rfind('/');
        if (slash == std::string::npos)
            continue;
        std::string name = line.substr(slash + 1);
        for (const char* library : {"libpam", "libpam_misc", "libcrypt", "libaudit", "libcap-ng"})
            if (name.rfind(std::string(library) + ".so", 0) == 0)
                found.insert(library);
    }
    return found;
}

bool WriteEmptyFile(const std::string& path)
{
    std::ofstream file(path);
    return static_cast<bool>(file);
}

// Adds "alice" through a new User, with a stand-in useradd that records its
// calls in \p tools.
_Result AddWithStandIn(RecordingShellTools& tools)
{
    tools.Install("useradd", 0);
    SmartPtr<IUser> user(new User);
    _Result result = ResultPass;
    user->Add("alice", "Secret12", result);
    return result;
}

// The outer tests: each runs its inner test in a fresh process.
class AccountLibrariesTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (RunningUnderEmulation())
            GTEST_SKIP() << "under qemu-arm, /proc/self/maps and the library search belong to the emulator";
    }
};

} // namespace

TEST(AccountLibrariesInner, NoneMappedWithoutAPasswordOrNewUser)
{
    KIV_SKIP_UNLESS_INNER_TEST();
    EXPECT_EQ(MappedAccountLibraries(), std::set<std::string>()) << "at start";
    SmartPtr<IPlatform> platform(new LinuxPlatform);
    SmartPtr<IUser> user(platform->CreateUser());
    SmartPtr<IUserGroup> group(platform->CreateUserGroup());
    SmartPtr<ILock> lock(platform->CreateLock());
    SmartPtr<IClock> clock(platform->CreateClock());
    std::vector<std::string> members;
    _Result result = ResultFail;
    group->GetMembers("root", members, result);
    EXPECT_EQ(MappedAccountLibraries(), std::set<std::string>()) << "after making the platform's objects";
}

TEST_F(AccountLibrariesTest, AProgramThatChecksNoPasswordAndAddsNoUserMapsNoAccountLibrary)
{
    EXPECT_INNER_TEST_PASSED(RunInnerTest("AccountLibrariesInner.NoneMappedWithoutAPasswordOrNewUser", {}));
}

TEST(AccountLibrariesInner, HashMapsLibcrypt)
{
    KIV_SKIP_UNLESS_INNER_TEST();
    RecordingShellTools tools;
    EXPECT_EQ(AddWithStandIn(tools), ResultPass);
    EXPECT_EQ(MappedAccountLibraries().count("libcrypt"), 1u);
}

TEST_F(AccountLibrariesTest, AddingAUserLoadsLibcrypt)
{
    EXPECT_INNER_TEST_PASSED(RunInnerTest("AccountLibrariesInner.HashMapsLibcrypt", {}));
}

TEST(AccountLibrariesInner, UnloadableLibrariesGiveFail)
{
    KIV_SKIP_UNLESS_INNER_TEST();
    SmartPtr<IUser> user(new User);
    _Result result = ResultPass;
    user->Authenticate("alice", "secret", result);
    EXPECT_EQ(result, ResultFail) << "Authenticate";
    result = ResultPass;
    user->SetPassword("alice", "secret", result);
    EXPECT_EQ(result, ResultFail) << "SetPassword";
    RecordingShellTools tools;
    EXPECT_EQ(AddWithStandIn(tools), ResultFail) << "Add";
    EXPECT_EQ(tools.Calls(), std::vector<std::string>()) << "useradd ran without a hash";
}

TEST_F(AccountLibrariesTest, PamOrLibcryptThatCannotBeLoadedGivesFail)
{
    // Empty files by the libraries' names come first on the search path:
    // loading them fails, as it would for a missing or broken library.
    TemporaryDirectory directory;
    ASSERT_TRUE(WriteEmptyFile(directory.Path() + "/libpam.so.0"));
    ASSERT_TRUE(WriteEmptyFile(directory.Path() + "/libcrypt.so.1"));
    EXPECT_INNER_TEST_PASSED(
        RunInnerTest("AccountLibrariesInner.UnloadableLibrariesGiveFail", {{"LD_LIBRARY_PATH", directory.Path()}}));
}

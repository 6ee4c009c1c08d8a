// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/accounts/User.h>
#include <KivPlr/core/LinuxPlatform.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivTest/ChildProcess.h>
#include <KivTest/Emulation.h>
#include <KivTest/ExclusiveFileLock.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/InnerTest.h>
#include <KivTest/MountNamespace.h>
#include <KivTest/NullReference.h>
#include <KivTest/RecordingShellTools.h>
#include <KivTest/TemporaryDirectory.h>
#include <KivTest/ThrowawayAccounts.h>
#include <KivTest/WorkingDirectoryGuard.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <mutex>
#include <ostream>
#include <set>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace KivPlr;
using namespace KivTest;

namespace {

typedef std::vector<std::string> Names;

// Neither the test executable nor the platform library links libcrypt (the
// library loads it when it first makes a hash): the test loads it too, to
// make its own call to crypt, and may do so before the library has.
std::string SystemCrypt(const char* phrase, const char* setting)
{
    typedef char* (*CryptFunction)(const char*, const char*);
    void* library = dlopen("libcrypt.so.1", RTLD_NOW);
    CryptFunction function =
        library != nullptr ? reinterpret_cast<CryptFunction>(dlsym(library, "crypt")) : nullptr;
    if (function == nullptr)
        return "<no crypt>";
    const char* hash = function(phrase, setting);
    return hash != nullptr ? hash : "<null>";
}

// A User whose hash and command-line release the test can see and steer.
class ObservedUser : public User
{
public:
    bool nullHash = false;
    std::size_t commandLineLength = 0;         ///< bytes that must be zero when released
    std::vector<bool> releasedZeroed;
    std::vector<bool> workAreasReleasedZeroed; ///< one per released hash work area

protected:
    const char* HashPassword(const char* password, struct crypt_data& work) override
    {
        const char* hash = User::HashPassword(password, work);
        return nullHash ? nullptr : hash;
    }

    void ReleaseHashWorkArea(struct crypt_data* work, std::size_t size) override
    {
        const unsigned char* bytes = reinterpret_cast<const unsigned char*>(work);
        workAreasReleasedZeroed.push_back(
            std::all_of(bytes, bytes + size, [](unsigned char byte) { return byte == 0; }));
        User::ReleaseHashWorkArea(work, size);
    }

    void ReleaseCommandLine(char* commandLine) override
    {
        bool zeroed = true;
        for (std::size_t index = 0; index < commandLineLength; ++index)
            zeroed = zeroed && commandLine[index] == '\0';
        releasedZeroed.push_back(zeroed);
        User::ReleaseCommandLine(commandLine);
    }
};

// A User that records its command lines instead of running them, from any
// number of threads at once.
class RecordingUser : public User
{
public:
    std::vector<std::string> Lines()
    {
        std::lock_guard<std::mutex> hold(mutex);
        return lines;
    }

protected:
    _Result RunCommandLine(const char* commandLine) override
    {
        std::lock_guard<std::mutex> hold(mutex);
        lines.push_back(commandLine);
        return ResultPass;
    }

private:
    std::mutex mutex;
    std::vector<std::string> lines;
};

// Runs the shell tools of each test in an empty working directory, so that a
// hash like "*0" (a glob for the shell) cannot match a file by chance.
struct EmptyWorkingDirectory
{
    TemporaryDirectory directory;
    KivTest::WorkingDirectoryGuard enter{directory.Path()};
};

KIV_NULL_REFERENCE(NullResultReference, _Result)
KIV_NULL_REFERENCE(NullGroupsReference, std::vector<std::string>)

class UserTest : public ::testing::Test
{
protected:
    EmptyWorkingDirectory workingDirectory;
    RecordingShellTools tools;
};

} // namespace

// --- Command lines, with recording stand-ins for the tools -----------------

TEST_F(UserTest, NewUserHasCountZero)
{
    IUser* user = new User;
    EXPECT_EQ(user->GetReferenceCount(), 0u);
    SmartPtr<IUser> owner(user);
    EXPECT_EQ(user->GetReferenceCount(), 1u);
}

TEST_F(UserTest, AddRunsUseraddWithTheCryptHashOfThePassword)
{
    tools.Install("useradd", 0);
    SmartPtr<IUser> user(new User);
    _Result result = ResultFail;
    user->Add("alice", "Secret12", result);
    EXPECT_EQ(result, ResultPass);
    std::string hash = SystemCrypt("Secret12", "Secret12");
    EXPECT_EQ(hash.size(), 13u) << "traditional DES hash: " << hash;
    EXPECT_EQ(hash.substr(0, 2), "Se") << "the first two characters are the salt";
    EXPECT_EQ(tools.Calls(), Names{"useradd alice -p " + hash});
}

TEST_F(UserTest, AddWithOneCharacterPasswordRunsUseraddWithWhatCryptReturns)
{
    // A one-character salt is invalid for DES; libxcrypt then answers with
    // its failure token "*0" rather than null, and that is what useradd gets.
    tools.Install("useradd", 0);
    SmartPtr<IUser> user(new User);
    _Result result = ResultFail;
    user->Add("alice", "x", result);
    EXPECT_EQ(result, ResultPass);
    std::string hash = SystemCrypt("x", "x");
    EXPECT_EQ(tools.Calls(), Names{"useradd alice -p " + hash});
}

TEST_F(UserTest, AddGivesFailAndRunsNothingWhenCryptGivesNull)
{
    tools.Install("useradd", 0);
    ObservedUser* observed = new ObservedUser;
    SmartPtr<IUser> user(observed);
    observed->nullHash = true;
    _Result result = ResultPass;
    user->Add("alice", "Secret12", result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_TRUE(tools.Calls().empty());
    EXPECT_TRUE(observed->releasedZeroed.empty());
    EXPECT_EQ(observed->workAreasReleasedZeroed, std::vector<bool>{true}) << "wiped all the same";
}

TEST_F(UserTest, AddOverwritesTheCommandLineWithZerosBeforeFreeingIt)
{
    tools.Install("useradd", 0);
    ObservedUser* observed = new ObservedUser;
    SmartPtr<IUser> user(observed);
    std::string line = "useradd alice -p " + SystemCrypt("Secret12", "Secret12");
    observed->commandLineLength = line.size();
    _Result result = ResultFail;
    user->Add("alice", "Secret12", result);
    EXPECT_EQ(tools.Calls(), Names{line});
    EXPECT_EQ(observed->releasedZeroed, std::vector<bool>{true});
}

TEST(UserThreadTest, EveryUseraddLineCarriesTheHashOfItsOwnPasswordWhenTwoThreadsAdd)
{
    // Each thread adds users with passwords of its own salt ("Ab..." and
    // "Cd..."), so a line that carries a hash made for the other thread shows
    // a foreign salt as well as a wrong hash.
    // Without a shell, 2 x 20 000 calls take well under a second on the host
    // and about one under qemu-arm.
    const int callsPerThread = 20000;
    const int threadCount = 2;
    const int passwordsPerThread = 100;
    const char* const salts[threadCount] = {"Ab", "Cd"};
    std::vector<std::vector<std::string>> passwords(threadCount);
    std::vector<std::vector<std::string>> hashes(threadCount);
    for (int thread = 0; thread < threadCount; ++thread) {
        for (int index = 0; index < passwordsPerThread; ++index) {
            std::string password = salts[thread] + std::to_string(100000 + index);
            hashes[thread].push_back(SystemCrypt(password.c_str(), password.c_str()));
            passwords[thread].push_back(password);
        }
    }

    RecordingUser* recording = new RecordingUser;
    SmartPtr<IUser> user(recording);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&, thread] {
            for (int call = 0; call < callsPerThread; ++call) {
                std::string name = "u" + std::to_string(thread) + "_" + std::to_string(call);
                _Result result = ResultFail;
                user->Add(name.c_str(), passwords[thread][call % passwordsPerThread].c_str(), result);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    std::set<std::string> expected;
    for (int thread = 0; thread < threadCount; ++thread) {
        for (int call = 0; call < callsPerThread; ++call)
            expected.insert("useradd u" + std::to_string(thread) + "_" + std::to_string(call) + " -p " +
                            hashes[thread][call % passwordsPerThread]);
    }
    std::vector<std::string> lines = recording->Lines();
    EXPECT_EQ(lines.size(), static_cast<std::size_t>(threadCount * callsPerThread));
    std::size_t foreign = 0;
    std::string firstForeign;
    for (const std::string& line : lines) {
        if (expected.count(line) == 0 && foreign++ == 0)
            firstForeign = line;
    }
    EXPECT_EQ(foreign, 0u) << "of " << lines.size() << " lines, for example: " << firstForeign;
}

TEST_F(UserTest, AddOverwritesTheHashWorkAreaWithZerosBeforeFreeingIt)
{
    tools.Install("useradd", 0);
    ObservedUser* observed = new ObservedUser;
    SmartPtr<IUser> user(observed);
    _Result result = ResultFail;
    user->Add("alice", "Secret12", result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(observed->workAreasReleasedZeroed, std::vector<bool>{true});
}

TEST(UserHashTest, AddGivesUseraddWhatCryptGivesForEveryKindOfPassword)
{
    // Usable salts, a one-character and an empty password (the failure token),
    // a salt character outside [./0-9A-Za-z], and more than eight characters
    // (only eight count).
    const char* const passwords[] = {"Secret12", "./slash", "Zz", "x", "", "!nosalt", "longer than eight"};
    RecordingUser* recording = new RecordingUser;
    SmartPtr<IUser> user(recording);
    Names expected;
    for (const char* password : passwords) {
        _Result result = ResultFail;
        user->Add("alice", password, result);
        EXPECT_EQ(result, ResultPass) << password;
        expected.push_back("useradd alice -p " + SystemCrypt(password, password));
    }
    EXPECT_EQ(recording->Lines(), expected);
}

TEST_F(UserTest, DeleteRunsUserdel)
{
    tools.Install("userdel", 0);
    SmartPtr<IUser> user(new User);
    _Result result = ResultFail;
    user->Delete("alice", result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(tools.Calls(), Names{"userdel alice"});
}

namespace {

// Add and Delete each run one tool and fail when it fails.
struct FailingToolCase
{
    const char* behaviour; ///< the test's name
    const char* tool;
    int exitStatus;
    void (*operation)(IUser& user, _Result& result);
};

std::ostream& operator<<(std::ostream& stream, const FailingToolCase& entry)
{
    return stream << entry.behaviour;
}

class UserFailingToolTest : public UserTest, public ::testing::WithParamInterface<FailingToolCase>
{
};

void AddAlice(IUser& user, _Result& result)
{
    user.Add("alice", "Secret12", result);
}

void DeleteAlice(IUser& user, _Result& result)
{
    user.Delete("alice", result);
}

} // namespace

TEST_P(UserFailingToolTest, GivesFailAfterRunningTheToolOnce)
{
    const FailingToolCase& entry = GetParam();
    tools.Install(entry.tool, entry.exitStatus);
    SmartPtr<IUser> user(new User);
    _Result result = ResultPass;
    entry.operation(*user, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(tools.Calls().size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(Tools, UserFailingToolTest,
                         ::testing::Values(FailingToolCase{"AddWhenUseraddFails", "useradd", 9, AddAlice},
                                           FailingToolCase{"DeleteWhenUserdelFails", "userdel", 6, DeleteAlice}),
                         [](const ::testing::TestParamInfo<FailingToolCase>& entry) {
                             return std::string(entry.param.behaviour);
                         });

TEST_F(UserTest, DeleteOverwritesTheCommandLineWithZerosBeforeFreeingIt)
{
    tools.Install("userdel", 0);
    ObservedUser* observed = new ObservedUser;
    SmartPtr<IUser> user(observed);
    observed->commandLineLength = std::strlen("userdel alice");
    _Result result = ResultFail;
    user->Delete("alice", result);
    EXPECT_EQ(observed->releasedZeroed, std::vector<bool>{true});
}

TEST_F(UserTest, NamesReachTheShellUnquoted)
{
    tools.Install("userdel", 0);
    SmartPtr<IUser> user(new User);
    _Result result = ResultFail;
    user->Delete("alice bob", result);
    EXPECT_EQ(tools.Calls(), Names{"userdel alice bob"});
}

TEST_F(UserTest, GetGroupsRunsIdAndLeavesOutTheOwnNameGroup)
{
    tools.Install("id", 0, "alice video audio\n");
    SmartPtr<IUser> user(new User);
    std::vector<std::string> groups;
    _Result result = ResultFail;
    user->GetGroups("alice", groups, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(groups, (Names{"video", "audio"}));
    EXPECT_EQ(tools.Calls(), Names{"id -nG alice"});
}

TEST_F(UserTest, GetGroupsForAUserInOnlyTheOwnNameGroupGivesFailAndNoNames)
{
    tools.Install("id", 0, "alice\n");
    SmartPtr<IUser> user(new User);
    std::vector<std::string> groups;
    _Result result = ResultPass;
    user->GetGroups("alice", groups, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_TRUE(groups.empty());
}

TEST_F(UserTest, GetGroupsAppendsToWhatTheVectorHeld)
{
    tools.Install("id", 0, "alice\n");
    SmartPtr<IUser> user(new User);
    std::vector<std::string> groups{"earlier"};
    _Result result = ResultFail;
    user->GetGroups("alice", groups, result);
    EXPECT_EQ(result, ResultPass) << "the vector is non-empty afterwards";
    EXPECT_EQ(groups, Names{"earlier"});
}

TEST_F(UserTest, GetGroupsOfAnUnknownUserGivesFail)
{
    tools.Install("id", 1, "");
    SmartPtr<IUser> user(new User);
    std::vector<std::string> groups;
    _Result result = ResultPass;
    user->GetGroups("nobody-here", groups, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_TRUE(groups.empty());
}

TEST_F(UserTest, NullArgumentsGiveFailAndRunNothing)
{
    tools.Install("useradd", 0);
    tools.Install("userdel", 0);
    tools.Install("id", 0, "root\n");
    SmartPtr<IUser> user(new User);
    std::vector<std::string> groups;
    _Result result = ResultPass;
    user->Add(nullptr, "Secret12", result);
    EXPECT_EQ(result, ResultFail);
    result = ResultPass;
    user->Add("alice", nullptr, result);
    EXPECT_EQ(result, ResultFail);
    result = ResultPass;
    user->Delete(nullptr, result);
    EXPECT_EQ(result, ResultFail);
    result = ResultPass;
    user->GetGroups(nullptr, groups, result);
    EXPECT_EQ(result, ResultFail);
    result = ResultPass;
    user->Authenticate(nullptr, "x", result);
    EXPECT_EQ(result, ResultFail);
    result = ResultPass;
    user->Authenticate("alice", nullptr, result);
    EXPECT_EQ(result, ResultFail);
    result = ResultPass;
    user->SetPassword("alice", nullptr, result);
    EXPECT_EQ(result, ResultFail);
    result = ResultPass;
    user->SetPassword(nullptr, "x", result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_TRUE(tools.Calls().empty());
    EXPECT_TRUE(groups.empty());
}

TEST_F(UserTest, EveryOperationWithANullResultReferenceIsFatalAndRunsNothing)
{
    for (const char* tool : {"useradd", "userdel", "id"})
        tools.Install(tool, 0, "alice video\n");
    SmartPtr<IUser> user(new User);
    std::vector<std::string> groups;
    const wchar_t* const message = L"User: result NULL reference.";
    EXPECT_FATAL_MESSAGE(user->Authenticate("alice", "Secret12", NullResultReference()), message);
    EXPECT_FATAL_MESSAGE(user->Add("alice", "Secret12", NullResultReference()), message);
    EXPECT_FATAL_MESSAGE(user->Delete("alice", NullResultReference()), message);
    EXPECT_FATAL_MESSAGE(user->GetGroups("alice", groups, NullResultReference()), message);
    EXPECT_FATAL_MESSAGE(user->SetPassword("alice", "Secret12", NullResultReference()), message);
    EXPECT_TRUE(tools.Calls().empty());
}

TEST_F(UserTest, NullGroupsReferenceEndsTheProcessSilently)
{
    SmartPtr<IUser> user(new User);
    _Result result = ResultFail;
    EXPECT_FATAL_SILENT(user->GetGroups("alice", NullGroupsReference(), result));
}

// --- The real shadow tools and id, on throwaway copies of the account files --

namespace {

bool FileHasLineStartingWith(const std::string& file, const std::string& start)
{
    std::string content = "\n" + ReadFile(file);
    return content.find("\n" + start) != std::string::npos;
}

// Every test here runs its inner test in a child whose /etc is a private
// copy, and proves afterwards that the machine's own files are untouched.
class UserSystemToolsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::string reason;
        if (!MountNamespace::Available(reason))
            GTEST_SKIP() << reason;
    }

    ChildOutcome RunInside(const std::string& innerTest)
    {
        return RunWithThrowawayAccounts(innerTest, {{"PATH", SystemSearchPath}});
    }
};

} // namespace

TEST(UserAccountsInner, AddAndDelete)
{
    KIV_SKIP_UNLESS_INNER_TEST();
    SmartPtr<IUser> user(new User);
    _Result result = ResultFail;
    user->Add("kivtest1", "Secret12", result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_TRUE(FileHasLineStartingWith("/etc/passwd", "kivtest1:"));
    EXPECT_TRUE(FileHasLineStartingWith("/etc/shadow", "kivtest1:" + SystemCrypt("Secret12", "Secret12") + ":"));
    user->Add("kivtest1", "Secret12", result);
    EXPECT_EQ(result, ResultFail) << "useradd refuses an existing user";
    user->Delete("kivtest1", result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_FALSE(FileHasLineStartingWith("/etc/passwd", "kivtest1:"));
    EXPECT_FALSE(FileHasLineStartingWith("/etc/shadow", "kivtest1:"));
    user->Delete("kivtest1", result);
    EXPECT_EQ(result, ResultFail) << "userdel refuses a missing user";
}

TEST_F(UserSystemToolsTest, AddAndDeleteChangeOnlyTheThrowawayFiles)
{
    EXPECT_INNER_TEST_PASSED(RunInside("UserAccountsInner.AddAndDelete"));
}

TEST(UserAccountsInner, GetGroups)
{
    KIV_SKIP_UNLESS_INNER_TEST();
    SmartPtr<IUser> user(new User);
    _Result result = ResultFail;
    user->Add("kivtest2", "Secret12", result);
    ASSERT_EQ(result, ResultPass);
    std::vector<std::string> groups;
    user->GetGroups("kivtest2", groups, result);
    EXPECT_EQ(result, ResultFail) << "only the own-name group so far";
    EXPECT_TRUE(groups.empty());
    ASSERT_EQ(std::system("groupadd kivvideo && groupadd kivaudio && usermod -aG kivvideo,kivaudio kivtest2"), 0);
    user->GetGroups("kivtest2", groups, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(groups, (Names{"kivvideo", "kivaudio"}));
    groups.clear();
    user->GetGroups("kivnobody", groups, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_TRUE(groups.empty());
}

TEST_F(UserSystemToolsTest, GetGroupsReadsTheRealIdOutput)
{
    EXPECT_INNER_TEST_PASSED(RunInside("UserAccountsInner.GetGroups"));
}

// --- PAM, through the real libpam with pam_wrapper preloaded ----------------

namespace {

std::string LibraryDirectory()
{
#if defined(__x86_64__)
    return "/usr/lib/x86_64-linux-gnu";
#elif defined(__aarch64__)
    return "/usr/lib/aarch64-linux-gnu";
#elif defined(__arm__)
    return "/usr/lib/arm-linux-gnueabihf";
#elif defined(__i386__)
    return "/usr/lib/i386-linux-gnu";
#else
    return "/usr/lib";
#endif
}

bool Exists(const std::string& path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0;
}

std::string ModuleLine(const std::string& type, const std::string& module)
{
    return type + " required " + module + "\n";
}

// Sets up pam_wrapper for one test: a service directory with a "check_user"
// file and the environment that preloads the wrapper in the inner process.
class UserPamTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (RunningUnderEmulation())
            GTEST_SKIP() << "pam_wrapper cannot be preloaded into a program run by qemu-arm";
        wrapper = LibraryDirectory() + "/libpam_wrapper.so";
        matrix = LibraryDirectory() + "/pam_wrapper/pam_matrix.so";
        if (!Exists(wrapper) || !Exists(matrix))
            GTEST_SKIP() << "pam_wrapper is not installed (" << wrapper << ", " << matrix << ")";
        ASSERT_EQ(mkdir(ServiceDirectory().c_str(), 0755), 0);
        ASSERT_TRUE(WriteFile(PasswordFile(), "alice:secret:check_user\ncarol:secret:other_service\n"));
    }

    std::string ServiceDirectory() const { return directory.Path() + "/services"; }
    std::string PasswordFile() const { return directory.Path() + "/passdb"; }

    void WriteService(const std::string& content)
    {
        ASSERT_TRUE(WriteFile(ServiceDirectory() + "/check_user", content));
    }

    void UseMatrix()
    {
        std::string module = matrix + " passdb=" + PasswordFile();
        WriteService(ModuleLine("auth", module) + ModuleLine("account", module) + ModuleLine("password", module));
    }

    Environment PamEnvironment() const
    {
        Environment environment = {
            {"LD_PRELOAD", wrapper},
            {"PAM_WRAPPER", "1"},
            {"PAM_WRAPPER_SERVICE_DIR", ServiceDirectory()},
            {"KIV_TEST_PASSDB", PasswordFile()},
            {"PATH", SystemSearchPath},
        };
#if defined(__SANITIZE_ADDRESS__)
        // The wrapper comes before the sanitizer runtime in the preload list,
        // and deep binding does not mix with the sanitizer's interceptors.
        // pam_wrapper 1.1.4 reads the switch under the uid_wrapper name.
        const char* options = std::getenv("ASAN_OPTIONS");
        environment.emplace_back("ASAN_OPTIONS", std::string(options != nullptr ? options : "") +
                                                     ":verify_asan_link_order=0");
        environment.emplace_back("PAM_WRAPPER_DISABLE_DEEPBIND", "1");
        environment.emplace_back("UID_WRAPPER_DISABLE_DEEPBIND", "1");
        // libpam itself loses a little memory when pam_start fails.
        std::string suppressions = directory.Path() + "/leaks.supp";
        WriteFile(suppressions, "leak:libpam.so\n");
        environment.emplace_back("LSAN_OPTIONS", "suppressions=" + suppressions + ":print_suppressions=0");
#endif
        return environment;
    }

    /// Runs UserPamInner.<name> with pam_wrapper preloaded and expects it to pass.
    void ExpectInnerPasses(const std::string& name)
    {
        ExclusiveFileLock turn(PamWrapperTurn);
        EXPECT_INNER_TEST_PASSED(RunInnerTest("UserPamInner." + name, PamEnvironment()));
    }

    // pam_wrapper makes its working directory under /tmp (whatever TMPDIR
    // says) by looking for a free name /tmp/pam.<letter> and then creating
    // it. Two processes that start together can pick the same name; the
    // loser shares the winner's directory, which vanishes under it, and PAM
    // then finds no service file. So every process of ours that preloads
    // the wrapper waits for its turn on this lock, whichever ctest job or
    // build directory it comes from.
    static constexpr const char* PamWrapperTurn = "/tmp/kiv-pam_wrapper.lock";

    TemporaryDirectory directory;
    std::string wrapper;
    std::string matrix;
};

// The shells and tools that the inner test starts need no PAM wrapper: each
// would set up a wrapper directory of its own and, replaced by exec, never
// remove it. This process keeps the wrapper it was started with.
void StopPreloadingIntoChildren()
{
    unsetenv("LD_PRELOAD");
}

void ExpectAuthenticate(const char* userName, const char* password, _Result expected)
{
    SmartPtr<IUser> user(new User);
    _Result result = expected == ResultPass ? ResultFail : ResultPass;
    user->Authenticate(userName, password, result);
    EXPECT_EQ(result, expected) << userName << " / " << password;
}

} // namespace

TEST(UserPamInner, RightPassword)
{
    KIV_SKIP_UNLESS_INNER_TEST();
    ExpectAuthenticate("alice", "secret", ResultPass);
}

TEST_F(UserPamTest, AuthenticateWithTheRightPasswordGivesPass)
{
    UseMatrix();
    ExpectInnerPasses("RightPassword");
}

TEST(UserPamInner, RightPasswordThroughThePlatform)
{
    KIV_SKIP_UNLESS_INNER_TEST();
    SmartPtr<IPlatform> platform(new LinuxPlatform);
    SmartPtr<IUser> user(platform->CreateUser());
    _Result result = ResultFail;
    user->Authenticate("alice", "secret", result);
    EXPECT_EQ(result, ResultPass);
}

// The platform's user loads PAM on its first check; pam_wrapper, preloaded
// ahead of it, still answers.
TEST_F(UserPamTest, AuthenticateThroughCreateUserGivesPass)
{
    UseMatrix();
    ExpectInnerPasses("RightPasswordThroughThePlatform");
}

TEST(UserPamInner, WrongPassword)
{
    KIV_SKIP_UNLESS_INNER_TEST();
    ExpectAuthenticate("alice", "secreT", ResultFail);
    ExpectAuthenticate("alice", "", ResultFail);
    ExpectAuthenticate("nobody", "secret", ResultFail);
}

TEST_F(UserPamTest, AuthenticateWithAWrongPasswordGivesFail)
{
    UseMatrix();
    ExpectInnerPasses("WrongPassword");
}

TEST(UserPamInner, RefusedAccount)
{
    KIV_SKIP_UNLESS_INNER_TEST();
    // carol's password is right, but her account is only for another service.
    ExpectAuthenticate("carol", "secret", ResultFail);
}

TEST_F(UserPamTest, AuthenticateAnAccountThatAccountManagementRefusesGivesFail)
{
    UseMatrix();
    ExpectInnerPasses("RefusedAccount");
}

TEST(UserPamInner, DeniedAccount)
{
    KIV_SKIP_UNLESS_INNER_TEST();
    ExpectAuthenticate("alice", "secret", ResultFail);
}

TEST_F(UserPamTest, AuthenticateGivesFailWhenAccountManagementDeniesAll)
{
    std::string module = matrix + " passdb=" + PasswordFile();
    WriteService(ModuleLine("auth", module) + ModuleLine("account", LibraryDirectory() + "/security/pam_deny.so"));
    ExpectInnerPasses("DeniedAccount");
}

TEST(UserPamInner, OldPasswordPromptGetsTheNewPassword)
{
    KIV_SKIP_UNLESS_INNER_TEST();
    const char* passwordFile = std::getenv("KIV_TEST_PASSDB");
    ASSERT_NE(passwordFile, nullptr);
    std::string before = ReadFile(passwordFile);
    SmartPtr<IUser> user(new User);
    _Result result = ResultPass;
    // pam_matrix asks for the old password first; it is answered with the
    // new one, which does not match, so nothing changes.
    user->SetPassword("alice", "changed1", result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(ReadFile(passwordFile), before);
    ExpectAuthenticate("alice", "secret", ResultPass);
}

TEST_F(UserPamTest, SetPasswordAnswersEveryHiddenPromptWithTheNewPassword)
{
    UseMatrix();
    ExpectInnerPasses("OldPasswordPromptGetsTheNewPassword");
}

TEST(UserPamInner, PamCannotStart)
{
    KIV_SKIP_UNLESS_INNER_TEST();
    ExpectAuthenticate("alice", "secret", ResultFail);
    SmartPtr<IUser> user(new User);
    _Result result = ResultPass;
    user->SetPassword("alice", "changed1", result);
    EXPECT_EQ(result, ResultFail);
}

TEST_F(UserPamTest, MissingServiceGivesFail)
{
    // No "check_user" file, and no "other" to fall back on.
    ExpectInnerPasses("PamCannotStart");
}

// pam_unix, on a throwaway copy of the account files: it does not ask root
// for the old password, so the password really changes.
namespace {

class UserPamUnixTest : public UserPamTest
{
protected:
    void SetUp() override
    {
        UserPamTest::SetUp();
        if (IsSkipped() || HasFatalFailure())
            return;
        std::string reason;
        if (!MountNamespace::Available(reason))
            GTEST_SKIP() << reason;
        std::string unix = LibraryDirectory() + "/security/pam_unix.so";
        if (!Exists(unix))
            GTEST_SKIP() << "pam_unix is not installed at " << unix;
        WriteService(ModuleLine("auth", unix) + ModuleLine("account", unix) + ModuleLine("password", unix));
    }

    ChildOutcome RunInside(const std::string& innerTest)
    {
        ExclusiveFileLock turn(PamWrapperTurn);
        return RunWithThrowawayAccounts(innerTest, PamEnvironment());
    }
};

} // namespace

TEST(UserPamUnixInner, SetPassword)
{
    KIV_SKIP_UNLESS_INNER_TEST();
    StopPreloadingIntoChildren();
    SmartPtr<IUser> user(new User);
    _Result result = ResultFail;
    user->Add("kivtest3", "OldSecret1", result);
    ASSERT_EQ(result, ResultPass);
    ExpectAuthenticate("kivtest3", "OldSecret1", ResultPass);
    user->SetPassword("kivtest3", "NewSecret2", result);
    EXPECT_EQ(result, ResultPass);
    ExpectAuthenticate("kivtest3", "NewSecret2", ResultPass);
    ExpectAuthenticate("kivtest3", "OldSecret1", ResultFail);
    user->SetPassword("kivnobody", "NewSecret2", result);
    EXPECT_EQ(result, ResultFail);
}

TEST_F(UserPamUnixTest, AfterSetPasswordOnlyTheNewPasswordAuthenticates)
{
    EXPECT_INNER_TEST_PASSED(RunInside("UserPamUnixInner.SetPassword"));
}

TEST(UserPamUnixInner, ExpiredAccount)
{
    KIV_SKIP_UNLESS_INNER_TEST();
    StopPreloadingIntoChildren();
    SmartPtr<IUser> user(new User);
    _Result result = ResultFail;
    user->Add("kivtest4", "Secret12", result);
    ASSERT_EQ(result, ResultPass);
    ExpectAuthenticate("kivtest4", "Secret12", ResultPass);
    // Expired on 1970-01-02: the password is right, account management says no.
    ASSERT_EQ(std::system("usermod -e 1970-01-02 kivtest4"), 0);
    ExpectAuthenticate("kivtest4", "Secret12", ResultFail);
}

TEST_F(UserPamUnixTest, AuthenticateAnExpiredAccountGivesFail)
{
    EXPECT_INNER_TEST_PASSED(RunInside("UserPamUnixInner.ExpiredAccount"));
}

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/io/DirectoryManager.h>
#include <KivPlr/io/LinuxDirectoryPosition.h>
#include <KivTest/ChildProcess.h>
#include <KivTest/DirectoryReading.h>
#include <KivTest/Emulation.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/MountNamespace.h>
#include <KivTest/NullReference.h>
#include <KivTest/OpenDescriptors.h>
#include <KivTest/TemporaryDirectory.h>
#include <KivTest/WorkingDirectoryGuard.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <set>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using namespace KivPlr;
using KivTest::ChildOutcome;
using KivTest::DescriptorsOpenOn;
using KivTest::MountNamespace;
using KivTest::RunInChild;
using KivTest::TemporaryDirectory;
using KivTest::WorkingDirectoryGuard;
using KivTest::WriteFile;

namespace {

KIV_NULL_REFERENCE(NullResult, _Result)
KIV_NULL_REFERENCE(NullNames, std::vector<std::string>)
KIV_NULL_REFERENCE(NullName, std::string)
KIV_NULL_REFERENCE(NullPosition, SmartPtr<IDirectoryPosition>)
KIV_NULL_REFERENCE(NullPath, Path)

typedef std::set<std::string> Names;

bool Exists(const std::string& path)
{
    struct stat status;
    return lstat(path.c_str(), &status) == 0;
}

mode_t CurrentUmask()
{
    mode_t mask = umask(022);
    umask(mask);
    return mask;
}

std::string CurrentDirectory()
{
    char buffer[PATH_MAX];
    return getcwd(buffer, sizeof buffer) != nullptr ? std::string(buffer) : std::string();
}

// The entry names of \p directory in the order readdir gives them.
std::vector<std::string> ReaddirOrder(const std::string& directory)
{
    std::vector<std::string> names;
    DIR* handle = opendir(directory.c_str());
    if (handle == nullptr)
        return names;
    while (struct dirent* entry = readdir(handle)) {
        std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(name);
    }
    closedir(handle);
    return names;
}

// Makes nested directories below \p base so that the deepest one's absolute
// path is exactly \p length bytes long; returns that path ("" on failure).
std::string MakeDirectoryOfLength(const std::string& base, std::size_t length)
{
    std::string path = base;
    if (length < base.size() + 2)
        return "";
    int step = 0;
    while (path.size() < length) {
        std::size_t need = length - path.size(); // still to add, "/" included
        std::size_t component = need <= 201 ? need - 1 : (need - 201 == 1 ? 199 : 200);
        path += "/" + std::string(component, static_cast<char>('a' + step++ % 26));
        if (mkdir(path.c_str(), 0755) != 0 && errno != EEXIST) // shared with a shorter one
            return "";
    }
    return path;
}

// True when getcwd can report the working directory in \p size bytes.
bool WorkingDirectoryFitsIn(std::size_t size)
{
    std::vector<char> buffer(size);
    return getcwd(buffer.data(), buffer.size()) != nullptr;
}

// Makes \p relative (components separated by "/") below \p base, one
// directory at a time; false when one cannot be made.
bool MakeDirectoryChain(const std::string& base, const std::string& relative)
{
    std::string path = base;
    std::string::size_type start = 0;
    while (start <= relative.size()) {
        std::string::size_type end = relative.find('/', start);
        if (end == std::string::npos)
            end = relative.size();
        path += "/" + relative.substr(start, end - start);
        if (mkdir(path.c_str(), 0755) != 0 && errno != EEXIST)
            return false;
        start = end + 1;
    }
    return true;
}

// The two ways getcwd stops answering: a working directory of 1024 bytes or
// more, and one that was removed after we entered it.
enum class UnreadableWorkingDirectory { TooLong, Removed };

const char* DescribeKind(UnreadableWorkingDirectory kind)
{
    return kind == UnreadableWorkingDirectory::TooLong ? "1100-byte working directory" : "removed working directory";
}

// What a null result reference ends the process with: the converter's own
// message where the operation hands its system call's answer to a Linux
// result converter, the manager's where it sets the result itself.
const wchar_t* const ConverterMessage = L"LinuxResultPassFail: result NULL reference.";
const wchar_t* const ResultMessage = L"DirectoryManager: result NULL reference.";

// Where RecordWorkingDirectory notes the working directory of a test child
// as it exits, so that the parent sees what a dying child did.
std::string workingDirectoryRecord;

void RecordWorkingDirectory()
{
    WriteFile(workingDirectoryRecord, CurrentDirectory());
}

// Uncovers the real /proc as a test child exits. The sanitizer build's leak
// check runs at exit too, after this handler (exit handlers run newest
// first), and cannot work without /proc.
void UncoverProc()
{
    umount2("/proc", MNT_DETACH);
}

// In a test child: a private mount namespace with an empty /proc, where
// readlink("/proc/self/exe") fails. Exits with 2 when that cannot be made.
void EnterNamespaceWithoutProc()
{
    std::string fault;
    if (!MountNamespace::Enter(fault) || !MountNamespace::MountTmpfs("/proc", fault)) {
        std::fputs(fault.c_str(), stderr);
        _exit(2);
    }
    std::atexit(UncoverProc);
}

class DirectoryManagerTest : public ::testing::Test
{
protected:
    void SetUp() override { canReadDirectories = KivTest::CanReadDirectory(directory.Path(), whyNot); }

    std::string Sub(const std::string& name) const { return directory.Path() + "/" + name; }

    // Makes each entry below the test directory, in order: a name ending in
    // "/" as a directory, any other as a file holding "x".
    bool MakeTree(const std::vector<std::string>& entries)
    {
        for (const std::string& entry : entries) {
            bool made = entry.back() == '/' ? mkdir(Sub(entry).c_str(), 0755) == 0 : WriteFile(Sub(entry), "x");
            if (!made) {
                ADD_FAILURE() << "cannot make " << Sub(entry);
                return false;
            }
        }
        return true;
    }

    // Makes the empty directory "list" and starts enumerating it.
    bool StartListing(SmartPtr<IDirectoryPosition>& position, std::string& name)
    {
        _Result result = ResultFail;
        if (mkdir(Sub("list").c_str(), 0755) == 0)
            directories->FindFirst(Path(Sub("list")), position, name, result);
        return result == ResultPass && position;
    }

    // Every name an enumeration of \p path gives, through FindFirst, FindNext
    // and FindRelease; \p released tells whether FindRelease succeeded.
    Names Enumerate(const std::string& path, bool& released)
    {
        Names names;
        SmartPtr<IDirectoryPosition> position;
        std::string name;
        _Result result = ResultFail;
        released = false;
        directories->FindFirst(Path(path), position, name, result);
        for (int count = 0; result == ResultPass && count < 1000; ++count) {
            names.insert(name);
            directories->FindNext(position, name, result);
        }
        if (position) {
            directories->FindRelease(position, result);
            released = result == ResultPass && !position;
        }
        return names;
    }

    // The temporary directory as getcwd spells it (no symbolic links).
    std::string RealPath() const
    {
        WorkingDirectoryGuard enter(directory.Path());
        return CurrentDirectory();
    }

    // Makes a working directory that getcwd cannot report, of \p kind, and
    // enters it with \p guard's help (the caller's guard puts the old one
    // back). Below the 1100-byte one sits \p relative too, so that a correct
    // resolution would find something; a removed one holds nothing.
    bool EnterUnreadableWorkingDirectory(UnreadableWorkingDirectory kind, const std::string& relative)
    {
        if (kind == UnreadableWorkingDirectory::TooLong) {
            std::string deep = MakeDirectoryOfLength(RealPath(), 1100);
            if (deep.size() != 1100 || !MakeDirectoryChain(deep, relative) || !WriteFile(deep + "/" + relative + "/f", "x"))
                return false;
            return chdir(deep.c_str()) == 0 && !WorkingDirectoryFitsIn(1024);
        }
        if (mkdir(Sub("gone").c_str(), 0755) != 0 || chdir(Sub("gone").c_str()) != 0)
            return false;
        return rmdir(Sub("gone").c_str()) == 0 && !WorkingDirectoryFitsIn(1024);
    }

    // A tree of the test's own, named by \p name below the test directory,
    // and the relative path that reaches it when read against "/" rather
    // than against the working directory. The wrong reading of that path
    // therefore stays inside the test's directory.
    std::string MakeVictim(const std::string& name)
    {
        const std::string victim = Sub(name);
        // Read against "/", the relative path must land on the victim and
        // nowhere else: no climbing or "./" segments that would shift it.
        for (const char* shifting : {"./", ".\\"}) {
            if (victim[0] != '/' || victim.find(shifting) != std::string::npos) {
                ADD_FAILURE() << "TMPDIR gives an unusable victim path " << victim;
                return "";
            }
        }
        if (!MakeTree({name + "/", name + "/sub/", name + "/sub/f", name + "/f"}))
            return "";
        return victim.substr(1);
    }

    bool VictimIsWhole(const std::string& name) const
    {
        return Exists(Sub(name + "/sub/f")) && Exists(Sub(name + "/f"));
    }

    TemporaryDirectory directory;
    SmartPtr<IDirectoryManager> directories{new DirectoryManager};
    bool canReadDirectories = false;
    std::string whyNot;
};

} // namespace

// For the tests that enumerate directories of the test's own.
#define SKIP_UNLESS_DIRECTORIES_CAN_BE_READ() \
    if (!canReadDirectories)                  \
    GTEST_SKIP() << whyNot

TEST_F(DirectoryManagerTest, NewManagerHasCountZero)
{
    DirectoryManager* manager = new DirectoryManager;
    IDirectoryManager* asInterface = manager;
    EXPECT_EQ(asInterface->GetReferenceCount(), 0u);
    SmartPtr<IDirectoryManager> owner(manager);
}

TEST_F(DirectoryManagerTest, CreateMakesDirectoryWithMode0774)
{
    _Result result = ResultFail;
    directories->Create(Path(Sub("new")), result);
    EXPECT_EQ(result, ResultPass);
    struct stat status;
    ASSERT_EQ(stat(Sub("new").c_str(), &status), 0);
    EXPECT_TRUE(S_ISDIR(status.st_mode));
    EXPECT_EQ(status.st_mode & 07777, 0774 & ~CurrentUmask());
}

TEST_F(DirectoryManagerTest, CreateOnExistingDirectoryFails)
{
    ASSERT_TRUE(MakeTree({"old/", "old/keep"}));
    _Result result = ResultPass;
    directories->Create(Path(Sub("old")), result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_TRUE(Exists(Sub("old/keep")));
}

TEST_F(DirectoryManagerTest, CreateDoesNotMakeMissingParents)
{
    _Result result = ResultPass;
    directories->Create(Path(Sub("missing/child")), result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_FALSE(Exists(Sub("missing")));
}

TEST_F(DirectoryManagerTest, RemoveWithoutRecursionRemovesEmptyDirectory)
{
    ASSERT_EQ(mkdir(Sub("empty").c_str(), 0755), 0);
    _Result result = ResultFail;
    directories->Remove(Path(Sub("empty")), false, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_FALSE(Exists(Sub("empty")));
}

TEST_F(DirectoryManagerTest, RemoveWithoutRecursionOnNonEmptyDirectoryFails)
{
    ASSERT_TRUE(MakeTree({"full/", "full/file"}));
    _Result result = ResultPass;
    directories->Remove(Path(Sub("full")), false, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_TRUE(Exists(Sub("full/file")));
}

TEST_F(DirectoryManagerTest, RecursiveRemoveDeletesTreeOfFilesAndDirectories)
{
    SKIP_UNLESS_DIRECTORIES_CAN_BE_READ();
    ASSERT_TRUE(MakeTree({"tree/", "tree/a/", "tree/a/b/", "tree/a/b/c/", "tree/empty/", "tree/.hidden/", "tree/f",
                          "tree/a/f", "tree/a/b/f", "tree/a/b/c/f", "tree/.hidden/.f", "tree/a/g"}));
    ASSERT_EQ(chmod(Sub("tree/a/g").c_str(), 0444), 0);
    _Result result = ResultFail;
    directories->Remove(Path(Sub("tree")), true, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_FALSE(Exists(Sub("tree")));
}

TEST_F(DirectoryManagerTest, RecursiveRemoveOfRelativePathUsesCurrentDirectory)
{
    SKIP_UNLESS_DIRECTORIES_CAN_BE_READ();
    ASSERT_TRUE(MakeTree({"tree/", "tree/a/", "tree/a/f"}));
    WorkingDirectoryGuard guard;
    ASSERT_EQ(chdir(directory.Path().c_str()), 0);
    _Result result = ResultFail;
    directories->Remove(Path("tree"), true, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_FALSE(Exists(Sub("tree")));
}

TEST_F(DirectoryManagerTest, RecursiveRemoveOfRelativePathFailsWhenWorkingDirectoryUnreadable)
{
    for (UnreadableWorkingDirectory kind : {UnreadableWorkingDirectory::TooLong, UnreadableWorkingDirectory::Removed}) {
        SCOPED_TRACE(DescribeKind(kind));
        const std::string name = kind == UnreadableWorkingDirectory::TooLong ? "victim-long" : "victim-gone";
        const std::string relative = MakeVictim(name);
        ASSERT_FALSE(relative.empty());
        WorkingDirectoryGuard guard;
        ASSERT_TRUE(EnterUnreadableWorkingDirectory(kind, relative));
        _Result result = ResultPass;
        directories->Remove(Path(relative), true, result);
        EXPECT_EQ(result, ResultFail);
        EXPECT_TRUE(VictimIsWhole(name));
        if (kind == UnreadableWorkingDirectory::TooLong) {
            EXPECT_TRUE(Exists(relative + "/f")); // the tree the path really names
        }
    }
}

TEST_F(DirectoryManagerTest, ListingsOfRelativePathFailWhenWorkingDirectoryUnreadable)
{
    const std::string relative = MakeVictim("victim");
    ASSERT_FALSE(relative.empty());
    for (UnreadableWorkingDirectory kind : {UnreadableWorkingDirectory::TooLong, UnreadableWorkingDirectory::Removed}) {
        SCOPED_TRACE(DescribeKind(kind));
        WorkingDirectoryGuard guard;
        ASSERT_TRUE(EnterUnreadableWorkingDirectory(kind, relative));
        for (const std::string& pattern : {relative, relative + "/*"}) {
            SCOPED_TRACE(pattern);
            _Result result = ResultPass;
            std::vector<std::string> names;
            directories->GetFiles(Path(pattern), names, result);
            EXPECT_EQ(result, ResultFail);
            EXPECT_TRUE(names.empty());
            result = ResultPass;
            directories->GetDirectories(Path(pattern), names, result);
            EXPECT_EQ(result, ResultFail);
            EXPECT_TRUE(names.empty());
            // Not even names gathered earlier make these succeed.
            names = {"earlier"};
            result = ResultPass;
            directories->GetFiles(Path(pattern), names, result);
            EXPECT_EQ(result, ResultFail);
            EXPECT_EQ(names, std::vector<std::string>{"earlier"});

            SmartPtr<IDirectoryPosition> position;
            std::string name = "kept";
            result = ResultPass;
            directories->FindFirst(Path(pattern), position, name, result);
            EXPECT_EQ(result, ResultFail);
            EXPECT_FALSE(position);
            EXPECT_EQ(name, "kept");
            if (position) {
                _Result released = ResultFail;
                directories->FindRelease(position, released);
            }
        }
        EXPECT_TRUE(VictimIsWhole("victim"));
    }
}

TEST_F(DirectoryManagerTest, AbsolutePathsAreServedWhenWorkingDirectoryUnreadable)
{
    SKIP_UNLESS_DIRECTORIES_CAN_BE_READ();
    ASSERT_TRUE(MakeTree({"list/", "list/f", "tree/", "tree/a/", "tree/a/f"}));
    WorkingDirectoryGuard guard;
    ASSERT_TRUE(EnterUnreadableWorkingDirectory(UnreadableWorkingDirectory::TooLong, "elsewhere"));
    std::vector<std::string> names;
    _Result result = ResultFail;
    directories->GetFiles(Path(Sub("list")), names, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(names, std::vector<std::string>{"f"}); // "f" is not a directory here either
    bool released = false;
    EXPECT_EQ(Enumerate(Sub("list"), released), (Names{".", "..", "f"}));
    EXPECT_TRUE(released);
    result = ResultFail;
    directories->Remove(Path(Sub("tree")), true, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_FALSE(Exists(Sub("tree")));
}

TEST_F(DirectoryManagerTest, RecursiveRemoveLeavesSymbolicLinkAndTheDirectoryHoldingIt)
{
    SKIP_UNLESS_DIRECTORIES_CAN_BE_READ();
    ASSERT_TRUE(MakeTree({"tree/", "tree/a/", "tree/f", "tree/a/f", "target"}));
    ASSERT_EQ(symlink(Sub("target").c_str(), Sub("tree/link").c_str()), 0);
    _Result result = ResultPass;
    directories->Remove(Path(Sub("tree")), true, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_TRUE(Exists(Sub("tree/link")));
    EXPECT_EQ(ReaddirOrder(Sub("tree")), std::vector<std::string>{"link"});
    EXPECT_TRUE(Exists(Sub("target"))); // the link is not followed
}

TEST_F(DirectoryManagerTest, RecursiveRemoveStopsAtTheFirstSubdirectoryThatStays)
{
    SKIP_UNLESS_DIRECTORIES_CAN_BE_READ();
    // tree/a/b holds a link: b stays, so a stays, so tree stays. Inside b
    // everything else goes; in a and tree, the entries that readdir gives
    // before the failing directory go and the ones after it stay.
    ASSERT_TRUE(MakeTree({"tree/", "tree/a/", "tree/a/b/", "tree/a/c/", "tree/d/", "tree/f", "tree/a/f", "tree/a/b/f",
                          "tree/a/c/f", "tree/d/f", "tree/a/b/g"}));
    ASSERT_EQ(symlink("nowhere", Sub("tree/a/b/link").c_str()), 0);
    std::vector<std::string> treeOrder = ReaddirOrder(Sub("tree"));
    std::vector<std::string> aOrder = ReaddirOrder(Sub("tree/a"));

    _Result result = ResultPass;
    directories->Remove(Path(Sub("tree")), true, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(ReaddirOrder(Sub("tree/a/b")), std::vector<std::string>{"link"});
    for (const auto& level : {std::make_pair(std::string("tree"), treeOrder), std::make_pair(std::string("tree/a"), aOrder)}) {
        const std::string failing = level.first == "tree" ? "a" : "b";
        bool afterFailing = false;
        for (const std::string& name : level.second) {
            if (name == failing) {
                afterFailing = true;
                continue;
            }
            EXPECT_EQ(Exists(Sub(level.first + "/" + name)), afterFailing) << level.first << "/" << name;
        }
        EXPECT_TRUE(Exists(Sub(level.first + "/" + failing)));
    }
}

TEST_F(DirectoryManagerTest, RecursiveRemoveLeavesFifosAndSockets)
{
    SKIP_UNLESS_DIRECTORIES_CAN_BE_READ();
    ASSERT_EQ(mkdir(Sub("tree").c_str(), 0755), 0);
    ASSERT_EQ(mkfifo(Sub("tree/fifo").c_str(), 0644), 0);
    ASSERT_TRUE(WriteFile(Sub("tree/f"), "x"));
    _Result result = ResultPass;
    directories->Remove(Path(Sub("tree")), true, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(ReaddirOrder(Sub("tree")), std::vector<std::string>{"fifo"});
}

TEST_F(DirectoryManagerTest, RecursiveRemoveOfMissingDirectoryFails)
{
    _Result result = ResultPass;
    directories->Remove(Path(Sub("missing")), true, result);
    EXPECT_EQ(result, ResultFail);
}

TEST_F(DirectoryManagerTest, ExistsForAnyKindOfFile)
{
    ASSERT_TRUE(MakeTree({"folder/", "file"}));
    ASSERT_EQ(mkfifo(Sub("fifo").c_str(), 0644), 0);
    ASSERT_EQ(symlink("nowhere", Sub("dangling").c_str()), 0);
    const std::pair<std::string, _Result> cases[] = {
        {Sub("folder"), ResultPass}, {Sub("file"), ResultPass},    {Sub("fifo"), ResultPass},
        {"/dev/null", ResultPass},   {Sub("missing"), ResultFail}, {Sub("dangling"), ResultFail},
    };
    for (const auto& entry : cases) {
        _Result result = 0;
        directories->Exists(Path(entry.first), result);
        EXPECT_EQ(result, entry.second) << entry.first;
    }
}

TEST_F(DirectoryManagerTest, IsDirectoryTellsDirectoriesFromOtherFiles)
{
    ASSERT_TRUE(MakeTree({"folder/", "file"}));
    ASSERT_EQ(symlink(Sub("folder").c_str(), Sub("link").c_str()), 0);
    const std::pair<std::string, _Result> cases[] = {
        {Sub("folder"), ResultPass}, {Sub("link"), ResultPass},     {Sub("file"), ResultFail},
        {"/dev/null", ResultFail},   {Sub("missing"), ResultFail},
    };
    for (const auto& entry : cases) {
        _Result result = 0;
        directories->IsDirectory(Path(entry.first), result);
        EXPECT_EQ(result, entry.second) << entry.first;
    }
}

TEST_F(DirectoryManagerTest, FindEnumeratesEveryEntryIncludingDotAndDotDot)
{
    SKIP_UNLESS_DIRECTORIES_CAN_BE_READ();
    ASSERT_EQ(mkdir(Sub("list").c_str(), 0755), 0);
    ASSERT_TRUE(MakeTree({"list/sub/", "list/a", "list/b", "list/.hidden"}));
    bool released = false;
    EXPECT_EQ(Enumerate(Sub("list"), released), (Names{".", "..", "a", "b", ".hidden", "sub"}));
    EXPECT_TRUE(released);
}

TEST_F(DirectoryManagerTest, FindWithTrailingSlashAsteriskEnumeratesTheSameDirectory)
{
    SKIP_UNLESS_DIRECTORIES_CAN_BE_READ();
    ASSERT_TRUE(MakeTree({"list/", "list/a"}));
    bool released = false;
    Names bare = Enumerate(Sub("list"), released);
    EXPECT_TRUE(released);
    Names starred = Enumerate(Sub("list/*"), released);
    EXPECT_TRUE(released);
    EXPECT_EQ(bare, starred);
    EXPECT_EQ(bare, (Names{".", "..", "a"}));
    EXPECT_TRUE(Enumerate(Sub("list/a*"), released).empty()); // no other wildcard
}

TEST_F(DirectoryManagerTest, FindNextAfterTheEndKeepsFailingAndLeavesNameAlone)
{
    SKIP_UNLESS_DIRECTORIES_CAN_BE_READ();
    SmartPtr<IDirectoryPosition> position;
    std::string name;
    ASSERT_TRUE(StartListing(position, name));
    _Result result = ResultPass;
    int more = 0;
    while (result == ResultPass && more < 10) {
        directories->FindNext(position, name, result);
        ++more;
    }
    EXPECT_EQ(more, 2); // "." and ".." are all there is: one more, then the end
    EXPECT_EQ(result, ResultFail);
    name = "kept";
    directories->FindNext(position, name, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(name, "kept");
    directories->FindRelease(position, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_FALSE(position);
}

TEST_F(DirectoryManagerTest, FindFirstOfRelativePathReadsItAgainstCurrentDirectory)
{
    SKIP_UNLESS_DIRECTORIES_CAN_BE_READ();
    ASSERT_TRUE(MakeTree({"list/", "list/only"}));
    WorkingDirectoryGuard guard;
    ASSERT_EQ(chdir(directory.Path().c_str()), 0);
    bool released = false;
    EXPECT_EQ(Enumerate("list", released), (Names{".", "..", "only"}));
    SmartPtr<IDirectoryPosition> position;
    std::string name;
    _Result result = ResultFail;
    directories->FindFirst(Path("list/*"), position, name, result);
    ASSERT_EQ(result, ResultPass);
    Path stored;
    position->GetPath(stored, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(std::string(stored.GetPath()), CurrentDirectory() + "/list/");
    directories->FindRelease(position, result);
    EXPECT_EQ(result, ResultPass);
}

TEST_F(DirectoryManagerTest, FindFirstOnMissingDirectoryFailsAndLeavesOutValuesAlone)
{
    SKIP_UNLESS_DIRECTORIES_CAN_BE_READ();
    SmartPtr<IDirectoryPosition> position;
    std::string name;
    _Result result = ResultFail;
    ASSERT_TRUE(StartListing(position, name));
    IDirectoryPosition* held = position.Get();
    name = "kept";
    directories->FindFirst(Path(Sub("missing")), position, name, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(position.Get(), held);
    EXPECT_EQ(name, "kept");
    ASSERT_TRUE(WriteFile(Sub("file"), "x"));
    directories->FindFirst(Path(Sub("file")), position, name, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(position.Get(), held);
    directories->FindRelease(position, result);
    EXPECT_EQ(result, ResultPass);
}

TEST_F(DirectoryManagerTest, FindFirstReplacesAndReleasesTheHeldPosition)
{
    SKIP_UNLESS_DIRECTORIES_CAN_BE_READ();
    SmartPtr<IDirectoryPosition> position;
    std::string name;
    _Result result = ResultFail;
    ASSERT_TRUE(StartListing(position, name));
    SmartPtr<IDirectoryPosition> watcher = position;
    SmartPtr<IDirectoryPosition> closer = position;
    directories->FindRelease(closer, result); // closes the stream; position still holds the object
    ASSERT_EQ(result, ResultPass);
    EXPECT_EQ(watcher->GetReferenceCount(), 2u);
    directories->FindFirst(Path(Sub("list")), position, name, result);
    ASSERT_EQ(result, ResultPass);
    EXPECT_NE(position.Get(), watcher.Get());
    EXPECT_EQ(watcher->GetReferenceCount(), 1u);
    directories->FindRelease(position, result);
    EXPECT_EQ(result, ResultPass);
}

TEST_F(DirectoryManagerTest, ReleasedEnumerationRefusesFurtherUseThroughOtherHolders)
{
    SKIP_UNLESS_DIRECTORIES_CAN_BE_READ();
    SmartPtr<IDirectoryPosition> position;
    std::string name;
    _Result result = ResultFail;
    ASSERT_TRUE(StartListing(position, name));
    SmartPtr<IDirectoryPosition> other = position;
    directories->FindRelease(position, result);
    ASSERT_EQ(result, ResultPass);
    name = "kept";
    directories->FindNext(other, name, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(name, "kept");
    directories->FindRelease(other, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_TRUE(other); // kept on failure
}

TEST_F(DirectoryManagerTest, AbandonedEnumerationLeavesItsStreamOpen)
{
    SKIP_UNLESS_DIRECTORIES_CAN_BE_READ();
    SmartPtr<IDirectoryPosition> position;
    std::string name;
    _Result result = ResultFail;
    ASSERT_TRUE(StartListing(position, name));
    void* raw = nullptr;
    ASSERT_TRUE(position->QueryInterface(&LinuxDirectoryPosition::ClassId(), &raw, result));
    DIR* handle = static_cast<LinuxDirectoryPosition*>(raw)->GetHandle();
    ASSERT_NE(handle, nullptr);
    ASSERT_EQ(DescriptorsOpenOn(Sub("list")).size(), 1u);
    position.Reset(); // the position goes without FindRelease
    EXPECT_EQ(DescriptorsOpenOn(Sub("list")).size(), 1u);
    EXPECT_NE(fcntl(dirfd(handle), F_GETFD), -1);
    closedir(handle); // the test's own clean-up of the leaked stream
}

TEST_F(DirectoryManagerTest, FindNextAndFindReleaseOnEmptyPositionAreFatal)
{
    SmartPtr<IDirectoryPosition> empty;
    std::string name;
    _Result result = ResultPass;
    EXPECT_FATAL_SILENT(directories->FindNext(empty, name, result));
    EXPECT_FATAL_SILENT(directories->FindRelease(empty, result));
}

TEST_F(DirectoryManagerTest, GetFilesAndGetDirectoriesSortTheCurrentDirectory)
{
    SKIP_UNLESS_DIRECTORIES_CAN_BE_READ();
    ASSERT_TRUE(MakeTree({"d1/", "d2/", "f1", "f2"}));
    ASSERT_EQ(mkfifo(Sub("fifo").c_str(), 0644), 0);
    ASSERT_EQ(symlink("d1", Sub("link-to-d1").c_str()), 0);
    WorkingDirectoryGuard guard;
    ASSERT_EQ(chdir(directory.Path().c_str()), 0);

    std::vector<std::string> folders;
    _Result result = ResultFail;
    directories->GetDirectories(Path("."), folders, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(Names(folders.begin(), folders.end()), (Names{".", "..", "d1", "d2", "link-to-d1"}));
    EXPECT_EQ(folders.size(), 5u);

    std::vector<std::string> files;
    directories->GetFiles(Path(directory.Path()), files, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(Names(files.begin(), files.end()), (Names{"f1", "f2", "fifo"}));
    EXPECT_EQ(DescriptorsOpenOn(directory.Path()).size(), 0u); // the enumeration was released
}

TEST_F(DirectoryManagerTest, ListingAnotherDirectoryClassifiesNamesInTheCurrentOne)
{
    SKIP_UNLESS_DIRECTORIES_CAN_BE_READ();
    // here: x is a directory, y a file. there: x a file, y and z directories.
    ASSERT_TRUE(MakeTree({"here/", "here/x/", "here/y", "there/", "there/x", "there/y/", "there/z/"}));
    WorkingDirectoryGuard guard;
    ASSERT_EQ(chdir(Sub("here").c_str()), 0);

    std::vector<std::string> folders;
    _Result result = ResultFail;
    directories->GetDirectories(Path(Sub("there")), folders, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(Names(folders.begin(), folders.end()), (Names{".", "..", "x"}));

    std::vector<std::string> files;
    directories->GetFiles(Path("../there"), files, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(Names(files.begin(), files.end()), (Names{"y", "z"}));
}

TEST_F(DirectoryManagerTest, ListsAppendToTheVectorWithoutClearingIt)
{
    SKIP_UNLESS_DIRECTORIES_CAN_BE_READ();
    ASSERT_EQ(mkdir(Sub("only-folders").c_str(), 0755), 0);
    WorkingDirectoryGuard guard;
    ASSERT_EQ(chdir(Sub("only-folders").c_str()), 0);
    std::vector<std::string> names;
    _Result result = ResultPass;
    directories->GetFiles(Path("."), names, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_TRUE(names.empty());

    names = {"earlier"};
    directories->GetFiles(Path("."), names, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(names, std::vector<std::string>{"earlier"});

    directories->GetDirectories(Path(Sub("missing")), names, result);
    EXPECT_EQ(result, ResultPass); // the vector was not empty
    directories->GetDirectories(Path("."), names, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(names.size(), 3u);
    EXPECT_EQ(names[0], "earlier");

    std::vector<std::string> empty;
    directories->GetDirectories(Path(Sub("missing")), empty, result);
    EXPECT_EQ(result, ResultFail);
}

TEST_F(DirectoryManagerTest, ListsGrowTheVectorBeyondItsFirstReservation)
{
    SKIP_UNLESS_DIRECTORIES_CAN_BE_READ();
    for (int index = 0; index < 40; ++index)
        ASSERT_TRUE(WriteFile(Sub("file" + std::to_string(index)), "x"));
    WorkingDirectoryGuard guard;
    ASSERT_EQ(chdir(directory.Path().c_str()), 0);
    std::vector<std::string> names;
    _Result result = ResultFail;
    directories->GetFiles(Path("."), names, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(names.size(), 40u);
    EXPECT_GE(names.capacity(), 40u);
}

TEST_F(DirectoryManagerTest, GetCurrentReportsTheWorkingDirectory)
{
    WorkingDirectoryGuard guard;
    ASSERT_EQ(chdir(directory.Path().c_str()), 0);
    std::string current;
    _Result result = ResultFail;
    directories->GetCurrent(current, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(current, CurrentDirectory());
}

TEST_F(DirectoryManagerTest, GetCurrentGrowsItsBufferUpTo1024Bytes)
{
    // Buffers of 256, 512 and 1024 bytes hold paths of up to 255, 511 and
    // 1023 bytes: every length below 1024 is read, 1024 and beyond are not.
    const std::pair<std::size_t, _Result> cases[] = {
        {200, ResultPass},  {255, ResultPass},  {256, ResultPass},  {511, ResultPass},  {512, ResultPass},
        {800, ResultPass},  {1023, ResultPass}, {1024, ResultFail}, {1025, ResultFail}, {1500, ResultFail},
    };
    std::string base = CurrentDirectory();
    {
        WorkingDirectoryGuard toRealPath;
        ASSERT_EQ(chdir(directory.Path().c_str()), 0);
        base = CurrentDirectory(); // the temporary directory without symbolic links
    }
    ASSERT_LT(base.size(), 190u);
    for (const auto& entry : cases) {
        SCOPED_TRACE(entry.first);
        std::string deep = MakeDirectoryOfLength(base, entry.first);
        ASSERT_EQ(deep.size(), entry.first);
        WorkingDirectoryGuard guard;
        ASSERT_EQ(chdir(deep.c_str()), 0);
        std::string current = "kept";
        _Result result = 0;
        directories->GetCurrent(current, result);
        EXPECT_EQ(result, entry.second);
        EXPECT_EQ(current, entry.second == ResultPass ? deep : std::string("kept"));
    }
}

TEST_F(DirectoryManagerTest, GetCurrentFailsWhenTheWorkingDirectoryIsGone)
{
    ASSERT_EQ(mkdir(Sub("doomed").c_str(), 0755), 0);
    WorkingDirectoryGuard guard;
    ASSERT_EQ(chdir(Sub("doomed").c_str()), 0);
    ASSERT_EQ(rmdir(Sub("doomed").c_str()), 0);
    std::string current = "kept";
    _Result result = ResultPass;
    directories->GetCurrent(current, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(current, "kept");
}

TEST_F(DirectoryManagerTest, SetCurrentChangesTheWorkingDirectory)
{
    WorkingDirectoryGuard guard;
    _Result result = ResultFail;
    directories->SetCurrent(Path(directory.Path()), result);
    EXPECT_EQ(result, ResultPass);
    std::string expected;
    {
        WorkingDirectoryGuard probe;
        ASSERT_EQ(chdir(directory.Path().c_str()), 0);
        expected = CurrentDirectory();
    }
    EXPECT_EQ(CurrentDirectory(), expected);
}

TEST_F(DirectoryManagerTest, SetCurrentToMissingDirectoryFailsAndStays)
{
    WorkingDirectoryGuard guard;
    std::string before = CurrentDirectory();
    _Result result = ResultPass;
    directories->SetCurrent(Path(Sub("missing")), result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(CurrentDirectory(), before);
    ASSERT_TRUE(WriteFile(Sub("file"), "x"));
    directories->SetCurrent(Path(Sub("file")), result);
    EXPECT_EQ(result, ResultFail);
}

TEST_F(DirectoryManagerTest, GetExecutablePathNamesTheRunningProgram)
{
    Path executable;
    _Result result = ResultFail;
    directories->GetExecutablePath(executable, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_TRUE(executable.IsAbsolute());
    std::string file;
    executable.GetFile(file);
    EXPECT_EQ(file, "kivplr_io_tests");
    struct stat status;
    ASSERT_EQ(stat(executable.GetPath(), &status), 0);
    EXPECT_TRUE(S_ISREG(status.st_mode));
}

TEST_F(DirectoryManagerTest, GetExecutablePathFailsWithoutProc)
{
    std::string reason;
    if (!MountNamespace::Available(reason))
        GTEST_SKIP() << reason;
    ChildOutcome outcome = RunInChild([] {
        EnterNamespaceWithoutProc();
        SmartPtr<IDirectoryManager> manager(new DirectoryManager);
        Path executable("kept");
        _Result result = ResultPass;
        manager->GetExecutablePath(executable, result);
        std::printf("%u %s", static_cast<unsigned>(result), executable.GetPath());
    });
    EXPECT_TRUE(outcome.exited && outcome.exitStatus == 0) << KivTest::Describe(outcome);
    EXPECT_EQ(outcome.standardOutput, "500 kept");
}

TEST_F(DirectoryManagerTest, ReservedOperationIsNotSupported)
{
    _Result result = ResultPass;
    directories->Reserved1(result);
    EXPECT_EQ(result, ResultNotSupported);
}

TEST_F(DirectoryManagerTest, CreateWithNullResultMakesTheDirectoryThenEnds)
{
    EXPECT_FATAL_MESSAGE(directories->Create(Path(Sub("new")), NullResult()), ConverterMessage);
    EXPECT_TRUE(Exists(Sub("new")));
}

TEST_F(DirectoryManagerTest, RemoveWithoutRecursionWithNullResultRemovesTheDirectoryThenEnds)
{
    ASSERT_EQ(mkdir(Sub("empty").c_str(), 0755), 0);
    EXPECT_FATAL_MESSAGE(directories->Remove(Path(Sub("empty")), false, NullResult()), ConverterMessage);
    EXPECT_FALSE(Exists(Sub("empty")));
}

TEST_F(DirectoryManagerTest, SetCurrentWithNullResultChangesDirectoryThenEnds)
{
    ASSERT_EQ(mkdir(Sub("there").c_str(), 0755), 0);
    workingDirectoryRecord = Sub("record");
    EXPECT_FATAL_MESSAGE(std::atexit(RecordWorkingDirectory);
                         directories->SetCurrent(Path(Sub("there")), NullResult()), ConverterMessage);
    EXPECT_EQ(KivTest::ReadFile(Sub("record")), RealPath() + "/there");
}

TEST_F(DirectoryManagerTest, IsDirectoryWithNullResultEndsInTheConverterOnlyWhenStatFails)
{
    ASSERT_EQ(mkdir(Sub("folder").c_str(), 0755), 0);
    EXPECT_FATAL_MESSAGE(directories->IsDirectory(Path(Sub("missing")), NullResult()), ConverterMessage);
    EXPECT_FATAL_MESSAGE(directories->IsDirectory(Path(Sub("folder")), NullResult()), ResultMessage);
}

TEST_F(DirectoryManagerTest, GetExecutablePathFailureWithNullResultEndsInTheConverter)
{
    std::string reason;
    if (!MountNamespace::Available(reason))
        GTEST_SKIP() << reason;
    Path executable;
    EXPECT_FATAL_MESSAGE(EnterNamespaceWithoutProc(); directories->GetExecutablePath(executable, NullResult()),
                         ConverterMessage);
}

TEST_F(DirectoryManagerTest, OtherOperationsWithNullResultAreFatalAndTouchNothing)
{
    SKIP_UNLESS_DIRECTORIES_CAN_BE_READ();
    ASSERT_TRUE(MakeTree({"keep/", "keep/sub/", "keep/f"}));
    SmartPtr<IDirectoryPosition> position;
    std::string name;
    ASSERT_TRUE(StartListing(position, name));
    std::vector<std::string> names;
    Path path;
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"recursive Remove", [&] { directories->Remove(Path(Sub("keep")), true, NullResult()); }},
        {"Exists", [&] { directories->Exists(Path(Sub("keep")), NullResult()); }},
        {"GetDirectories", [&] { directories->GetDirectories(Path(Sub("keep")), names, NullResult()); }},
        {"GetFiles", [&] { directories->GetFiles(Path(Sub("keep")), names, NullResult()); }},
        {"FindFirst", [&] { directories->FindFirst(Path(Sub("keep")), position, name, NullResult()); }},
        {"FindNext", [&] { directories->FindNext(position, name, NullResult()); }},
        {"FindRelease", [&] { directories->FindRelease(position, NullResult()); }},
        {"GetCurrent", [&] { directories->GetCurrent(name, NullResult()); }},
        {"GetExecutablePath", [&] { directories->GetExecutablePath(path, NullResult()); }},
        {"Reserved1", [&] { directories->Reserved1(NullResult()); }},
    };
    for (const auto& entry : cases) {
        SCOPED_TRACE(entry.first);
        EXPECT_FATAL_MESSAGE(entry.second(), ResultMessage);
    }
    EXPECT_TRUE(Exists(Sub("keep/sub")));
    EXPECT_TRUE(Exists(Sub("keep/f")));
    _Result result = ResultFail;
    directories->FindRelease(position, result);
    EXPECT_EQ(result, ResultPass);
}

TEST_F(DirectoryManagerTest, NullOutReferencesAreFatal)
{
    SKIP_UNLESS_DIRECTORIES_CAN_BE_READ();
    SmartPtr<IDirectoryPosition> position;
    std::string name;
    ASSERT_TRUE(StartListing(position, name));
    _Result result = ResultFail;
    const Path list(Sub("list"));
    const std::pair<std::function<void()>, const wchar_t*> cases[] = {
        {[&] { directories->GetDirectories(list, NullNames(), result); }, L"DirectoryManager: names NULL reference."},
        {[&] { directories->GetFiles(list, NullNames(), result); }, L"DirectoryManager: names NULL reference."},
        {[&] { directories->FindFirst(list, NullPosition(), name, result); },
         L"DirectoryManager: position NULL reference."},
        {[&] { directories->FindFirst(list, position, NullName(), result); }, L"DirectoryManager: name NULL reference."},
        {[&] { directories->FindNext(position, NullName(), result); }, L"DirectoryManager: name NULL reference."},
        {[&] { directories->FindNext(NullPosition(), name, result); }, L"DirectoryManager: position NULL reference."},
        {[&] { directories->FindRelease(NullPosition(), result); }, L"DirectoryManager: position NULL reference."},
        {[&] { directories->GetCurrent(NullName(), result); }, L"DirectoryManager: current NULL reference."},
        {[&] { directories->GetExecutablePath(NullPath(), result); }, L"DirectoryManager: path NULL reference."},
    };
    for (const auto& entry : cases)
        EXPECT_FATAL_MESSAGE(entry.first(), entry.second);
    directories->FindRelease(position, result);
    EXPECT_EQ(result, ResultPass);
}

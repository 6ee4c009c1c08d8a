// SPDX-License-Identifier: Apache-2.0
// How Discovery::WriteToFile replaces its file: atomically for a reader that
// polls it, and not at all when the disk is full, the directory is read-only
// or the directory is gone. The file-system cases run in a forked child with
// a private mount namespace, so nothing is mounted on the machine itself.

#include <KivDiscoveryClient/Discovery.h>

#include <KivTest/ChildProcess.h>
#include <KivTest/DirectoryListing.h>
#include <KivTest/MountNamespace.h>
#include <KivTest/TemporaryDirectory.h>
#include <KivTest/WorkingDirectoryGuard.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <vector>
#include <signal.h>
#include <string>
#include <sys/inotify.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using KivDiscoveryClient::Discovery;
using KivTest::ChildOutcome;
using KivTest::MountNamespace;
using KivTest::ReadFile;
using KivTest::RunInChild;
using KivTest::TemporaryDirectory;

namespace {

const int Rewrites = 1000;
const int KilledWriters = 200;
/// Real time a writer may take to create its temporary file before the test
/// gives up on the round.
const int CreationLimitMilliseconds = 10000;

bool IsTemporaryFileOf(const std::string& name, const std::string& fileName)
{
    const std::string prefix = "." + fileName + ".";
    return name.size() > prefix.size() + 4 && name.compare(0, prefix.size(), prefix) == 0 &&
           name.compare(name.size() - 4, 4, ".tmp") == 0;
}


bool WriteDescription(const std::string& metadata, std::string& fault)
{
    Discovery description("Management");
    description.AddType("cpp:Management");
    description.SetPort(8080);
    description.SetMetaData(metadata);
    bool written = description.WriteToFile();
    fault = description.ErrorMessage();
    return written;
}

/// For a child: reports a failed check on standard output, which the parent
/// shows, and remembers that the child must fail.
class ChildChecks
{
public:
    void Check(bool condition, const std::string& what)
    {
        if (!condition) {
            std::printf("check failed: %s\n", what.c_str());
            failed = true;
        }
    }
    [[noreturn]] void Finish()
    {
        std::fflush(stdout);
        _exit(failed ? 1 : 0);
    }

private:
    bool failed = false;
};

void ExpectChildPassed(const ChildOutcome& outcome)
{
    EXPECT_TRUE(outcome.exited && outcome.exitStatus == 0) << KivTest::Describe(outcome);
}

class DiscoveryReplacementTest : public ::testing::Test
{
protected:
    /// Skips the test when no private mount namespace can be made here.
    bool NamespacesUnavailable()
    {
        std::string reason;
        if (MountNamespace::Available(reason))
            return false;
        skipReason = reason;
        return true;
    }

    std::string skipReason;

    std::string File() const { return directory.Path() + "/Management.xml"; }

    TemporaryDirectory directory;
};

} // namespace

TEST_F(DiscoveryReplacementTest, PollingReaderAlwaysSeesOneWholeVersion)
{
    KivTest::WorkingDirectoryGuard enter(directory.Path());
    // Two versions of different sizes, large enough to take several writes.
    const std::string small = "small";
    const std::string large(300000, 'L');
    std::string fault;
    ASSERT_TRUE(WriteDescription(small, fault)) << fault;
    const std::string smallFile = ReadFile(File());
    ASSERT_TRUE(WriteDescription(large, fault)) << fault;
    const std::string largeFile = ReadFile(File());
    ASSERT_NE(smallFile, largeFile);

    int stop[2];
    int report[2];
    ASSERT_EQ(pipe(stop), 0);
    ASSERT_EQ(pipe(report), 0);
    std::fflush(nullptr);
    pid_t reader = fork();
    ASSERT_GE(reader, 0);
    if (reader == 0) {
        close(stop[1]);
        close(report[0]);
        long reads = 0;
        long torn = 0;
        long missing = 0;
        std::string content;
        char buffer[65536];
        struct pollfd stopped = {stop[0], POLLIN, 0};
        while (poll(&stopped, 1, 0) == 0) {
            int descriptor = open("Management.xml", O_RDONLY);
            if (descriptor < 0) {
                ++missing;
                continue;
            }
            content.clear();
            ssize_t count;
            while ((count = read(descriptor, buffer, sizeof buffer)) > 0)
                content.append(buffer, static_cast<std::size_t>(count));
            close(descriptor);
            ++reads;
            if (content != smallFile && content != largeFile)
                ++torn;
        }
        char line[128];
        int length = std::snprintf(line, sizeof line, "%ld %ld %ld", reads, torn, missing);
        ssize_t written = write(report[1], line, static_cast<std::size_t>(length));
        _exit(written == length ? 0 : 1);
    }
    close(stop[0]);
    close(report[1]);
    int failures = 0;
    for (int round = 0; round < Rewrites; ++round) {
        if (!WriteDescription(round % 2 == 0 ? small : large, fault))
            ++failures;
    }
    close(stop[1]);
    char line[128] = {0};
    ssize_t count = read(report[0], line, sizeof line - 1);
    close(report[0]);
    int status = 0;
    waitpid(reader, &status, 0);
    ASSERT_GT(count, 0);
    long reads = -1;
    long torn = -1;
    long missing = -1;
    ASSERT_EQ(std::sscanf(line, "%ld %ld %ld", &reads, &torn, &missing), 3) << line;
    EXPECT_EQ(failures, 0) << fault;
    EXPECT_GT(reads, 0);
    EXPECT_EQ(torn, 0) << "of " << reads << " reads";
    EXPECT_EQ(missing, 0) << "of " << reads << " reads";
    EXPECT_EQ(KivTest::ListDirectory(directory.Path()), (std::vector<std::string>{"Management.xml"}));
    EXPECT_EQ(ReadFile(File()), largeFile);
}

TEST_F(DiscoveryReplacementTest, FullFileSystemLeavesThePreviousFileAndNoTemporaryFile)
{
    if (NamespacesUnavailable())
        GTEST_SKIP() << skipReason;
    std::string path = directory.Path();
    ChildOutcome outcome = RunInChild([path] {
        ChildChecks checks;
        std::string fault;
        checks.Check(MountNamespace::Enter(fault), "namespace: " + fault);
        checks.Check(MountNamespace::MountTmpfs(path, fault, "size=256k,mode=0755"), "tmpfs: " + fault);
        checks.Check(chdir(path.c_str()) == 0, "chdir");
        checks.Check(WriteDescription("previous", fault), "first write: " + fault);
        std::string before = ReadFile(path + "/Management.xml");
        // Fill the file system to the last byte.
        int filler = open((path + "/filler").c_str(), O_WRONLY | O_CREAT, 0600);
        char block[4096];
        std::memset(block, 'f', sizeof block);
        while (write(filler, block, sizeof block) > 0) {
        }
        while (write(filler, block, 1) > 0) {
        }
        close(filler);
        checks.Check(!WriteDescription(std::string(20000, 'n'), fault), "write on a full disk succeeded");
        checks.Check(fault.find("No space left on device") != std::string::npos, "message: " + fault);
        checks.Check(fault.find("Management.xml") == 0, "message names the file: " + fault);
        checks.Check(ReadFile(path + "/Management.xml") == before, "previous file changed");
        checks.Check(KivTest::ListDirectory(path) == std::vector<std::string>{"Management.xml", "filler"}, "temporary file left");
        checks.Finish();
    });
    ExpectChildPassed(outcome);
}

TEST_F(DiscoveryReplacementTest, ReadOnlyDirectoryLeavesThePreviousFileAndNoTemporaryFile)
{
    if (NamespacesUnavailable())
        GTEST_SKIP() << skipReason;
    std::string path = directory.Path();
    ChildOutcome outcome = RunInChild([path] {
        ChildChecks checks;
        std::string fault;
        checks.Check(MountNamespace::Enter(fault), "namespace: " + fault);
        checks.Check(chdir(path.c_str()) == 0, "chdir");
        checks.Check(WriteDescription("previous", fault), "first write: " + fault);
        std::string before = ReadFile(path + "/Management.xml");
        // We run as root, so permissions would not stop us: a read-only bind
        // mount does.
        checks.Check(MountNamespace::Bind(path, path, fault), "bind: " + fault);
        checks.Check(mount(nullptr, path.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0,
                     std::string("remount read-only: ") + std::strerror(errno));
        checks.Check(chdir("/") == 0 && chdir(path.c_str()) == 0, "enter the read-only mount");
        checks.Check(!WriteDescription("new", fault), "write into a read-only directory succeeded");
        checks.Check(fault.find("Read-only file system") != std::string::npos, "message: " + fault);
        checks.Check(fault.find("cannot create a temporary file in " + path) != std::string::npos,
                     "message names the directory: " + fault);
        checks.Check(ReadFile(path + "/Management.xml") == before, "previous file changed");
        checks.Check(KivTest::ListDirectory(path) == std::vector<std::string>{"Management.xml"}, "temporary file left");
        checks.Finish();
    });
    ExpectChildPassed(outcome);
    EXPECT_EQ(KivTest::ListDirectory(directory.Path()), (std::vector<std::string>{"Management.xml"}));
}

TEST_F(DiscoveryReplacementTest, MissingDirectoryFailsAndWritesNothingAnywhere)
{
    std::string path = directory.Path();
    std::string gone = path + "/gone";
    std::string sibling = path + "/sibling";
    ChildOutcome outcome = RunInChild([path, gone, sibling] {
        ChildChecks checks;
        checks.Check(mkdir(sibling.c_str(), 0755) == 0 && chdir(sibling.c_str()) == 0, "sibling");
        std::string fault;
        checks.Check(WriteDescription("previous", fault), "first write: " + fault);
        std::string before = ReadFile(sibling + "/Management.xml");
        checks.Check(mkdir(gone.c_str(), 0755) == 0 && chdir(gone.c_str()) == 0 && rmdir(gone.c_str()) == 0,
                     "remove the working directory");
        checks.Check(!WriteDescription("new", fault), "write into a removed directory succeeded");
        checks.Check(fault.find("No such file or directory") != std::string::npos, "message: " + fault);
        checks.Check(fault.find("Management.xml: cannot create a temporary file") == 0, "message: " + fault);
        checks.Check(ReadFile(sibling + "/Management.xml") == before, "previous file changed");
        checks.Check(KivTest::ListDirectory(sibling) == std::vector<std::string>{"Management.xml"}, "sibling changed");
        checks.Check(KivTest::ListDirectory(path) == std::vector<std::string>{"sibling"}, "something appeared in the parent");
        checks.Finish();
    });
    ExpectChildPassed(outcome);
}

TEST_F(DiscoveryReplacementTest, WritersKilledMidWriteLeaveAtMostOneTemporaryFile)
{
    KivTest::WorkingDirectoryGuard enter(directory.Path());
    const std::string first(200000, 'A');
    const std::string second(300000, 'B');
    std::string fault;
    ASSERT_TRUE(WriteDescription(first, fault)) << fault;
    const std::string firstFile = ReadFile(File());
    ASSERT_TRUE(WriteDescription(second, fault)) << fault;
    const std::string secondFile = ReadFile(File());
    const std::vector<std::string> bystanders = {"notes.txt", ".Management.xml.tmp", ".Other.xml.0123456789ab.tmp"};
    for (const std::string& name : bystanders)
        ASSERT_TRUE(KivTest::WriteFile(directory.Path() + "/" + name, "kept"));

    int leftBehind = 0;
    for (int round = 0; round < KilledWriters; ++round) {
        int watch = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
        ASSERT_GE(watch, 0);
        ASSERT_GE(inotify_add_watch(watch, directory.Path().c_str(), IN_CREATE), 0);
        std::fflush(nullptr);
        pid_t writer = fork();
        ASSERT_GE(writer, 0);
        if (writer == 0) {
            for (unsigned version = 0;; ++version) {
                std::string ignored;
                WriteDescription(version % 2 == 0 ? first : second, ignored);
            }
        }
        // Killed as soon as it has created its temporary file: mostly while it
        // writes or flushes, sometimes just after its rename.
        bool created = false;
        struct pollfd ready = {watch, POLLIN, 0};
        while (!created && poll(&ready, 1, CreationLimitMilliseconds) > 0) {
            alignas(struct inotify_event) char events[4096];
            ssize_t length = read(watch, events, sizeof events);
            for (ssize_t offset = 0; offset < length;) {
                // Copied out rather than cast: on 32-bit ARM the cast would
                // assume an alignment the compiler cannot see.
                struct inotify_event event;
                std::memcpy(&event, events + offset, sizeof event);
                const char* name = events + offset + sizeof event;
                if (event.len > 0 && IsTemporaryFileOf(name, "Management.xml"))
                    created = true;
                offset += static_cast<ssize_t>(sizeof event + event.len);
            }
        }
        kill(writer, SIGKILL);
        int status = 0;
        waitpid(writer, &status, 0);
        close(watch);
        ASSERT_TRUE(created) << "round " << round << ": the writer made no temporary file";
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << "round " << round;

        std::vector<std::string> temporaries;
        std::vector<std::string> strangers;
        bool described = false;
        for (const std::string& name : KivTest::ListDirectory(directory.Path())) {
            if (name == "Management.xml")
                described = true;
            else if (IsTemporaryFileOf(name, "Management.xml"))
                temporaries.push_back(name);
            else if (std::find(bystanders.begin(), bystanders.end(), name) == bystanders.end())
                strangers.push_back(name);
        }
        ASSERT_EQ(strangers, std::vector<std::string>()) << "round " << round;
        ASSERT_TRUE(described) << "round " << round;
        ASSERT_LE(temporaries.size(), 1u) << "round " << round << ": " << temporaries.size() << " temporary files";
        leftBehind += static_cast<int>(temporaries.size());
        std::string content = ReadFile(File());
        ASSERT_TRUE(content == firstFile || content == secondFile) << "round " << round << ": a torn description";
    }
    for (const std::string& name : bystanders)
        EXPECT_EQ(ReadFile(directory.Path() + "/" + name), "kept") << name;
    // The next write clears what the last killed writer left.
    ASSERT_TRUE(WriteDescription(first, fault)) << fault;
    std::vector<std::string> expected = bystanders;
    expected.push_back("Management.xml");
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(KivTest::ListDirectory(directory.Path()), expected);
    RecordProperty("KillsThatLeftATemporaryFile", leftBehind);
}

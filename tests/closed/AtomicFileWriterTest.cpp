// SPDX-License-Identifier: Apache-2.0
// Which temporary files AtomicFileWriter::Replace removes before it writes:
// the stale ones of its own file name, and nothing else in the directory.

#include <KivClosed/AtomicFileWriter.h>

#include <KivTest/DirectoryListing.h>
#include <KivTest/TemporaryDirectory.h>
#include <KivTest/WorkingDirectoryGuard.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using KivClosed::AtomicFileWriter;
using KivTest::ListDirectory;
using KivTest::ReadFile;
using KivTest::TemporaryDirectory;
using KivTest::WriteFile;

namespace {

/// A name of the form the writer gives its temporary files of Management.xml.
const char StaleName[] = ".Management.xml.0123456789ab.tmp";

class AtomicFileWriterTest : public ::testing::Test
{
protected:
    std::string In(const std::string& name) const { return directory.Path() + "/" + name; }

    /// Replaces Management.xml in the test directory.
    bool Replace(const std::string& content)
    {
        KivTest::WorkingDirectoryGuard enter(directory.Path());
        std::string fault;
        bool replaced = AtomicFileWriter::Replace("Management.xml", content, 0644, fault);
        EXPECT_TRUE(replaced) << fault;
        return replaced;
    }

    TemporaryDirectory directory;
};

} // namespace

TEST_F(AtomicFileWriterTest, AStaleTemporaryFileOfTheSameNameIsRemovedByTheNextWrite)
{
    // What a writer killed between creating its temporary file and the rename
    // leaves: an unlocked regular file of this user.
    ASSERT_TRUE(WriteFile(In(StaleName), "half a descr"));
    ASSERT_TRUE(Replace("whole"));
    EXPECT_EQ(ListDirectory(directory.Path()), std::vector<std::string>{"Management.xml"});
    EXPECT_EQ(ReadFile(In("Management.xml")), "whole");
}

TEST_F(AtomicFileWriterTest, ATemporaryFileThatALiveWriterHoldsLockedIsKept)
{
    ASSERT_TRUE(WriteFile(In(StaleName), "being written"));
    int held = open(In(StaleName).c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(held, 0);
    ASSERT_EQ(flock(held, LOCK_EX | LOCK_NB), 0);
    bool replaced = Replace("whole");
    std::vector<std::string> whileHeld = ListDirectory(directory.Path());
    close(held);
    ASSERT_TRUE(replaced);
    EXPECT_EQ(whileHeld, (std::vector<std::string>{StaleName, "Management.xml"}));
    EXPECT_EQ(ReadFile(In(StaleName)), "being written");
    // Once its writer is gone, the next write takes it away.
    ASSERT_TRUE(Replace("again"));
    EXPECT_EQ(ListDirectory(directory.Path()), std::vector<std::string>{"Management.xml"});
}

TEST_F(AtomicFileWriterTest, NothingButStaleTemporaryFilesOfItsOwnNameIsTouched)
{
    const std::vector<std::string> regularFiles = {
        "notes.txt",
        "Management.xml.0123456789ab.tmp",       // no leading dot
        ".Management.xml.tmp",                   // no random part
        ".Management.xml.0123456789AB.tmp",      // upper-case digits
        ".Management.xml.0123456789a.tmp",       // eleven digits
        ".Management.xml.0123456789abc.tmp",     // thirteen digits
        ".Management.xml.0123456789ab.tmp.keep", // more after the suffix
        ".Management.xml.0123456789ag.tmp",      // not hexadecimal
        ".Other.xml.0123456789ab.tmp",           // another file's
    };
    for (const std::string& name : regularFiles)
        ASSERT_TRUE(WriteFile(In(name), "kept " + name));
    ASSERT_EQ(mkdir(In(".Management.xml.aaaaaaaaaaaa.tmp").c_str(), 0755), 0);
    ASSERT_TRUE(WriteFile(In("target"), "kept target"));
    ASSERT_EQ(symlink("target", In(".Management.xml.bbbbbbbbbbbb.tmp").c_str()), 0);
    ASSERT_EQ(mkfifo(In(".Management.xml.cccccccccccc.tmp").c_str(), 0644), 0);
    // A file of the right form that belongs to someone else (only root can
    // give one away; elsewhere it stays this user's and is removed).
    std::string foreign = ".Management.xml.dddddddddddd.tmp";
    ASSERT_TRUE(WriteFile(In(foreign), "kept foreign"));
    bool foreignMade = geteuid() == 0 && chown(In(foreign).c_str(), 65534, 65534) == 0;
    ASSERT_TRUE(WriteFile(In(StaleName), "stale"));

    ASSERT_TRUE(Replace("whole"));

    std::vector<std::string> expected = regularFiles;
    for (const char* name : {".Management.xml.aaaaaaaaaaaa.tmp", ".Management.xml.bbbbbbbbbbbb.tmp",
                             ".Management.xml.cccccccccccc.tmp", "Management.xml", "target"})
        expected.push_back(name);
    if (foreignMade)
        expected.push_back(foreign);
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(ListDirectory(directory.Path()), expected);
    for (const std::string& name : regularFiles)
        EXPECT_EQ(ReadFile(In(name)), "kept " + name);
    EXPECT_EQ(ReadFile(In("target")), "kept target");
    if (foreignMade) {
        EXPECT_EQ(ReadFile(In(foreign)), "kept foreign");
    }
    struct stat information;
    ASSERT_EQ(lstat(In(".Management.xml.bbbbbbbbbbbb.tmp").c_str(), &information), 0);
    EXPECT_TRUE(S_ISLNK(information.st_mode));
    ASSERT_EQ(lstat(In(".Management.xml.cccccccccccc.tmp").c_str(), &information), 0);
    EXPECT_TRUE(S_ISFIFO(information.st_mode));
}

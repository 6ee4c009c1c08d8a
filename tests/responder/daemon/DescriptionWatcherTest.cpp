// SPDX-License-Identifier: Apache-2.0
#include <KivResponder/DescriptionWatcher.h>

#include <KivTest/TemporaryDirectory.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

using KivResponder::DescriptionWatcher;
using KivTest::RemoveTree;
using KivTest::TemporaryDirectory;
using KivTest::WriteFile;

namespace {

struct Events
{
    std::set<std::string> names;
    bool rescan = false;
};

// inotify queues its events before the system call that caused them
// returns, so they are all there to read at once: no waiting.
Events Read(DescriptionWatcher& watcher)
{
    Events events;
    watcher.ReadEvents(events.names, events.rescan);
    return events;
}

} // namespace

TEST(DescriptionWatcherTest, DescriptionNamesEndInXmlAndDoNotStartWithADot)
{
    EXPECT_TRUE(DescriptionWatcher::IsDescriptionName("Management.xml"));
    EXPECT_FALSE(DescriptionWatcher::IsDescriptionName(".Management.xml.0a1b2c3d4e5f.tmp"));
    EXPECT_FALSE(DescriptionWatcher::IsDescriptionName(".hidden.xml"));
    EXPECT_FALSE(DescriptionWatcher::IsDescriptionName(".xml"));
    EXPECT_FALSE(DescriptionWatcher::IsDescriptionName("Management.xml~"));
}

TEST(DescriptionWatcherTest, ARenameOverTheDescriptionReportsItsNameOnly)
{
    TemporaryDirectory directory;
    DescriptionWatcher watcher(directory.Path());
    std::string error;
    ASSERT_TRUE(watcher.Start(error)) << error;
    std::string temporary = directory.Path() + "/.Management.xml.0a1b2c3d4e5f.tmp";
    ASSERT_TRUE(WriteFile(temporary, "<service/>"));
    ASSERT_EQ(std::rename(temporary.c_str(), (directory.Path() + "/Management.xml").c_str()), 0);
    Events events = Read(watcher);
    EXPECT_EQ(events.names, std::set<std::string>{"Management.xml"});
    EXPECT_FALSE(events.rescan);
}

TEST(DescriptionWatcherTest, RemovalAndRenameAwayReportTheName)
{
    TemporaryDirectory directory;
    ASSERT_TRUE(WriteFile(directory.Path() + "/A.xml", "a"));
    ASSERT_TRUE(WriteFile(directory.Path() + "/B.xml", "b"));
    DescriptionWatcher watcher(directory.Path());
    std::string error;
    ASSERT_TRUE(watcher.Start(error)) << error;
    ASSERT_EQ(::unlink((directory.Path() + "/A.xml").c_str()), 0);
    ASSERT_EQ(std::rename((directory.Path() + "/B.xml").c_str(), (directory.Path() + "/B.old").c_str()), 0);
    Events events = Read(watcher);
    EXPECT_EQ(events.names, (std::set<std::string>{"A.xml", "B.xml"}));
}

TEST(DescriptionWatcherTest, NothingPendingReadsNothing)
{
    TemporaryDirectory directory;
    DescriptionWatcher watcher(directory.Path());
    std::string error;
    ASSERT_TRUE(watcher.Start(error)) << error;
    Events events = Read(watcher);
    EXPECT_TRUE(events.names.empty());
    EXPECT_FALSE(events.rescan);
}

TEST(DescriptionWatcherTest, ADirectoryMadeLaterIsWatchedAndAsksForARescan)
{
    TemporaryDirectory parent;
    std::string path = parent.Path() + "/discovery";
    DescriptionWatcher watcher(path);
    std::string error;
    ASSERT_TRUE(watcher.Start(error)) << error;
    EXPECT_FALSE(watcher.WatchingDirectory());
    ASSERT_EQ(::mkdir(path.c_str(), 0755), 0);
    EXPECT_TRUE(Read(watcher).rescan);
    EXPECT_TRUE(watcher.WatchingDirectory());
    ASSERT_TRUE(WriteFile(path + "/Management.xml", "x"));
    EXPECT_EQ(Read(watcher).names, std::set<std::string>{"Management.xml"});
}

TEST(DescriptionWatcherTest, ARemovedDirectoryAsksForARescanAndIsWaitedForAgain)
{
    TemporaryDirectory parent;
    std::string path = parent.Path() + "/discovery";
    ASSERT_EQ(::mkdir(path.c_str(), 0755), 0);
    DescriptionWatcher watcher(path);
    std::string error;
    ASSERT_TRUE(watcher.Start(error)) << error;
    RemoveTree(path);
    EXPECT_TRUE(Read(watcher).rescan);
    EXPECT_FALSE(watcher.WatchingDirectory());
    ASSERT_EQ(::mkdir(path.c_str(), 0755), 0);
    EXPECT_TRUE(Read(watcher).rescan);
    EXPECT_TRUE(watcher.WatchingDirectory());
}

TEST(DescriptionWatcherTest, ListGivesTheSortedDescriptionNames)
{
    TemporaryDirectory directory;
    for (const char* name : {"B.xml", "A.xml", ".A.xml.0a1b2c3d4e5f.tmp", "notes.txt"})
        ASSERT_TRUE(WriteFile(directory.Path() + "/" + name, "x"));
    EXPECT_EQ(DescriptionWatcher::List(directory.Path()), (std::vector<std::string>{"A.xml", "B.xml"}));
    EXPECT_TRUE(DescriptionWatcher::List(directory.Path() + "/missing").empty());
}

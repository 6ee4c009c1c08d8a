// SPDX-License-Identifier: Apache-2.0
#include <KivDiscoveryClient/Discovery.h>

#include <KivDiscoveryClient/DescriptionReader.h>
#include <KivTest/ChildProcess.h>
#include <KivTest/DirectoryListing.h>
#include <KivTest/Emulation.h>
#include <KivTest/TemporaryDirectory.h>
#include <KivTest/WorkingDirectoryGuard.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <random>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using KivDiscoveryClient::DescriptionReader;
using KivDiscoveryClient::Discovery;
using KivTest::ReadFile;
using KivTest::TemporaryDirectory;
using KivTest::WriteFile;

namespace {

const std::string Scope = "http://standards.kivotrel.example/2011/videoprocessor/trx";


Discovery Management(const std::string& metadata, unsigned short port = 8080)
{
    Discovery description("Management");
    description.AddType("cpp:Management");
    description.AddScope(Scope);
    description.SetPort(port);
    description.SetMetaData(metadata);
    return description;
}

class DiscoveryTest : public ::testing::Test
{
protected:
    std::string File(const std::string& name = "Management.xml") const { return directory.Path() + "/" + name; }

    TemporaryDirectory directory;
};

} // namespace

TEST_F(DiscoveryTest, WritesTheDescriptionLayout)
{
    KivTest::WorkingDirectoryGuard enter(directory.Path());
    Discovery description = Management("<cpp:Config><Description>a&b</Description></cpp:Config>");
    ASSERT_TRUE(description.WriteToFile()) << description.ErrorMessage();
    EXPECT_EQ(description.ErrorMessage(), "");
    EXPECT_EQ(ReadFile(File()),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<service name=\"Management\">\n"
              "  <type>cpp:Management</type>\n"
              "  <scope>http://standards.kivotrel.example/2011/videoprocessor/trx</scope>\n"
              "  <port>8080</port>\n"
              "  <metadata>&lt;cpp:Config&gt;&lt;Description&gt;a&amp;b&lt;/Description&gt;&lt;/cpp:Config&gt;"
              "</metadata>\n"
              "</service>\n");
}

TEST_F(DiscoveryTest, NewDescriptionHasPortZeroAndNothingElse)
{
    KivTest::WorkingDirectoryGuard enter(directory.Path());
    Discovery description("Bare");
    EXPECT_EQ(description.Port(), 0u);
    ASSERT_TRUE(description.WriteToFile());
    EXPECT_EQ(ReadFile(File("Bare.xml")), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<service name=\"Bare\">\n"
                                          "  <port>0</port>\n  <metadata></metadata>\n</service>\n");
}

TEST_F(DiscoveryTest, TypesAndScopesAreWrittenInCallOrderAndTheLastPortAndMetadataWin)
{
    KivTest::WorkingDirectoryGuard enter(directory.Path());
    Discovery description("Order");
    description.AddScope("s1");
    description.AddType("t1");
    description.AddType("t2");
    description.AddScope("s2");
    description.AddType("t1");
    description.SetPort(1);
    description.SetPort(65535);
    description.SetMetaData("first");
    description.SetMetaData("second");
    ASSERT_TRUE(description.WriteToFile());
    DescriptionReader reader;
    ASSERT_TRUE(reader.Load(File("Order.xml").c_str())) << reader.ErrorMessage();
    EXPECT_EQ(reader.Types(), (std::vector<std::string>{"t1", "t2", "t1"}));
    EXPECT_EQ(reader.Scopes(), (std::vector<std::string>{"s1", "s2"}));
    EXPECT_EQ(reader.Port(), 65535u);
    EXPECT_EQ(reader.MetaData(), "second");
}

TEST_F(DiscoveryTest, WritesIntoTheCurrentWorkingDirectory)
{
    std::string inner = directory.Path() + "/inner";
    ASSERT_EQ(mkdir(inner.c_str(), 0755), 0);
    KivTest::WorkingDirectoryGuard enter(inner);
    ASSERT_TRUE(Management("m").WriteToFile());
    EXPECT_EQ(KivTest::ListDirectory(inner), (std::vector<std::string>{"Management.xml"}));
    EXPECT_EQ(KivTest::ListDirectory(directory.Path()), (std::vector<std::string>{"inner"}));
}

TEST_F(DiscoveryTest, FileModeIs0644WhateverTheUmask)
{
    KivTest::WorkingDirectoryGuard enter(directory.Path());
    mode_t previous = umask(0077);
    bool written = Management("m").WriteToFile();
    umask(0002);
    bool rewritten = Discovery("Other").WriteToFile();
    umask(previous);
    ASSERT_TRUE(written);
    ASSERT_TRUE(rewritten);
    struct stat status;
    ASSERT_EQ(stat(File().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0644u);
    ASSERT_EQ(stat(File("Other.xml").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0644u);
}

TEST_F(DiscoveryTest, LaterWriteReplacesTheEarlierFileAndLeavesNoTemporaryFile)
{
    KivTest::WorkingDirectoryGuard enter(directory.Path());
    ASSERT_TRUE(Management(std::string(100000, 'a')).WriteToFile());
    ASSERT_TRUE(Management("short", 80).WriteToFile());
    DescriptionReader reader;
    ASSERT_TRUE(reader.Load(File().c_str()));
    EXPECT_EQ(reader.MetaData(), "short");
    EXPECT_EQ(reader.Port(), 80u);
    EXPECT_EQ(KivTest::ListDirectory(directory.Path()), (std::vector<std::string>{"Management.xml"}));
}

TEST_F(DiscoveryTest, UnrepresentableTextFailsWithoutWriting)
{
    KivTest::WorkingDirectoryGuard enter(directory.Path());
    ASSERT_TRUE(Management("previous").WriteToFile());
    std::string previous = ReadFile(File());
    struct Case
    {
        const char* where;
        std::string text;
        std::string fault;
    };
    const std::vector<Case> cases = {
        {"metadata", std::string("a\x01"), "metadata: character U+0001 is not allowed in XML (at byte 1)"},
        {"metadata", std::string("nul\0", 4), "metadata: character U+0000 is not allowed in XML (at byte 3)"},
        {"metadata", "caf\xC3", "metadata: truncated UTF-8 sequence at the end of the text (at byte 3)"},
        {"metadata", "\xEF\xBF\xBF", "metadata: character U+FFFF is not allowed in XML (at byte 0)"},
        {"type", "\x7F\x1B", "type 2: character U+001B is not allowed in XML (at byte 1)"},
        {"scope", "\xED\xA0\x80", "scope 2: invalid UTF-8 sequence starting with byte 0xED (at byte 0)"},
        {"name", "Manage\x0Bment", "name: character U+000B is not allowed in XML (at byte 6)"},
        {"name", "\xFF", "name: invalid UTF-8 byte 0xFF (at byte 0)"},
    };
    for (const Case& sample : cases) {
        Discovery description(sample.where == std::string("name") ? sample.text : "Management");
        description.AddType("cpp:Management");
        description.AddScope(Scope);
        if (sample.where == std::string("metadata"))
            description.SetMetaData(sample.text);
        if (sample.where == std::string("type"))
            description.AddType(sample.text);
        if (sample.where == std::string("scope"))
            description.AddScope(sample.text);
        EXPECT_FALSE(description.WriteToFile()) << sample.fault;
        EXPECT_EQ(description.ErrorMessage(), description.FileName() + ": not written: " + sample.fault);
        EXPECT_EQ(ReadFile(File()), previous);
        EXPECT_EQ(KivTest::ListDirectory(directory.Path()), (std::vector<std::string>{"Management.xml"})) << sample.fault;
    }
}

TEST_F(DiscoveryTest, NameThatIsNotAPlainFileNameFailsWithoutWriting)
{
    std::string inner = directory.Path() + "/inner";
    ASSERT_EQ(mkdir(inner.c_str(), 0755), 0);
    KivTest::WorkingDirectoryGuard enter(inner);
    const std::vector<std::string> names = {"", ".", "..", "a/b", "/Management", "../Management", "x/",
                                            std::string("Manage\0ment", 11)};
    for (const std::string& name : names) {
        Discovery description(name);
        description.SetMetaData("m");
        EXPECT_FALSE(description.WriteToFile()) << name;
        std::string shown = name;
        for (char& current : shown)
            current = current == '\0' ? '?' : current;
        EXPECT_EQ(description.ErrorMessage(), "description name \"" + shown + "\" is not a plain file name");
    }
    EXPECT_TRUE(KivTest::ListDirectory(inner).empty());
    EXPECT_EQ(KivTest::ListDirectory(directory.Path()), (std::vector<std::string>{"inner"}));
    EXPECT_NE(access("/Management.xml", F_OK), 0);
}

TEST_F(DiscoveryTest, NamesWithDotsAndOtherCharactersAreFileNames)
{
    KivTest::WorkingDirectoryGuard enter(directory.Path());
    for (const std::string name : {"...", ".hidden", "a b", "caf\xC3\xA9", "tab\there", "quote\"&<>"}) {
        Discovery description(name);
        ASSERT_TRUE(description.WriteToFile()) << name << ": " << description.ErrorMessage();
        DescriptionReader reader;
        ASSERT_TRUE(reader.Load(File(name + ".xml").c_str())) << reader.ErrorMessage();
        EXPECT_EQ(reader.Name(), name);
    }
}

TEST_F(DiscoveryTest, NameTooLongForTheFileSystemFailsWithoutWriting)
{
    KivTest::WorkingDirectoryGuard enter(directory.Path());
    Discovery description(std::string(252, 'n'));
    EXPECT_FALSE(description.WriteToFile());
    EXPECT_NE(description.ErrorMessage().find("File name too long"), std::string::npos)
        << description.ErrorMessage();
    EXPECT_TRUE(KivTest::ListDirectory(directory.Path()).empty());
}

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/io/FileManager.h>
#include <KivPlr/io/LinuxFileStream.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>
#include <KivTest/OpenDescriptors.h>
#include <KivTest/TemporaryDirectory.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <functional>
#include <string>
#include <type_traits>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

using namespace KivPlr;
using KivTest::DescriptorFlags;
using KivTest::DescriptorsOpenOn;
using KivTest::ReadFile;
using KivTest::TemporaryDirectory;
using KivTest::WriteFile;

namespace {

KIV_NULL_REFERENCE(NullResult, _Result)
KIV_NULL_REFERENCE(NullStream, SmartPtr<IStream>)
KIV_NULL_REFERENCE(NullInfo, FileInfo)

const std::string OldContent = "old content";

// A null result reference handed on to a Linux result converter ends the
// process with the converter's own message, after the system call.
const wchar_t* const ConverterMessage = L"LinuxResultPassFail: result NULL reference.";

ino_t InodeOf(const std::string& path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

bool IsMissing(const std::string& path)
{
    struct stat status;
    return lstat(path.c_str(), &status) != 0 && errno == ENOENT;
}

mode_t CurrentUmask()
{
    mode_t mask = umask(022);
    umask(mask);
    return mask;
}

mode_t PermissionsOf(const std::string& path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0 ? (status.st_mode & 07777) : 0;
}

class FileManagerTest : public ::testing::Test
{
protected:
    std::string File(const std::string& name) const { return directory.Path() + "/" + name; }

    TemporaryDirectory directory;
    SmartPtr<IFileManager> files{new FileManager};
};

} // namespace

TEST_F(FileManagerTest, NewManagerHasCountZero)
{
    FileManager* manager = new FileManager;
    IFileManager* asInterface = manager;
    EXPECT_EQ(asInterface->GetReferenceCount(), 0u);
    SmartPtr<IFileManager> owner(manager);
}

// Every disposition 0..7 with every access 0..3, on an existing and on a
// missing file: the outcome, the access mode the kernel reports, whether the
// file was replaced (a new inode), created or truncated.
TEST_F(FileManagerTest, OpenFollowsTheDispositionAndAccessTable)
{
    const mode_t expectedMode = 0644 & ~CurrentUmask();
    const int accessModes[4] = {O_RDONLY, O_RDONLY, O_WRONLY, O_RDWR};
    for (int existing = 0; existing < 2; ++existing) {
        for (std::uint32_t disposition = 0; disposition < 8; ++disposition) {
            for (std::uint32_t access = 0; access < 4; ++access) {
                std::string name = File("case-" + std::to_string(existing) + "-" + std::to_string(disposition) +
                                        "-" + std::to_string(access));
                SCOPED_TRACE(name);
                ino_t oldInode = 0;
                int keeper = -1; // keeps the old inode alive, so a new file cannot reuse its number
                if (existing) {
                    ASSERT_TRUE(WriteFile(name, OldContent));
                    oldInode = InodeOf(name);
                    keeper = open(name.c_str(), O_RDONLY);
                    ASSERT_GE(keeper, 0);
                }

                SmartPtr<IStream> stream;
                _Result result = ResultPass;
                files->Open(Path(name), disposition, access, stream, result);

                std::uint32_t kind = disposition & 3;
                bool truncate = (disposition & 4) != 0;
                bool shouldOpen = existing ? kind != 1 : kind != 0;
                if (!shouldOpen) {
                    EXPECT_EQ(result, ResultFail);
                    EXPECT_FALSE(stream);
                    if (existing) {
                        EXPECT_EQ(InodeOf(name), oldInode);
                        EXPECT_EQ(ReadFile(name), OldContent);
                    } else {
                        EXPECT_TRUE(IsMissing(name));
                    }
                } else {
                    EXPECT_EQ(result, ResultPass);
                    ASSERT_TRUE(stream);
                    std::vector<int> descriptors = DescriptorsOpenOn(name);
                    if (existing)
                        descriptors.erase(std::remove(descriptors.begin(), descriptors.end(), keeper),
                                          descriptors.end());
                    ASSERT_EQ(descriptors.size(), 1u);
                    EXPECT_EQ(DescriptorFlags(descriptors[0]) & O_ACCMODE, accessModes[access]);
                    if (existing) {
                        if (kind == 3)
                            EXPECT_NE(InodeOf(name), oldInode);
                        else
                            EXPECT_EQ(InodeOf(name), oldInode);
                        bool emptied = truncate || kind == 3;
                        EXPECT_EQ(ReadFile(name), emptied ? std::string() : OldContent);
                    } else {
                        EXPECT_EQ(ReadFile(name), "");
                        EXPECT_EQ(PermissionsOf(name), expectedMode);
                    }
                }
                if (keeper >= 0) {
                    // The old inode: emptied when truncated in place, else
                    // untouched (also when a new file replaced its name).
                    bool emptiedInPlace = shouldOpen && truncate && kind != 3;
                    char buffer[32] = {};
                    ssize_t got = read(keeper, buffer, sizeof buffer);
                    EXPECT_EQ(std::string(buffer, got > 0 ? static_cast<std::size_t>(got) : 0),
                              emptiedInPlace ? std::string() : OldContent);
                    close(keeper);
                }
            }
        }
    }
}

TEST_F(FileManagerTest, OpenCreateNewOnExistingFileFails)
{
    ASSERT_TRUE(WriteFile(File("a"), OldContent));
    SmartPtr<IStream> stream;
    _Result result = ResultPass;
    files->Open(Path(File("a")), FileCreateNew, FileAccessWrite, stream, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_FALSE(stream);
    EXPECT_EQ(ReadFile(File("a")), OldContent);
}

TEST_F(FileManagerTest, OpenAlwaysOpensExistingFileWithoutChangingIt)
{
    ASSERT_TRUE(WriteFile(File("a"), OldContent));
    SmartPtr<IStream> stream;
    _Result result = ResultFail;
    files->Open(Path(File("a")), FileOpenAlways, FileAccessRead, stream, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(stream->GetSize(), static_cast<std::int64_t>(OldContent.size()));
}

TEST_F(FileManagerTest, OpenCreateAlwaysReplacesFileWithNewEmptyOne)
{
    ASSERT_TRUE(WriteFile(File("a"), OldContent));
    int keeper = open(File("a").c_str(), O_RDONLY);
    ASSERT_GE(keeper, 0);
    ino_t oldInode = InodeOf(File("a"));
    SmartPtr<IStream> stream;
    _Result result = ResultFail;
    files->Open(Path(File("a")), FileCreateAlways, FileAccessRead | FileAccessWrite, stream, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_NE(InodeOf(File("a")), oldInode);
    EXPECT_EQ(ReadFile(File("a")), "");
    close(keeper);
}

TEST_F(FileManagerTest, OpenExistingOnMissingFileFails)
{
    SmartPtr<IStream> stream;
    _Result result = ResultPass;
    files->Open(Path(File("missing")), FileOpenExisting, FileAccessRead, stream, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_TRUE(IsMissing(File("missing")));
}

TEST_F(FileManagerTest, TruncateAloneOpensExistingFileAndEmptiesIt)
{
    ASSERT_TRUE(WriteFile(File("a"), OldContent));
    ino_t oldInode = InodeOf(File("a"));
    SmartPtr<IStream> stream;
    _Result result = ResultFail;
    files->Open(Path(File("a")), FileTruncate, FileAccessWrite, stream, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(InodeOf(File("a")), oldInode);
    EXPECT_EQ(ReadFile(File("a")), "");

    result = ResultPass;
    files->Open(Path(File("missing")), FileTruncate, FileAccessWrite, stream, result);
    EXPECT_EQ(result, ResultFail);
}

TEST_F(FileManagerTest, OpenAlwaysWithTruncateCreatesOrTruncates)
{
    ASSERT_TRUE(WriteFile(File("a"), OldContent));
    SmartPtr<IStream> stream;
    _Result result = ResultFail;
    files->Open(Path(File("a")), FileOpenAlways | FileTruncate, FileAccessWrite, stream, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(ReadFile(File("a")), "");

    result = ResultFail;
    files->Open(Path(File("b")), FileOpenAlways | FileTruncate, FileAccessWrite, stream, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_FALSE(IsMissing(File("b")));
}

TEST_F(FileManagerTest, AccessZeroOpensReadOnly)
{
    ASSERT_TRUE(WriteFile(File("a"), OldContent));
    SmartPtr<IStream> stream;
    _Result result = ResultFail;
    files->Open(Path(File("a")), FileOpenExisting, 0, stream, result);
    ASSERT_EQ(result, ResultPass);
    std::vector<int> descriptors = DescriptorsOpenOn(File("a"));
    ASSERT_EQ(descriptors.size(), 1u);
    EXPECT_EQ(DescriptorFlags(descriptors[0]) & O_ACCMODE, O_RDONLY);
    std::uint64_t written = 7;
    stream->Write("x", 1, 0, 1, written, result);
    EXPECT_EQ(result, ResultFail);
}

TEST_F(FileManagerTest, OpenIgnoresHigherBitsOfDispositionAndAccess)
{
    ASSERT_TRUE(WriteFile(File("a"), OldContent));
    SmartPtr<IStream> stream;
    _Result result = ResultFail;
    // 0xF0 | 2: open always, no truncation; 0x10 | 3: read and write.
    files->Open(Path(File("a")), 0xF0u | FileOpenAlways, 0x10u | FileAccessRead | FileAccessWrite, stream, result);
    ASSERT_EQ(result, ResultPass);
    std::vector<int> descriptors = DescriptorsOpenOn(File("a"));
    ASSERT_EQ(descriptors.size(), 1u);
    EXPECT_EQ(DescriptorFlags(descriptors[0]) & O_ACCMODE, O_RDWR);
    EXPECT_EQ(ReadFile(File("a")), OldContent);
}

TEST_F(FileManagerTest, OpenReplacesTheHeldStreamAndReleasesIt)
{
    ASSERT_TRUE(WriteFile(File("a"), "a"));
    ASSERT_TRUE(WriteFile(File("b"), "b"));
    SmartPtr<IStream> stream;
    _Result result = ResultFail;
    files->OpenRead(Path(File("a")), stream, result);
    ASSERT_EQ(result, ResultPass);
    ASSERT_EQ(DescriptorsOpenOn(File("a")).size(), 1u);
    files->OpenRead(Path(File("b")), stream, result);
    ASSERT_EQ(result, ResultPass);
    EXPECT_TRUE(DescriptorsOpenOn(File("a")).empty());
    EXPECT_EQ(DescriptorsOpenOn(File("b")).size(), 1u);
    EXPECT_EQ(stream->GetReferenceCount(), 1u);
}

TEST_F(FileManagerTest, FailedOpenLeavesTheHeldStreamAlone)
{
    ASSERT_TRUE(WriteFile(File("a"), "a"));
    SmartPtr<IStream> stream;
    _Result result = ResultFail;
    files->OpenRead(Path(File("a")), stream, result);
    ASSERT_EQ(result, ResultPass);
    IStream* held = stream.Get();
    for (std::uint32_t disposition : {FileOpenExisting, FileCreateNew}) {
        files->Open(Path(disposition == FileCreateNew ? File("a") : File("missing")), disposition, FileAccessRead,
                    stream, result);
        EXPECT_EQ(result, ResultFail);
        EXPECT_EQ(stream.Get(), held);
    }
    files->OpenRead(Path(File("missing")), stream, result);
    EXPECT_EQ(result, ResultFail);
    files->OpenWrite(Path(File("missing")), stream, result);
    EXPECT_EQ(result, ResultFail);
    files->OpenReadWrite(Path(File("missing")), stream, result);
    EXPECT_EQ(result, ResultFail);
    files->CreateNew(Path(File("a")), stream, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(stream.Get(), held);
    EXPECT_EQ(DescriptorsOpenOn(File("a")).size(), 1u);
}

TEST_F(FileManagerTest, FixedOpenersUseTheirAccessModesWithoutCreatingOrTruncating)
{
    struct Case
    {
        void (IFileManager::*opener)(const Path&, SmartPtr<IStream>&, _Result&);
        int accessMode;
    };
    const Case cases[] = {{&IFileManager::OpenRead, O_RDONLY},
                          {&IFileManager::OpenReadWrite, O_RDWR},
                          {&IFileManager::OpenWrite, O_WRONLY}};
    for (const Case& entry : cases) {
        SCOPED_TRACE(entry.accessMode);
        ASSERT_TRUE(WriteFile(File("a"), OldContent));
        SmartPtr<IStream> stream;
        _Result result = ResultFail;
        ((*files).*entry.opener)(Path(File("a")), stream, result);
        ASSERT_EQ(result, ResultPass);
        std::vector<int> descriptors = DescriptorsOpenOn(File("a"));
        ASSERT_EQ(descriptors.size(), 1u);
        EXPECT_EQ(DescriptorFlags(descriptors[0]) & O_ACCMODE, entry.accessMode);
        EXPECT_EQ(ReadFile(File("a")), OldContent);

        result = ResultPass;
        ((*files).*entry.opener)(Path(File("missing")), stream, result);
        EXPECT_EQ(result, ResultFail);
        EXPECT_TRUE(IsMissing(File("missing")));
    }
}

TEST_F(FileManagerTest, CreateNewMakesFileOpenForReadingAndWriting)
{
    SmartPtr<IStream> stream;
    _Result result = ResultFail;
    files->CreateNew(Path(File("new")), stream, result);
    ASSERT_EQ(result, ResultPass);
    std::vector<int> descriptors = DescriptorsOpenOn(File("new"));
    ASSERT_EQ(descriptors.size(), 1u);
    EXPECT_EQ(DescriptorFlags(descriptors[0]) & O_ACCMODE, O_RDWR);
    EXPECT_EQ(PermissionsOf(File("new")), 0644 & ~CurrentUmask());
}

TEST_F(FileManagerTest, CreateNewOnExistingFileFails)
{
    ASSERT_TRUE(WriteFile(File("a"), OldContent));
    SmartPtr<IStream> stream;
    _Result result = ResultPass;
    files->CreateNew(Path(File("a")), stream, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_FALSE(stream);
    EXPECT_EQ(ReadFile(File("a")), OldContent);
}

TEST_F(FileManagerTest, CreateFileMakesEmptyFileAndClosesIt)
{
    _Result result = ResultFail;
    files->CreateFile(Path(File("new")), result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(ReadFile(File("new")), "");
    EXPECT_EQ(PermissionsOf(File("new")), 0644 & ~CurrentUmask());
    EXPECT_TRUE(DescriptorsOpenOn(File("new")).empty());
}

TEST_F(FileManagerTest, CreateFileOnExistingFileFailsAndKeepsIt)
{
    ASSERT_TRUE(WriteFile(File("a"), OldContent));
    _Result result = ResultPass;
    files->CreateFile(Path(File("a")), result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(ReadFile(File("a")), OldContent);

    result = ResultPass;
    files->CreateFile(Path(File("no-such-directory/a")), result);
    EXPECT_EQ(result, ResultFail);
}

TEST_F(FileManagerTest, ExistsIsTrueOnlyForRegularFiles)
{
    ASSERT_TRUE(WriteFile(File("file"), "x"));
    ASSERT_EQ(mkdir(File("directory").c_str(), 0755), 0);
    ASSERT_EQ(mkfifo(File("fifo").c_str(), 0644), 0);
    ASSERT_EQ(symlink(File("file").c_str(), File("link-to-file").c_str()), 0);
    ASSERT_EQ(symlink(File("directory").c_str(), File("link-to-directory").c_str()), 0);
    ASSERT_EQ(symlink(File("missing").c_str(), File("dangling").c_str()), 0);
    const std::pair<std::string, _Result> cases[] = {
        {File("file"), ResultPass},       {File("link-to-file"), ResultPass}, {File("directory"), ResultFail},
        {File("link-to-directory"), ResultFail}, {File("fifo"), ResultFail}, {File("missing"), ResultFail},
        {File("dangling"), ResultFail},   {"/dev/null", ResultFail},
    };
    for (const auto& entry : cases) {
        _Result result = 0;
        files->Exists(Path(entry.first), result);
        EXPECT_EQ(result, entry.second) << entry.first;
    }
}

TEST_F(FileManagerTest, DeleteRemovesNameAndFailsOnMissingOne)
{
    ASSERT_TRUE(WriteFile(File("a"), "x"));
    _Result result = ResultFail;
    files->Delete(Path(File("a")), result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_TRUE(IsMissing(File("a")));
    files->Delete(Path(File("a")), result);
    EXPECT_EQ(result, ResultFail);
}

TEST_F(FileManagerTest, MoveRenamesAndFailsOnMissingSource)
{
    ASSERT_TRUE(WriteFile(File("a"), OldContent));
    _Result result = ResultFail;
    files->Move(Path(File("a")), Path(File("b")), result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_TRUE(IsMissing(File("a")));
    EXPECT_EQ(ReadFile(File("b")), OldContent);
    files->Move(Path(File("a")), Path(File("c")), result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_TRUE(IsMissing(File("c")));
}

TEST_F(FileManagerTest, LinkGivesTheSameFileASecondName)
{
    ASSERT_TRUE(WriteFile(File("a"), OldContent));
    _Result result = ResultFail;
    files->Link(Path(File("a")), Path(File("b")), false, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(InodeOf(File("a")), InodeOf(File("b")));
}

TEST_F(FileManagerTest, LinkWithoutReplaceFailsOnExistingName)
{
    ASSERT_TRUE(WriteFile(File("a"), OldContent));
    ASSERT_TRUE(WriteFile(File("b"), "other"));
    _Result result = ResultPass;
    files->Link(Path(File("a")), Path(File("b")), false, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(ReadFile(File("b")), "other");
}

TEST_F(FileManagerTest, LinkWithReplaceDeletesExistingNameFirst)
{
    ASSERT_TRUE(WriteFile(File("a"), OldContent));
    ASSERT_TRUE(WriteFile(File("b"), "other"));
    _Result result = ResultFail;
    files->Link(Path(File("a")), Path(File("b")), true, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(InodeOf(File("a")), InodeOf(File("b")));

    // A missing new name is no error for the replacement.
    files->Link(Path(File("a")), Path(File("c")), true, result);
    EXPECT_EQ(result, ResultPass);
}

TEST_F(FileManagerTest, LinkWithReplaceFromMissingSourceStillDeletesTheNewName)
{
    ASSERT_TRUE(WriteFile(File("b"), "other"));
    _Result result = ResultPass;
    files->Link(Path(File("missing")), Path(File("b")), true, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_TRUE(IsMissing(File("b")));
}

TEST_F(FileManagerTest, GetInfoOnDirectoryReportsDirectoryAndSizeZero)
{
    ASSERT_EQ(mkdir(File("directory").c_str(), 0755), 0);
    ASSERT_EQ(chmod(File("directory").c_str(), 0755), 0);
    FileInfo info;
    info.size = 99;
    _Result result = ResultFail;
    files->GetInfo(Path(File("directory")), info, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(info.attributes, FileAttributeDirectory);
    EXPECT_EQ(info.attributes, 16u);
    EXPECT_EQ(info.size, 0);

    ASSERT_EQ(chmod(File("directory").c_str(), 0500), 0);
    files->GetInfo(Path(File("directory")), info, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(info.attributes, 17u);
    EXPECT_EQ(info.size, 0);
}

TEST_F(FileManagerTest, GetInfoOnRegularFiles)
{
    ASSERT_TRUE(WriteFile(File("file"), OldContent));
    ASSERT_EQ(chmod(File("file").c_str(), 0644), 0);
    ASSERT_TRUE(WriteFile(File("read-only"), "abc"));
    ASSERT_EQ(chmod(File("read-only").c_str(), 0444), 0);
    ASSERT_TRUE(WriteFile(File("write-only"), "abc"));
    ASSERT_EQ(chmod(File("write-only").c_str(), 0200), 0);
    FileInfo info;
    _Result result = ResultFail;
    files->GetInfo(Path(File("file")), info, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(info.attributes, 128u);
    EXPECT_EQ(info.size, static_cast<std::int64_t>(OldContent.size()));
    files->GetInfo(Path(File("read-only")), info, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(info.attributes, 129u);
    EXPECT_EQ(info.size, 3);
    files->GetInfo(Path(File("write-only")), info, result);
    EXPECT_EQ(info.attributes, 128u);
}

TEST_F(FileManagerTest, GetInfoFollowsSymbolicLinks)
{
    ASSERT_TRUE(WriteFile(File("file"), OldContent));
    ASSERT_EQ(chmod(File("file").c_str(), 0444), 0);
    ASSERT_EQ(mkdir(File("directory").c_str(), 0755), 0);
    ASSERT_EQ(chmod(File("directory").c_str(), 0755), 0);
    ASSERT_EQ(symlink(File("file").c_str(), File("link-to-file").c_str()), 0);
    ASSERT_EQ(symlink(File("directory").c_str(), File("link-to-directory").c_str()), 0);
    FileInfo info;
    _Result result = ResultFail;
    files->GetInfo(Path(File("link-to-file")), info, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(info.attributes, 129u);
    EXPECT_EQ(info.size, static_cast<std::int64_t>(OldContent.size()));
    files->GetInfo(Path(File("link-to-directory")), info, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(info.attributes, 16u);
    EXPECT_EQ(info.size, 0);
}

TEST_F(FileManagerTest, GetInfoMarksFifosAndSocketsAsSpecial)
{
    ASSERT_EQ(mkfifo(File("fifo").c_str(), 0644), 0);
    ASSERT_EQ(chmod(File("fifo").c_str(), 0644), 0);
    ASSERT_EQ(mkfifo(File("read-only-fifo").c_str(), 0444), 0);
    ASSERT_EQ(chmod(File("read-only-fifo").c_str(), 0444), 0);
    int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_GE(listener, 0);
    struct sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::string socketPath = File("socket");
    ASSERT_LT(socketPath.size(), sizeof address.sun_path);
    std::strcpy(address.sun_path, socketPath.c_str());
    ASSERT_EQ(bind(listener, reinterpret_cast<struct sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(chmod(socketPath.c_str(), 0755), 0);

    FileInfo info;
    _Result result = ResultFail;
    files->GetInfo(Path(File("fifo")), info, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(info.attributes, 2u);
    EXPECT_EQ(info.size, 0);
    files->GetInfo(Path(File("read-only-fifo")), info, result);
    EXPECT_EQ(info.attributes, 3u);
    files->GetInfo(Path(socketPath), info, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(info.attributes, 2u);
    close(listener);
}

TEST_F(FileManagerTest, GetInfoGivesCharacterDevicesNoTypeBit)
{
    FileInfo info;
    _Result result = ResultFail;
    files->GetInfo(Path("/dev/null"), info, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(info.attributes, 0u); // rw for its owner: not read-only either
}

TEST_F(FileManagerTest, GetInfoMarksBlockDevices)
{
    // A device node in the test's own directory; its device is never opened.
    if (mknod(File("block").c_str(), S_IFBLK | 0644, makedev(7, 200)) != 0)
        GTEST_SKIP() << "cannot make a block device node here: " << std::strerror(errno);
    ASSERT_EQ(chmod(File("block").c_str(), 0644), 0);
    ASSERT_EQ(mknod(File("read-only-block").c_str(), S_IFBLK | 0444, makedev(7, 201)), 0);
    ASSERT_EQ(chmod(File("read-only-block").c_str(), 0444), 0);
    FileInfo info;
    _Result result = ResultFail;
    files->GetInfo(Path(File("block")), info, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(info.attributes, 4u);
    files->GetInfo(Path(File("read-only-block")), info, result);
    EXPECT_EQ(info.attributes, 5u);
}

TEST_F(FileManagerTest, GetInfoReportsTheThreeTimes)
{
    ASSERT_TRUE(WriteFile(File("file"), OldContent));
    std::time_t before = std::time(nullptr);
    struct timespec times[2] = {{1000000000, 0}, {1234567890, 0}}; // access, modification
    ASSERT_EQ(utimensat(AT_FDCWD, File("file").c_str(), times, 0), 0);
    std::time_t after = std::time(nullptr);
    FileInfo info;
    _Result result = ResultFail;
    files->GetInfo(Path(File("file")), info, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(info.accessTime, 1000000000u);
    EXPECT_EQ(info.modifyTime, 1234567890u);
    EXPECT_GE(info.changeTime, static_cast<std::uint32_t>(before));
    EXPECT_LE(info.changeTime, static_cast<std::uint32_t>(after));
}

TEST_F(FileManagerTest, GetInfoOnMissingPathFailsAndLeavesRecordAlone)
{
    FileInfo info;
    info.attributes = 7;
    info.changeTime = 8;
    info.accessTime = 9;
    info.modifyTime = 10;
    info.size = 11;
    _Result result = ResultPass;
    files->GetInfo(Path(File("missing")), info, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(info.attributes, 7u);
    EXPECT_EQ(info.changeTime, 8u);
    EXPECT_EQ(info.accessTime, 9u);
    EXPECT_EQ(info.modifyTime, 10u);
    EXPECT_EQ(info.size, 11);
}

TEST(FileInfoTest, FieldsHaveTheirFixedWidths)
{
    FileInfo info;
    static_assert(sizeof info.attributes == 4, "attributes are 32 bits");
    static_assert(sizeof info.changeTime == 4 && sizeof info.accessTime == 4 && sizeof info.modifyTime == 4,
                  "times are 32-bit seconds");
    static_assert(sizeof info.size == 8 && std::is_signed<decltype(info.size)>::value, "size is signed 64 bits");
    EXPECT_EQ(info.attributes, 0u);
    EXPECT_EQ(info.size, 0);
}

TEST_F(FileManagerTest, DeleteWithNullResultUnlinksThenEnds)
{
    ASSERT_TRUE(WriteFile(File("a"), OldContent));
    EXPECT_FATAL_MESSAGE(files->Delete(Path(File("a")), NullResult()), ConverterMessage);
    EXPECT_TRUE(IsMissing(File("a")));
}

TEST_F(FileManagerTest, MoveWithNullResultRenamesThenEnds)
{
    ASSERT_TRUE(WriteFile(File("a"), OldContent));
    EXPECT_FATAL_MESSAGE(files->Move(Path(File("a")), Path(File("c")), NullResult()), ConverterMessage);
    EXPECT_TRUE(IsMissing(File("a")));
    EXPECT_EQ(ReadFile(File("c")), OldContent);
}

TEST_F(FileManagerTest, LinkWithNullResultReplacesAndLinksThenEnds)
{
    ASSERT_TRUE(WriteFile(File("a"), OldContent));
    ASSERT_TRUE(WriteFile(File("d"), "replaced"));
    EXPECT_FATAL_MESSAGE(files->Link(Path(File("a")), Path(File("d")), true, NullResult()), ConverterMessage);
    EXPECT_EQ(InodeOf(File("d")), InodeOf(File("a")));
}

TEST_F(FileManagerTest, OtherOperationsWithNullResultAreFatalAndTouchNothing)
{
    ASSERT_TRUE(WriteFile(File("a"), OldContent));
    SmartPtr<IStream> stream;
    FileInfo info;
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"CreateFile", [&] { files->CreateFile(Path(File("b")), NullResult()); }},
        {"Exists", [&] { files->Exists(Path(File("a")), NullResult()); }},
        {"Open afresh", [&] { files->Open(Path(File("a")), FileCreateAlways, FileAccessWrite, stream, NullResult()); }},
        {"Open new", [&] { files->Open(Path(File("b")), FileCreateNew, FileAccessWrite, stream, NullResult()); }},
        {"OpenRead", [&] { files->OpenRead(Path(File("a")), stream, NullResult()); }},
        {"OpenReadWrite", [&] { files->OpenReadWrite(Path(File("a")), stream, NullResult()); }},
        {"OpenWrite", [&] { files->OpenWrite(Path(File("a")), stream, NullResult()); }},
        {"CreateNew", [&] { files->CreateNew(Path(File("b")), stream, NullResult()); }},
        {"GetInfo", [&] { files->GetInfo(Path(File("a")), info, NullResult()); }},
    };
    const ino_t inode = InodeOf(File("a"));
    for (const auto& entry : cases) {
        SCOPED_TRACE(entry.first);
        EXPECT_FATAL_MESSAGE(entry.second(), L"FileManager: result NULL reference.");
    }
    EXPECT_EQ(ReadFile(File("a")), OldContent);
    EXPECT_EQ(InodeOf(File("a")), inode);
    EXPECT_TRUE(IsMissing(File("b")));
}

TEST_F(FileManagerTest, NullOutReferencesAreFatalAndTouchNothing)
{
    ASSERT_TRUE(WriteFile(File("a"), OldContent));
    _Result result = ResultFail;
    const wchar_t* const streamMessage = L"FileManager: stream NULL reference.";
    const std::pair<std::function<void()>, const wchar_t*> cases[] = {
        {[&] { files->Open(Path(File("a")), FileCreateAlways, FileAccessWrite, NullStream(), result); }, streamMessage},
        {[&] { files->Open(Path(File("b")), FileOpenAlways, FileAccessWrite, NullStream(), result); }, streamMessage},
        {[&] { files->OpenRead(Path(File("a")), NullStream(), result); }, streamMessage},
        {[&] { files->OpenReadWrite(Path(File("a")), NullStream(), result); }, streamMessage},
        {[&] { files->OpenWrite(Path(File("a")), NullStream(), result); }, streamMessage},
        {[&] { files->CreateNew(Path(File("b")), NullStream(), result); }, streamMessage},
        {[&] { files->GetInfo(Path(File("a")), NullInfo(), result); }, L"FileManager: info NULL reference."},
    };
    const ino_t inode = InodeOf(File("a"));
    for (const auto& entry : cases)
        EXPECT_FATAL_MESSAGE(entry.first(), entry.second);
    EXPECT_EQ(ReadFile(File("a")), OldContent);
    EXPECT_EQ(InodeOf(File("a")), inode);
    EXPECT_TRUE(IsMissing(File("b")));
}

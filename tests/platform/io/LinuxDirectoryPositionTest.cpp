// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/io/LinuxDirectoryPosition.h>
#include <KivTest/DirectoryReading.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>
#include <KivTest/OpenDescriptors.h>
#include <KivTest/TemporaryDirectory.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <unistd.h>

using namespace KivPlr;
using KivTest::DescriptorsOpenOn;
using KivTest::TemporaryDirectory;

namespace {

KIV_NULL_REFERENCE(NullResult, _Result)
KIV_NULL_REFERENCE(NullPath, Path)

class LinuxDirectoryPositionTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        handle = opendir(directory.Path().c_str());
        ASSERT_NE(handle, nullptr);
        position = new LinuxDirectoryPosition(handle, Path(directory.Path()));
    }

    void TearDown() override
    {
        // The position never closes its stream; the test does.
        position.Reset();
        if (handle != nullptr)
            closedir(handle);
    }

    // The identity of the class with \p size bytes: cut short, or followed by
    // extra bytes.
    static Uuid IdentityOfSize(std::size_t size)
    {
        Uuid identity;
        identity.bytes = LinuxDirectoryPosition::ClassId().bytes;
        identity.bytes.resize(size, 0x55);
        return identity;
    }

    TemporaryDirectory directory;
    DIR* handle = nullptr;
    SmartPtr<IDirectoryPosition> position;
};

} // namespace

TEST_F(LinuxDirectoryPositionTest, NewPositionHasCountZero)
{
    LinuxDirectoryPosition* fresh = new LinuxDirectoryPosition(nullptr, Path("/"));
    IDirectoryPosition* asInterface = fresh;
    EXPECT_EQ(asInterface->GetReferenceCount(), 0u);
    SmartPtr<IDirectoryPosition> owner(fresh);
}

TEST_F(LinuxDirectoryPositionTest, ClassIdIsSixteenFixedBytes)
{
    const std::vector<unsigned char> expected = {0xd1, 0x68, 0xb7, 0xa6, 0x17, 0x27, 0x40, 0xeb,
                                                 0xac, 0x9a, 0xe1, 0xf2, 0x82, 0x93, 0x65, 0xf0};
    EXPECT_EQ(LinuxDirectoryPosition::ClassId().bytes, expected);
    EXPECT_EQ(&LinuxDirectoryPosition::ClassId(), &LinuxDirectoryPosition::ClassId());
}

TEST_F(LinuxDirectoryPositionTest, QueryForItsOwnIdentityGivesTheObjectWithoutAReference)
{
    void* raw = nullptr;
    _Result result = ResultFail;
    EXPECT_TRUE(position->QueryInterface(&LinuxDirectoryPosition::ClassId(), &raw, result));
    EXPECT_EQ(result, ResultPass);
    ASSERT_NE(raw, nullptr);
    LinuxDirectoryPosition* concrete = static_cast<LinuxDirectoryPosition*>(raw);
    EXPECT_EQ(concrete, dynamic_cast<LinuxDirectoryPosition*>(position.Get()));
    EXPECT_EQ(concrete->GetHandle(), handle);
    EXPECT_EQ(position->GetReferenceCount(), 1u);
}

TEST_F(LinuxDirectoryPositionTest, QueryComparesTheIdentityOverItsOwnLength)
{
    void* raw = nullptr;
    _Result result = ResultFail;
    Uuid longer = IdentityOfSize(20);
    EXPECT_TRUE(position->QueryInterface(&longer, &raw, result));
    EXPECT_EQ(result, ResultPass);

    Uuid shorter = IdentityOfSize(15);
    raw = nullptr;
    EXPECT_FALSE(position->QueryInterface(&shorter, &raw, result));
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(raw, nullptr);
}

TEST_F(LinuxDirectoryPositionTest, QueryForAnyOtherIdentityFails)
{
    Uuid other = IdentityOfSize(16);
    other.bytes[3] = 0xa5; // a neighbour of the same family
    Uuid empty;
    for (const Uuid* identity : {static_cast<const Uuid*>(&other), static_cast<const Uuid*>(&empty),
                                 static_cast<const Uuid*>(nullptr)}) {
        void* raw = nullptr;
        _Result result = ResultPass;
        EXPECT_FALSE(position->QueryInterface(identity, &raw, result));
        EXPECT_EQ(result, ResultFail);
        EXPECT_EQ(raw, nullptr);
    }
    _Result result = ResultPass;
    EXPECT_FALSE(position->QueryInterface(&LinuxDirectoryPosition::ClassId(), nullptr, result));
    EXPECT_EQ(result, ResultFail);
}

TEST_F(LinuxDirectoryPositionTest, GetPathCopiesTheStoredPath)
{
    Path copy("/elsewhere");
    _Result result = ResultFail;
    position->GetPath(copy, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(std::string(copy.GetPath()), directory.Path());
}

TEST_F(LinuxDirectoryPositionTest, NullReferencesAreFatal)
{
    Path copy;
    _Result result = ResultFail;
    void* raw = nullptr;
    LinuxDirectoryPosition* concrete = new LinuxDirectoryPosition(nullptr, Path("/"));
    SmartPtr<IDirectoryPosition> owner(concrete);
    EXPECT_FATAL_MESSAGE(position->GetPath(copy, NullResult()), L"LinuxDirectoryPosition: result NULL reference.");
    EXPECT_FATAL_MESSAGE(position->GetPath(NullPath(), result), L"LinuxDirectoryPosition: path NULL reference.");
    EXPECT_FATAL_MESSAGE(concrete->QueryInterfaceImpl(&LinuxDirectoryPosition::ClassId(), &raw, NullResult()),
                         L"LinuxDirectoryPosition: result NULL reference.");
}

TEST_F(LinuxDirectoryPositionTest, DestroyingThePositionLeavesTheStreamOpen)
{
    std::string reason;
    if (!KivTest::CanReadDirectory(directory.Path(), reason))
        GTEST_SKIP() << reason;
    ASSERT_EQ(DescriptorsOpenOn(directory.Path()).size(), 1u);
    position.Reset();
    EXPECT_EQ(DescriptorsOpenOn(directory.Path()).size(), 1u);
    EXPECT_NE(fcntl(dirfd(handle), F_GETFD), -1);
    EXPECT_NE(readdir(handle), nullptr); // still usable
}

TEST_F(LinuxDirectoryPositionTest, ForgetHandleDropsTheStream)
{
    void* raw = nullptr;
    _Result result = ResultFail;
    ASSERT_TRUE(position->QueryInterface(&LinuxDirectoryPosition::ClassId(), &raw, result));
    LinuxDirectoryPosition* concrete = static_cast<LinuxDirectoryPosition*>(raw);
    concrete->ForgetHandle();
    EXPECT_EQ(concrete->GetHandle(), nullptr);
}

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/InterfaceIdentifiers.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

using namespace KivPlr;

namespace {

typedef std::vector<unsigned char> Bytes;

// What a static constructor of another module saw of the constants: the
// library's own constructors must already have run.
struct SeenAtStart
{
    SeenAtStart()
        : object(ObjectInterfaceId.bytes), clock(ClockInterfaceId.bytes),
          platform(PlatformInterfaceId.bytes)
    {
    }
    Bytes object;
    Bytes clock;
    Bytes platform;
};

const SeenAtStart seenAtStart;

} // namespace

TEST(InterfaceIdentifiersTest, ObjectIdentifierBytes)
{
    EXPECT_EQ(ObjectInterfaceId.bytes, (Bytes{0x76, 0xb5, 0x5f, 0x90, 0x3d, 0x41, 0x4f, 0xc3,
                                               0x9c, 0xb1, 0x73, 0xab, 0x2e, 0x7e, 0x2f, 0x59}));
}

TEST(InterfaceIdentifiersTest, ClockIdentifierBytes)
{
    EXPECT_EQ(ClockInterfaceId.bytes, (Bytes{0xd1, 0x68, 0xb7, 0xa4, 0x17, 0x27, 0x40, 0xeb,
                                              0xac, 0x9a, 0xe1, 0xf2, 0x82, 0x93, 0x65, 0xf0}));
}

TEST(InterfaceIdentifiersTest, PlatformIdentifierBytes)
{
    EXPECT_EQ(PlatformInterfaceId.bytes, (Bytes{0xd1, 0x68, 0xb7, 0xa5, 0x17, 0x27, 0x40, 0xeb,
                                                 0xac, 0x9a, 0xe1, 0xf2, 0x82, 0x93, 0x65, 0xf0}));
}

TEST(InterfaceIdentifiersTest, ClockAndPlatformDifferInFourthByteOnly)
{
    ASSERT_EQ(ClockInterfaceId.bytes.size(), PlatformInterfaceId.bytes.size());
    for (std::size_t index = 0; index < ClockInterfaceId.bytes.size(); ++index) {
        if (index == 3)
            EXPECT_EQ(PlatformInterfaceId.bytes[index], ClockInterfaceId.bytes[index] + 1);
        else
            EXPECT_EQ(PlatformInterfaceId.bytes[index], ClockInterfaceId.bytes[index]) << index;
    }
}

TEST(InterfaceIdentifiersTest, ConstantsAreCompleteForStaticConstructors)
{
    EXPECT_EQ(seenAtStart.object, ObjectInterfaceId.bytes);
    EXPECT_EQ(seenAtStart.clock, ClockInterfaceId.bytes);
    EXPECT_EQ(seenAtStart.platform, PlatformInterfaceId.bytes);
    EXPECT_EQ(seenAtStart.object.size(), Uuid::Size);
}

TEST(InterfaceIdentifiersTest, ConstantsAreDistinct)
{
    EXPECT_NE(ObjectInterfaceId, ClockInterfaceId);
    EXPECT_NE(ObjectInterfaceId, PlatformInterfaceId);
    EXPECT_NE(ClockInterfaceId, PlatformInterfaceId);
}

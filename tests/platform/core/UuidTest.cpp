// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/Uuid.h>

#include <gtest/gtest.h>

#include <memory>
#include <utility>

using namespace KivPlr;

namespace {

typedef std::vector<unsigned char> Bytes;

const unsigned char SomeValue[Uuid::Size] = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77,
                                             0x88, 0x99, 0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff};

// A class built on Uuid, destroyed through a Uuid pointer.
class CountedUuid : public Uuid
{
public:
    explicit CountedUuid(int* destructions) : destructions(destructions) {}
    ~CountedUuid() override { ++*destructions; }

private:
    int* destructions;
};

} // namespace

TEST(UuidTest, DefaultUuidHoldsNoBytes)
{
    EXPECT_TRUE(Uuid().bytes.empty());
}

TEST(UuidTest, ValueConstructorHoldsTheSixteenBytesInOrder)
{
    Uuid uuid(SomeValue);
    EXPECT_EQ(uuid.bytes, Bytes(SomeValue, SomeValue + Uuid::Size));
}

TEST(UuidTest, CopiesAreEqualAndIndependent)
{
    Uuid original(SomeValue);
    Uuid copy(original);
    EXPECT_EQ(copy, original);
    copy.bytes[0] = 0x42;
    EXPECT_NE(copy, original);
    EXPECT_EQ(original.bytes[0], 0x00);

    Uuid assigned;
    assigned = original;
    EXPECT_EQ(assigned, original);
}

TEST(UuidTest, MovingTakesTheBytes)
{
    Uuid source(SomeValue);
    Uuid moved(std::move(source));
    EXPECT_EQ(moved.bytes, Bytes(SomeValue, SomeValue + Uuid::Size));
    Uuid target;
    target = std::move(moved);
    EXPECT_EQ(target.bytes, Bytes(SomeValue, SomeValue + Uuid::Size));
}

TEST(UuidTest, EqualityComparesAllBytes)
{
    EXPECT_EQ(Uuid(), Uuid());
    Uuid value(SomeValue);
    Uuid longer(SomeValue);
    longer.bytes.push_back(0);
    EXPECT_NE(value, longer);
    EXPECT_NE(value, Uuid());
    Uuid lastDiffers(SomeValue);
    lastDiffers.bytes[15] ^= 1;
    EXPECT_NE(value, lastDiffers);
    EXPECT_FALSE(value != Uuid(SomeValue));
}

TEST(UuidTest, DerivedUuidIsDestroyedThroughBasePointer)
{
    int destructions = 0;
    {
        std::unique_ptr<Uuid> uuid(new CountedUuid(&destructions));
    }
    EXPECT_EQ(destructions, 1);
}

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/core/UuidGenerator.h>
#include <KivTest/ChildProcess.h>
#include <KivTest/NullReference.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <set>
#include <thread>
#include <vector>

using namespace KivPlr;

KIV_NULL_REFERENCE(NullResultReference, KivPlr::_Result)
KIV_NULL_REFERENCE(NullUuidReference, KivPlr::Uuid)

namespace {

typedef std::vector<unsigned char> Bytes;

// A generator whose draw is fixed, to see what Generate does with a value.
class FixedDrawGenerator : public UuidGenerator
{
public:
    explicit FixedDrawGenerator(const unsigned char (&value)[Uuid::Size])
    {
        std::memcpy(fixed, value, sizeof fixed);
    }

    int draws = 0;

protected:
    void Draw(unsigned char (&value)[Uuid::Size]) override
    {
        ++draws;
        std::memcpy(value, fixed, sizeof fixed);
    }

private:
    unsigned char fixed[Uuid::Size];
};

Uuid Generated(IUuidGenerator& generator)
{
    Uuid uuid;
    _Result result = ResultFail;
    generator.Generate(uuid, result);
    EXPECT_EQ(result, ResultPass);
    return uuid;
}

// The size of a Uuid that held \p startSize bytes, after one real draw.
std::size_t SizeAfterGenerate(std::size_t startSize)
{
    SmartPtr<IUuidGenerator> generator(new UuidGenerator);
    Uuid uuid;
    uuid.bytes.assign(startSize, 0xEE);
    _Result result = ResultFail;
    generator->Generate(uuid, result);
    EXPECT_EQ(result, ResultPass);
    return uuid.bytes.size();
}

bool HasVersionFour(const Bytes& bytes)
{
    return (bytes[6] & 0xF0) == 0x40;
}

bool HasVariantTen(const Bytes& bytes)
{
    return (bytes[8] & 0xC0) == 0x80;
}

} // namespace

TEST(UuidGeneratorTest, NewGeneratorHasCountZero)
{
    UuidGenerator* generator = new UuidGenerator;
    IUuidGenerator* asInterface = generator;
    EXPECT_EQ(asInterface->GetReferenceCount(), 0u);
    SmartPtr<IUuidGenerator> owner(generator);
    EXPECT_EQ(owner->GetReferenceCount(), 1u);
}

TEST(UuidGeneratorTest, GenerateCutsTwentyByteUuidToSixteen)
{
    EXPECT_EQ(SizeAfterGenerate(20), Uuid::Size);
}

TEST(UuidGeneratorTest, GenerateExtendsEmptyUuidToSixteen)
{
    EXPECT_EQ(SizeAfterGenerate(0), Uuid::Size);
    EXPECT_EQ(SizeAfterGenerate(15), Uuid::Size);
}

TEST(UuidGeneratorTest, GenerateCopiesTheDrawnBytesExactly)
{
    const unsigned char value[Uuid::Size] = {1, 2,  3,  4,  5,  6,  7,  8,
                                             9, 10, 11, 12, 13, 14, 15, 16};
    SmartPtr<IUuidGenerator> generator(new FixedDrawGenerator(value));
    for (std::size_t startSize : {std::size_t(0), std::size_t(3), std::size_t(16), std::size_t(20)}) {
        Uuid uuid;
        uuid.bytes.assign(startSize, 0xEE);
        _Result result = ResultFail;
        generator->Generate(uuid, result);
        EXPECT_EQ(result, ResultPass);
        EXPECT_EQ(uuid.bytes, Bytes(value, value + Uuid::Size)) << startSize;
    }
}

TEST(UuidGeneratorTest, AllZeroDrawFailsAndLeavesUuidUnchanged)
{
    const unsigned char zero[Uuid::Size] = {};
    FixedDrawGenerator* drawer = new FixedDrawGenerator(zero);
    SmartPtr<IUuidGenerator> generator(drawer);

    Uuid uuid;
    uuid.bytes.assign(20, 0xEE);
    _Result result = ResultPass;
    generator->Generate(uuid, result);
    EXPECT_EQ(drawer->draws, 1);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(uuid.bytes, Bytes(20, 0xEE));

    Uuid empty;
    generator->Generate(empty, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_TRUE(empty.bytes.empty());
}

TEST(UuidGeneratorTest, OneNonZeroByteMakesADrawValid)
{
    unsigned char almostZero[Uuid::Size] = {};
    almostZero[15] = 0x01;
    SmartPtr<IUuidGenerator> generator(new FixedDrawGenerator(almostZero));
    Uuid uuid;
    _Result result = ResultFail;
    generator->Generate(uuid, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(uuid.bytes, Bytes(almostZero, almostZero + Uuid::Size));
}

// One run of draws checks both properties: every draw seeds a new engine,
// which is the slow part, so the draws are not made twice.
TEST(UuidGeneratorTest, EveryIdentifierHasVersionFourAndVariantTenAndNoneRepeats)
{
    SmartPtr<IUuidGenerator> generator(new UuidGenerator);
    std::set<Bytes> seen;
    for (int draw = 0; draw < 10000; ++draw) {
        const Uuid uuid = Generated(*generator);
        ASSERT_EQ(uuid.bytes.size(), Uuid::Size);
        ASSERT_TRUE(HasVersionFour(uuid.bytes)) << "byte 6: " << int(uuid.bytes[6]);
        ASSERT_TRUE(HasVariantTen(uuid.bytes)) << "byte 8: " << int(uuid.bytes[8]);
        ASSERT_TRUE(seen.insert(uuid.bytes).second) << "repeated at draw " << draw;
    }
}

TEST(UuidGeneratorTest, TwoCallsGiveDifferentIdentifiers)
{
    SmartPtr<IUuidGenerator> generator(new UuidGenerator);
    const Uuid first = Generated(*generator);
    const Uuid second = Generated(*generator);
    EXPECT_NE(first, second);
}

TEST(UuidGeneratorTest, TwoGeneratorsGiveDifferentIdentifiers)
{
    // Each call seeds its own engine: two generators made at the same moment
    // do not walk the same sequence.
    SmartPtr<IUuidGenerator> one(new UuidGenerator);
    SmartPtr<IUuidGenerator> other(new UuidGenerator);
    std::set<Bytes> seen;
    for (int draw = 0; draw < 100; ++draw) {
        ASSERT_TRUE(seen.insert(Generated(*one).bytes).second);
        ASSERT_TRUE(seen.insert(Generated(*other).bytes).second);
    }
}

TEST(UuidGeneratorTest, OneGeneratorServesSeveralThreadsAtOnce)
{
    SmartPtr<IUuidGenerator> generator(new UuidGenerator);
    const int threadCount = 4;
    const int drawsPerThread = 250;
    std::vector<std::vector<Bytes>> drawn(threadCount);
    std::vector<std::thread> threads;
    for (int index = 0; index < threadCount; ++index) {
        threads.emplace_back([&generator, &drawn, index] {
            for (int draw = 0; draw < drawsPerThread; ++draw) {
                Uuid uuid;
                _Result result = ResultFail;
                generator->Generate(uuid, result);
                if (result == ResultPass)
                    drawn[index].push_back(uuid.bytes);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    std::set<Bytes> seen;
    for (const std::vector<Bytes>& values : drawn) {
        EXPECT_EQ(values.size(), static_cast<std::size_t>(drawsPerThread));
        for (const Bytes& value : values) {
            EXPECT_EQ(value.size(), Uuid::Size);
            EXPECT_TRUE(seen.insert(value).second);
        }
    }
}

TEST(UuidGeneratorTest, NullResultReferenceExitsSilently)
{
    SmartPtr<IUuidGenerator> generator(new UuidGenerator);
    Uuid uuid;
    EXPECT_FATAL_SILENT(generator->Generate(uuid, NullResultReference()));
}

TEST(UuidGeneratorTest, NullUuidReferenceExitsSilently)
{
    SmartPtr<IUuidGenerator> generator(new UuidGenerator);
    _Result result = ResultFail;
    EXPECT_FATAL_SILENT(generator->Generate(NullUuidReference(), result));
}

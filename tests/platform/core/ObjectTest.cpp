// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/Object.h>
#include <KivPlr/core/ReferenceCounter.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <thread>
#include <vector>

using namespace KivPlr;

namespace {

// A plain platform object that reports its destruction.
class Probe : public Object
{
public:
    explicit Probe(bool* destroyed = nullptr) : destroyed(destroyed) {}
    ~Probe() override
    {
        if (destroyed != nullptr)
            *destroyed = true;
    }

private:
    bool* destroyed;
};

} // namespace

TEST(ObjectTest, FreshObjectHasCountZeroAndOneHolder)
{
    Probe* probe = new Probe;
    EXPECT_EQ(probe->GetReferenceCount(), 0u);
    EXPECT_EQ(probe->GetReferenceCounter()->Read(), 0u);
    EXPECT_EQ(probe->GetReferenceCounter()->ReadHolders(), 1u);
    SmartPtr<IObject> owner(probe);
}

TEST(ObjectTest, WrappingGivesOneAndDroppingDestroys)
{
    bool destroyed = false;
    Probe* probe = new Probe(&destroyed);
    {
        SmartPtr<IObject> owner(probe);
        EXPECT_EQ(probe->GetReferenceCount(), 1u);
    }
    EXPECT_TRUE(destroyed);
}

TEST(ObjectTest, AddRefReturnsNewCountAndReleaseReportsDestruction)
{
    bool destroyed = false;
    Probe* probe = new Probe(&destroyed);
    EXPECT_EQ(probe->AddRef(), 1u);
    EXPECT_EQ(probe->AddRef(), 2u);
    EXPECT_EQ(probe->Release(), 0u);
    EXPECT_FALSE(destroyed);
    EXPECT_NE(probe->Release(), 0u);
    EXPECT_TRUE(destroyed);
}

TEST(ObjectTest, ReleaseOnCountZeroWrapsAndDestroysNothing)
{
    bool destroyed = false;
    Probe* probe = new Probe(&destroyed);
    EXPECT_EQ(probe->Release(), 0u);
    EXPECT_FALSE(destroyed);
    EXPECT_EQ(probe->GetReferenceCount(), 0xFFFFFFFFu);
    // Two increments bring the wrapped count back to 1; the last release ends it.
    probe->AddRef();
    probe->AddRef();
    EXPECT_EQ(probe->GetReferenceCount(), 1u);
    EXPECT_NE(probe->Release(), 0u);
    EXPECT_TRUE(destroyed);
}

TEST(ObjectTest, QueryInterfaceAnswersNotSupported)
{
    SmartPtr<Probe> probe(new Probe);
    _Result result = ResultPass;
    void* view = nullptr;
    EXPECT_FALSE(probe->QueryInterface(nullptr, &view, result));
    EXPECT_EQ(result, ResultNotSupported);
    EXPECT_EQ(view, nullptr);
}

TEST(ObjectTest, QueryInterfaceWithANullResultReferenceIsFatal)
{
    SmartPtr<Probe> probe(new Probe);
    void* view = nullptr;
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<_Result>(
                             [&](_Result& none) { probe->QueryInterface(nullptr, &view, none); }),
                         L"Object: result NULL reference.");
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<_Result>(
                             [&](_Result& none) { probe->QueryInterfaceImpl(nullptr, &view, none); }),
                         L"Object: result NULL reference.");
}

TEST(ObjectTest, CounterBlockOutlivesObjectWhileHeld)
{
    bool destroyed = false;
    Probe* probe = new Probe(&destroyed);
    ReferenceCounter* block = nullptr;
    {
        SmartPtr<IObject> owner(probe);
        block = probe->GetReferenceCounter();
        EXPECT_EQ(block->Hold(), 2u);
        EXPECT_EQ(block->IncrementUnlessZero(), 1u);  // promotion while alive
        EXPECT_EQ(probe->GetReferenceCount(), 2u);
        probe->Release();
    }
    EXPECT_TRUE(destroyed);
    // The object is gone; its block is still ours to read.
    EXPECT_EQ(block->Read(), 0u);
    EXPECT_EQ(block->ReadHolders(), 1u);
    block->Unhold();
}

TEST(ObjectTest, IncrementUnlessZeroOnDeadObjectFails)
{
    Probe* probe = new Probe;
    ReferenceCounter* block = probe->GetReferenceCounter();
    block->Hold();
    SmartPtr<IObject>(probe).Reset();
    EXPECT_EQ(block->IncrementUnlessZero(), 0u);
    EXPECT_EQ(block->Read(), 0u);
    block->Unhold();
}

TEST(ObjectTest, ConcurrentAddRefReleaseLeavesCountExact)
{
    SmartPtr<Probe> probe(new Probe);
    constexpr int threadCount = 4;
    constexpr int pairs = 1000000;
    std::vector<std::thread> threads;
    for (int index = 0; index < threadCount; ++index) {
        threads.emplace_back([&probe] {
            Probe* raw = probe.Get();
            for (int pair = 0; pair < pairs; ++pair) {
                raw->AddRef();
                raw->Release();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(probe->GetReferenceCount(), 1u);
}

TEST(ObjectTest, ConcurrentAddRefAloneCountsEveryIncrement)
{
    Probe* probe = new Probe;
    constexpr int threadCount = 4;
    constexpr int increments = 250000;
    std::vector<std::thread> threads;
    for (int index = 0; index < threadCount; ++index)
        threads.emplace_back([probe] {
            for (int step = 0; step < increments; ++step)
                probe->AddRef();
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(probe->GetReferenceCount(), static_cast<std::uint32_t>(threadCount * increments));
    for (int step = 1; step < threadCount * increments; ++step)
        probe->Release();
    EXPECT_NE(probe->Release(), 0u);
}

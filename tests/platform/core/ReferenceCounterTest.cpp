// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/Object.h>
#include <KivPlr/core/ReferenceCounter.h>
#include <KivPlr/core/SmartPtr.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <thread>
#include <vector>

using namespace KivPlr;

namespace {

// The block is only ever made by Object; a bare Object gives us one.
class Holder : public Object
{
};

} // namespace

TEST(ReferenceCounterTest, OperationsReturnTheirDocumentedValues)
{
    SmartPtr<Holder> holder(new Holder);
    ReferenceCounter* block = holder->GetReferenceCounter();
    EXPECT_EQ(block->Read(), 1u);
    EXPECT_EQ(block->Increment(), 2u);
    EXPECT_EQ(block->Decrement(), 1u);
    EXPECT_EQ(block->Increment(), 2u);
    EXPECT_EQ(block->ReleaseTest(), 0u);  // 2 -> 1
    EXPECT_EQ(block->Hold(), 2u);
    block->Unhold();
    EXPECT_EQ(block->ReadHolders(), 1u);
}

TEST(ReferenceCounterTest, ReleaseTestIsOneOnlyWhenReachingZero)
{
    Holder* holder = new Holder;
    ReferenceCounter* block = holder->GetReferenceCounter();
    block->Increment();
    EXPECT_EQ(block->ReleaseTest(), 1u);
    EXPECT_EQ(block->ReleaseTest(), 0u);  // wraps to 0xFFFFFFFF
    EXPECT_EQ(block->Increment(), 0u);
    SmartPtr<Holder> owner(holder);       // 1, and destroyed at the end
}

TEST(ReferenceCounterTest, IncrementUnlessZeroRefusesZero)
{
    Holder* holder = new Holder;
    ReferenceCounter* block = holder->GetReferenceCounter();
    EXPECT_EQ(block->IncrementUnlessZero(), 0u);
    EXPECT_EQ(block->Read(), 0u);
    SmartPtr<Holder> owner(holder);
    EXPECT_EQ(block->IncrementUnlessZero(), 1u);
    EXPECT_EQ(block->Read(), 2u);
    block->Decrement();
}

TEST(ReferenceCounterTest, ConcurrentHoldsAndPromotionsLeaveBothWordsExact)
{
    SmartPtr<Holder> holder(new Holder);
    ReferenceCounter* block = holder->GetReferenceCounter();
    constexpr int threadCount = 4;
    constexpr int rounds = 200000;
    std::vector<std::thread> threads;
    for (int index = 0; index < threadCount; ++index) {
        threads.emplace_back([block] {
            for (int round = 0; round < rounds; ++round) {
                block->Hold();
                if (block->IncrementUnlessZero() != 0)
                    block->Decrement();
                block->Unhold();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(block->Read(), 1u);
    EXPECT_EQ(block->ReadHolders(), 1u);
}

TEST(ReferenceCounterTest, ConcurrentUnholdsFreeTheBlockOnlyAfterTheLast)
{
    constexpr int threadCount = 4;
    Holder* holder = new Holder;
    ReferenceCounter* block = holder->GetReferenceCounter();
    for (int index = 0; index < threadCount; ++index)
        block->Hold();
    SmartPtr<Holder>(holder).Reset();  // the object is gone; the holds keep the block
    EXPECT_EQ(block->ReadHolders(), static_cast<std::uint32_t>(threadCount));
    EXPECT_EQ(block->IncrementUnlessZero(), 0u);
    block->Hold();  // ours, so the block can be read after the others let go
    std::vector<std::thread> threads;
    for (int index = 0; index < threadCount; ++index)
        threads.emplace_back([block] { block->Unhold(); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(block->ReadHolders(), 1u);
    EXPECT_EQ(block->Read(), 0u);
    block->Unhold();
}

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/Object.h>
#include <KivPlr/core/ReferenceCounter.h>
#include <KivPlr/core/SmartPtr.h>

#include <gtest/gtest.h>

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

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/Object.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivTest/ChildProcess.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>

using namespace KivPlr;

namespace {

class IProbe : public virtual IObject
{
public:
    virtual int Value() = 0;
};

class Probe : private Object, public IProbe
{
public:
    explicit Probe(int* destructions = nullptr) : destructions(destructions) {}
    ~Probe() override
    {
        if (destructions != nullptr)
            ++*destructions;
    }
    int Value() override { return 42; }

private:
    int* destructions;
};

// What a CountingProbe saw: every AddRef and Release call, and its end.
struct Calls
{
    int addRefs = 0;
    int releases = 0;
    int destructions = 0;
};

// A probe that records the counting calls made on it, so that a test can
// tell a move (no call) from a copy (AddRef) or a drop (Release).
class CountingProbe : private Object, public IProbe
{
public:
    explicit CountingProbe(Calls& calls) : calls(calls) {}
    std::uint32_t AddRef() override
    {
        ++calls.addRefs;
        return Object::AddRef();
    }
    std::uint32_t Release() override
    {
        ++calls.releases;
        return Object::Release();
    }
    int Value() override { return 7; }

private:
    ~CountingProbe() override { ++calls.destructions; }

    Calls& calls;
};

} // namespace

TEST(SmartPtrTest, DefaultIsEmpty)
{
    SmartPtr<IProbe> empty;
    EXPECT_EQ(empty.Get(), nullptr);
    EXPECT_FALSE(empty);
}

TEST(SmartPtrTest, CopiesShareOneObject)
{
    int destructions = 0;
    SmartPtr<IProbe> first(new Probe(&destructions));
    {
        SmartPtr<IProbe> second = first;
        EXPECT_EQ(first->GetReferenceCount(), 2u);
        EXPECT_TRUE(first == second);
    }
    EXPECT_EQ(first->GetReferenceCount(), 1u);
    EXPECT_EQ(destructions, 0);
    first.Reset();
    EXPECT_EQ(destructions, 1);
    EXPECT_FALSE(first);
}

TEST(SmartPtrTest, SelfAssignmentKeepsCountAndObjectAlive)
{
    int destructions = 0;
    SmartPtr<IProbe> holder(new Probe(&destructions));
    SmartPtr<IProbe>& alias = holder;
    holder = alias;
    holder = holder.Get();
    EXPECT_EQ(holder->GetReferenceCount(), 1u);
    EXPECT_EQ(destructions, 0);
    EXPECT_EQ(holder->Value(), 42);
}

TEST(SmartPtrTest, AssigningAnotherObjectReleasesTheOldOne)
{
    int destructions = 0;
    SmartPtr<IProbe> holder(new Probe(&destructions));
    IProbe* second = new Probe(&destructions);
    holder = second;
    EXPECT_EQ(destructions, 1);
    EXPECT_EQ(holder.Get(), second);
    EXPECT_EQ(second->GetReferenceCount(), 1u);
    holder = nullptr;
    EXPECT_EQ(destructions, 2);
}

TEST(SmartPtrTest, ConvertsToAnInterfaceOfTheSameObject)
{
    SmartPtr<IProbe> probe(new Probe);
    SmartPtr<IObject> root(probe);
    EXPECT_EQ(probe->GetReferenceCount(), 2u);
    EXPECT_EQ(root->GetReferenceCount(), 2u);
}

TEST(SmartPtrTest, DereferencingEmptyPointerExitsSilently)
{
    EXPECT_FATAL_SILENT({
        SmartPtr<IProbe> empty;
        empty->Value();
    });
    EXPECT_FATAL_SILENT({
        SmartPtr<IProbe> empty;
        (*empty).Value();
    });
}

namespace {

// Moves a holder of a new CountingProbe into a new SmartPtr<Target>: no
// counting call, the count stays 1 and the source is empty.
template <typename Target>
void ExpectMoveConstructionKeepsCount()
{
    Calls calls;
    IProbe* probe = new CountingProbe(calls);
    SmartPtr<IProbe> source(probe);
    SmartPtr<Target> target(std::move(source));
    EXPECT_EQ(calls.addRefs, 1);
    EXPECT_EQ(calls.releases, 0);
    EXPECT_EQ(probe->GetReferenceCount(), 1u);
    EXPECT_EQ(target.Get(), static_cast<Target*>(probe));
    EXPECT_EQ(source.Get(), nullptr);
    target.Reset();
    EXPECT_EQ(calls.destructions, 1);
}

// Move-assigns a holder of a new CountingProbe to a SmartPtr<Target> that
// holds another one: the old one sees exactly one Release, the moved one no
// counting call.
template <typename Target>
void ExpectMoveAssignmentReleasesOnlyTheOldTarget()
{
    Calls oldCalls;
    Calls movedCalls;
    IProbe* moved = new CountingProbe(movedCalls);
    SmartPtr<Target> target(new CountingProbe(oldCalls));
    SmartPtr<IProbe> source(moved);
    target = std::move(source);
    EXPECT_EQ(oldCalls.releases, 1);
    EXPECT_EQ(oldCalls.destructions, 1);
    EXPECT_EQ(movedCalls.addRefs, 1);
    EXPECT_EQ(movedCalls.releases, 0);
    EXPECT_EQ(moved->GetReferenceCount(), 1u);
    EXPECT_EQ(target.Get(), static_cast<Target*>(moved));
    EXPECT_EQ(source.Get(), nullptr);
}

} // namespace

TEST(SmartPtrTest, MoveConstructionKeepsCountAndEmptiesSource)
{
    ExpectMoveConstructionKeepsCount<IProbe>();
}

TEST(SmartPtrTest, ConvertingMoveConstructionKeepsCountAndEmptiesSource)
{
    ExpectMoveConstructionKeepsCount<IObject>();
}

TEST(SmartPtrTest, MoveAssignmentIntoEmptyHolderKeepsCountAndEmptiesSource)
{
    Calls calls;
    IProbe* probe = new CountingProbe(calls);
    SmartPtr<IProbe> source(probe);
    SmartPtr<IProbe> target;
    target = std::move(source);
    EXPECT_EQ(calls.addRefs, 1);
    EXPECT_EQ(calls.releases, 0);
    EXPECT_EQ(probe->GetReferenceCount(), 1u);
    EXPECT_EQ(target.Get(), probe);
    EXPECT_EQ(source.Get(), nullptr);
}

TEST(SmartPtrTest, MoveAssignmentReleasesTheOldTargetOnceAndKeepsTheMovedCount)
{
    ExpectMoveAssignmentReleasesOnlyTheOldTarget<IProbe>();
}

TEST(SmartPtrTest, ConvertingMoveAssignmentReleasesTheOldTargetOnceAndKeepsTheMovedCount)
{
    ExpectMoveAssignmentReleasesOnlyTheOldTarget<IObject>();
}

TEST(SmartPtrTest, MoveAssignmentBetweenHoldersOfOneObjectDropsOneReference)
{
    Calls calls;
    IProbe* probe = new CountingProbe(calls);
    SmartPtr<IProbe> target(probe);
    SmartPtr<IProbe> source(target);
    target = std::move(source);
    EXPECT_EQ(calls.addRefs, 2);
    EXPECT_EQ(calls.releases, 1);
    EXPECT_EQ(probe->GetReferenceCount(), 1u);
    EXPECT_EQ(calls.destructions, 0);
    EXPECT_EQ(target.Get(), probe);
    EXPECT_EQ(source.Get(), nullptr);
}

TEST(SmartPtrTest, SelfMoveAssignmentKeepsObjectAndCount)
{
    Calls calls;
    IProbe* probe = new CountingProbe(calls);
    SmartPtr<IProbe> holder(probe);
    SmartPtr<IProbe>& alias = holder;
    holder = std::move(alias);
    EXPECT_EQ(calls.addRefs, 1);
    EXPECT_EQ(calls.releases, 0);
    EXPECT_EQ(holder.Get(), probe);
    EXPECT_EQ(holder->Value(), 7);
}

TEST(SmartPtrTest, MovedFromHolderTakesANewObject)
{
    Calls calls;
    SmartPtr<IProbe> source(new CountingProbe(calls));
    SmartPtr<IProbe> target(std::move(source));
    source = new CountingProbe(calls);
    EXPECT_EQ(source->GetReferenceCount(), 1u);
    EXPECT_EQ(target->GetReferenceCount(), 1u);
    EXPECT_NE(source.Get(), target.Get());
}

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/Object.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivTest/ChildProcess.h>

#include <gtest/gtest.h>

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

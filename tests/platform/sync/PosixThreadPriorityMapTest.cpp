// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/PosixThreadPriorityMap.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

using namespace KivPlr;

namespace {

SmartPtr<PosixThreadPriorityMap> MapOf15To0And8To3()
{
    SmartPtr<PosixThreadPriorityMap> map(new PosixThreadPriorityMap);
    map->Add(15, 0);
    map->Add(8, 3);
    return map;
}

} // namespace

TEST(PosixThreadPriorityMapTest, NewMapHasCountZero)
{
    PosixThreadPriorityMap* fresh = new PosixThreadPriorityMap;
    EXPECT_EQ(static_cast<IObject*>(fresh)->GetReferenceCount(), 0u);
    SmartPtr<IPosixThreadPriorityConverter> owner(fresh);
}

TEST(PosixThreadPriorityMapTest, AMappedPriorityGivesItsPosixPriority)
{
    SmartPtr<PosixThreadPriorityMap> map = MapOf15To0And8To3();
    int posixPriority = 42;
    _Result result = ResultFail;
    map->Convert(15, posixPriority, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(posixPriority, 0);
    map->Convert(8, posixPriority, result);
    EXPECT_EQ(result, ResultPass);
    EXPECT_EQ(posixPriority, 3);
}

TEST(PosixThreadPriorityMapTest, AnUnmappedPriorityFailsAndLeavesTheValueUntouched)
{
    SmartPtr<PosixThreadPriorityMap> map = MapOf15To0And8To3();
    for (std::int32_t level : {14, 16, 9, 7, 0, -15}) {
        int posixPriority = 42;
        _Result result = ResultPass;
        map->Convert(level, posixPriority, result);
        EXPECT_EQ(result, ResultFail) << level;
        EXPECT_EQ(posixPriority, 42) << level;
    }
}

TEST(PosixThreadPriorityMapTest, AnEmptyMapRefusesEveryPriority)
{
    SmartPtr<PosixThreadPriorityMap> map(new PosixThreadPriorityMap);
    int posixPriority = 42;
    _Result result = ResultPass;
    map->Convert(0, posixPriority, result);
    EXPECT_EQ(result, ResultFail);
    EXPECT_EQ(posixPriority, 42);
}

TEST(PosixThreadPriorityMapTest, AddingAPriorityAgainReplacesItsMapping)
{
    SmartPtr<PosixThreadPriorityMap> map = MapOf15To0And8To3();
    map->Add(15, 7);
    int posixPriority = 42;
    _Result result = ResultFail;
    map->Convert(15, posixPriority, result);
    EXPECT_EQ(posixPriority, 7);
}

TEST(PosixThreadPriorityMapTest, ANullPriorityReferenceIsFatal)
{
    SmartPtr<PosixThreadPriorityMap> map = MapOf15To0And8To3();
    _Result result = ResultPass;
    EXPECT_FATAL_MESSAGE(
        KivTest::WithNullReference<int>([&](int& none) { map->Convert(15, none, result); }),
        L"PosixThreadPriorityMap: int& nPosixPriority NULL reference");
}

TEST(PosixThreadPriorityMapTest, ANullResultReferenceIsFatal)
{
    SmartPtr<PosixThreadPriorityMap> map = MapOf15To0And8To3();
    int posixPriority = 0;
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<_Result>(
                             [&](_Result& none) { map->Convert(15, posixPriority, none); }),
                         L"PosixThreadPriorityMap: Result& result NULL reference");
}

TEST(PosixThreadPriorityMapTest, TheFatalMessageNamesTheNullParameterExactly)
{
    // The message read back from the child tells one null parameter from
    // another, so a check against the wrong text would fail.
    SmartPtr<PosixThreadPriorityMap> map = MapOf15To0And8To3();
    _Result result = ResultPass;
    std::wstring message = KivTest::FatalMessageOf([&] {
        KivTest::WithNullReference<int>([&](int& none) { map->Convert(15, none, result); });
    });
    EXPECT_EQ(message, L"PosixThreadPriorityMap: int& nPosixPriority NULL reference");
    EXPECT_NE(message, L"PosixThreadPriorityMap: something else");
}

// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/Platform.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivTest/ChildProcess.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace KivPlr;

namespace {

// A platform that makes nothing: enough to exercise the instance management
// and the counters that Platform itself implements.
class EmptyPlatform : public Platform
{
public:
    explicit EmptyPlatform(int* destructions = nullptr) : destructions(destructions) {}
    ~EmptyPlatform() override
    {
        if (destructions != nullptr)
            ++*destructions;
    }
    ILock* CreateLock() override { return nullptr; }
    ISharedLock* CreateSharedLock() override { return nullptr; }
    ISemaphore* CreateSemaphore() override { return nullptr; }
    IThread* CreateThread() override { return nullptr; }
    IClock* CreateClock() override { return nullptr; }
    ISystemClock* CreateSystemClock() override { return nullptr; }
    IFileManager* CreateFileManager() override { return nullptr; }
    IDirectoryManager* CreateDirectoryManager() override { return nullptr; }
    IUser* CreateUser() override { return nullptr; }
    IUserGroup* CreateUserGroup() override { return nullptr; }
    ILogManager* CreateLogManager() override { return nullptr; }

private:
    int* destructions;
};

// A platform that says so on standard output when it is destroyed.
class ReportingPlatform : public EmptyPlatform
{
public:
    ~ReportingPlatform() override
    {
        static const char text[] = "released";
        ssize_t written = write(STDOUT_FILENO, text, sizeof text - 1);
        (void)written;
    }
};

// Read while the test program starts, before any test could install one.
IPlatform* const instanceAtStartUp = Platform::GetInstance();

class PlatformInstanceTest : public ::testing::Test
{
protected:
    void TearDown() override { Platform::ClearInstance(); }
};

} // namespace

TEST_F(PlatformInstanceTest, GetInstanceBeforeSetInstanceIsNull)
{
    EXPECT_EQ(Platform::GetInstance(), nullptr);
}

TEST(PlatformStartUpTest, NoInstanceIsInstalledWhenTheProcessStarts)
{
    EXPECT_EQ(instanceAtStartUp, nullptr);
}

TEST(PlatformStartUpTest, TheInstalledInstanceIsReleasedAtProcessExit)
{
    // exit (not _exit) runs the static destructors, the holder's among them.
    KivTest::ChildOutcome outcome = KivTest::RunInChild([] {
        Platform::SetInstance(new ReportingPlatform);
        std::exit(0);
    });
    EXPECT_TRUE(outcome.exited) << KivTest::Describe(outcome);
    EXPECT_EQ(outcome.exitStatus, 0) << KivTest::Describe(outcome);
    EXPECT_EQ(outcome.standardOutput, "released");
}

TEST_F(PlatformInstanceTest, SetInstanceTwiceWithSameKeepsCountOne)
{
    IPlatform* platform = new EmptyPlatform;
    Platform::SetInstance(platform);
    Platform::SetInstance(platform);
    EXPECT_EQ(Platform::GetInstance(), platform);
    EXPECT_EQ(platform->GetReferenceCount(), 1u);
}

TEST_F(PlatformInstanceTest, SetInstanceOfAnotherReleasesTheFirst)
{
    int destructions = 0;
    IPlatform* first = new EmptyPlatform(&destructions);
    IPlatform* second = new EmptyPlatform(&destructions);
    Platform::SetInstance(first);
    Platform::SetInstance(second);
    EXPECT_EQ(destructions, 1);
    EXPECT_EQ(Platform::GetInstance(), second);
    EXPECT_EQ(second->GetReferenceCount(), 1u);
}

TEST_F(PlatformInstanceTest, SetInstanceKeepsAnInstanceOthersStillHold)
{
    int destructions = 0;
    SmartPtr<IPlatform> kept(new EmptyPlatform(&destructions));
    Platform::SetInstance(kept.Get());
    EXPECT_EQ(kept->GetReferenceCount(), 2u);
    Platform::SetInstance(nullptr);
    EXPECT_EQ(destructions, 0);
    EXPECT_EQ(kept->GetReferenceCount(), 1u);
    EXPECT_EQ(Platform::GetInstance(), nullptr);
}

TEST_F(PlatformInstanceTest, GetInstanceDoesNotTouchTheCount)
{
    IPlatform* platform = new EmptyPlatform;
    Platform::SetInstance(platform);
    Platform::GetInstance();
    Platform::GetInstance();
    EXPECT_EQ(platform->GetReferenceCount(), 1u);
}

TEST_F(PlatformInstanceTest, ClearInstanceReleasesAndEmpties)
{
    int destructions = 0;
    Platform::SetInstance(new EmptyPlatform(&destructions));
    Platform::ClearInstance();
    EXPECT_EQ(destructions, 1);
    EXPECT_EQ(Platform::GetInstance(), nullptr);
    Platform::ClearInstance();  // nothing installed: nothing happens
    EXPECT_EQ(destructions, 1);
}

TEST(PlatformCounterTest, AtomicIncrementOnZeroGivesOne)
{
    SmartPtr<IPlatform> platform(new EmptyPlatform);
    std::int32_t value = 0;
    EXPECT_EQ(platform->AtomicIncrement(value), 1);
    EXPECT_EQ(value, 1);
}

TEST(PlatformCounterTest, AtomicDecrementOnZeroGivesMinusOne)
{
    SmartPtr<IPlatform> platform(new EmptyPlatform);
    std::int32_t value = 0;
    EXPECT_EQ(platform->AtomicDecrement(value), -1);
    EXPECT_EQ(value, -1);
}

TEST(PlatformCounterTest, ANullCounterReferenceIsFatal)
{
    SmartPtr<IPlatform> platform(new EmptyPlatform);
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<std::int32_t>(
                             [&](std::int32_t& none) { platform->AtomicIncrement(none); }),
                         L"Platform: value NULL reference.");
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<std::int32_t>(
                             [&](std::int32_t& none) { platform->AtomicDecrement(none); }),
                         L"Platform: value NULL reference.");
}

TEST(PlatformCounterTest, CountersWrapAtTheLimits)
{
    SmartPtr<IPlatform> platform(new EmptyPlatform);
    std::int32_t value = INT32_MAX;
    EXPECT_EQ(platform->AtomicIncrement(value), INT32_MIN);
    EXPECT_EQ(platform->AtomicDecrement(value), INT32_MAX);
}

TEST(PlatformCounterTest, CountersAreAtomicAcrossFourThreads)
{
    SmartPtr<IPlatform> platform(new EmptyPlatform);
    std::int32_t value = 0;
    constexpr int steps = 200000;
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index)
        threads.emplace_back([&, index] {
            for (int step = 0; step < steps; ++step) {
                if (index % 2 == 0) {
                    platform->AtomicIncrement(value);
                    platform->AtomicIncrement(value);
                } else {
                    platform->AtomicDecrement(value);
                }
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(value, 2 * steps);
}

// SPDX-License-Identifier: Apache-2.0
#include <Discoveryd/RefreshLoop.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct LoopStopped
{
};

// Writes every step into a journal; the pause of the given cycle throws, so
// that the endless loop can be left after a few cycles.
class RecordingSteps : public RefreshSteps
{
public:
    explicit RecordingSteps(int stopInCycle) : stopInCycle(stopInCycle) {}

    void LoadConfiguration(const char* configurationPath) override
    {
        journal.push_back(std::string("LoadConfiguration ") + configurationPath);
    }
    void RunStatusCollector() override { journal.push_back("RunStatusCollector"); }
    void LoadStatus() override { journal.push_back("LoadStatus"); }
    void Publish() override { journal.push_back("Publish"); }
    void Pause() override
    {
        journal.push_back("Pause");
        if (++cycles == stopInCycle)
            throw LoopStopped();
    }

    std::vector<std::string> journal;

private:
    int stopInCycle;
    int cycles = 0;
};

const std::vector<std::string> OneCycle = {"LoadConfiguration /cfg", "RunStatusCollector",
                                           "LoadStatus", "Publish", "Pause"};

} // namespace

TEST(RefreshLoopTest, CycleRunsTheCollectorBeforeLoadingTheStatusAndPausesLast)
{
    RecordingSteps steps(0);
    RunRefreshCycle(steps, "/cfg");
    EXPECT_EQ(steps.journal, OneCycle);
}

TEST(RefreshLoopTest, FirstCycleStartsAtOnceWithoutAPause)
{
    RecordingSteps steps(1);
    EXPECT_THROW(RunRefreshLoop(steps, "/cfg"), LoopStopped);
    ASSERT_FALSE(steps.journal.empty());
    EXPECT_EQ(steps.journal.front(), "LoadConfiguration /cfg");
    EXPECT_EQ(steps.journal, OneCycle);
}

TEST(RefreshLoopTest, EveryCycleRepeatsTheSameStepsWithTheSamePath)
{
    RecordingSteps steps(3);
    EXPECT_THROW(RunRefreshLoop(steps, "/cfg"), LoopStopped);
    std::vector<std::string> expected;
    for (int cycle = 0; cycle < 3; ++cycle)
        expected.insert(expected.end(), OneCycle.begin(), OneCycle.end());
    EXPECT_EQ(steps.journal, expected);
}

TEST(RefreshLoopTest, PauseComesBetweenOnePublishAndTheNextConfigurationLoad)
{
    RecordingSteps steps(2);
    EXPECT_THROW(RunRefreshLoop(steps, "/cfg"), LoopStopped);
    ASSERT_EQ(steps.journal.size(), 10u);
    EXPECT_EQ(steps.journal[3], "Publish");
    EXPECT_EQ(steps.journal[4], "Pause");
    EXPECT_EQ(steps.journal[5], "LoadConfiguration /cfg");
}

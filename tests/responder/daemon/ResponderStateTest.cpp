// SPDX-License-Identifier: Apache-2.0
#include <KivResponder/ResponderState.h>

#include <KivPlr/core/UuidGenerator.h>
#include <KivTest/TemporaryDirectory.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <dirent.h>
#include <string>
#include <vector>

using KivResponder::ResponderState;
using KivTest::ReadFile;
using KivTest::TemporaryDirectory;
using KivTest::WriteFile;

namespace {

ResponderState LoadedState(const std::string& directory, std::vector<std::string>* warnings = nullptr)
{
    ResponderState state(directory, new KivPlr::UuidGenerator);
    std::vector<std::string> found;
    state.Load(found);
    if (warnings != nullptr)
        *warnings = found;
    return state;
}

std::vector<std::string> Entries(const std::string& directory)
{
    std::vector<std::string> names;
    DIR* listing = opendir(directory.c_str());
    while (dirent* entry = readdir(listing)) {
        std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(name);
    }
    closedir(listing);
    return names;
}

} // namespace

TEST(ResponderStateTest, MissingFileStartsAtInstanceOneWithoutWarnings)
{
    TemporaryDirectory directory;
    std::vector<std::string> warnings;
    ResponderState state = LoadedState(directory.Path(), &warnings);
    EXPECT_TRUE(warnings.empty());
    std::string error;
    ASSERT_TRUE(state.Start(error)) << error;
    EXPECT_EQ(state.InstanceId(), 1u);
}

TEST(ResponderStateTest, EveryStartRaisesTheInstanceAcrossLoads)
{
    TemporaryDirectory directory;
    std::string error;
    for (std::uint64_t expected = 1; expected <= 3; ++expected) {
        ResponderState state = LoadedState(directory.Path());
        ASSERT_TRUE(state.Start(error)) << error;
        EXPECT_EQ(state.InstanceId(), expected);
    }
}

TEST(ResponderStateTest, NewNameGetsAFreshVersionFourUuidAndVersionOne)
{
    TemporaryDirectory directory;
    ResponderState state = LoadedState(directory.Path());
    bool changed = false;
    ResponderState::Entry entry = state.Record("Management", "aaaa", changed);
    EXPECT_TRUE(changed);
    EXPECT_EQ(entry.metadataVersion, 1u);
    ASSERT_EQ(entry.endpointUuid.size(), 36u);
    EXPECT_EQ(entry.endpointUuid[14], '4');
    EXPECT_NE(state.Record("Other", "aaaa", changed).endpointUuid, entry.endpointUuid);
}

TEST(ResponderStateTest, OnlyADifferentFingerprintRaisesTheVersion)
{
    TemporaryDirectory directory;
    ResponderState state = LoadedState(directory.Path());
    bool changed = false;
    state.Record("Management", "aaaa", changed);
    EXPECT_EQ(state.Record("Management", "aaaa", changed).metadataVersion, 1u);
    EXPECT_FALSE(changed);
    EXPECT_EQ(state.Record("Management", "bbbb", changed).metadataVersion, 2u);
    EXPECT_TRUE(changed);
}

TEST(ResponderStateTest, UuidVersionAndFingerprintSurviveARestart)
{
    TemporaryDirectory directory;
    std::string error;
    bool changed = false;
    std::string uuid;
    {
        ResponderState state = LoadedState(directory.Path());
        state.Record("Management", "aaaa", changed);
        uuid = state.Record("Management", "bbbb", changed).endpointUuid;
        ASSERT_TRUE(state.Save(error)) << error;
    }
    ResponderState state = LoadedState(directory.Path());
    ASSERT_NE(state.Find("Management"), nullptr);
    EXPECT_EQ(state.Find("Management")->endpointUuid, uuid);
    EXPECT_EQ(state.Record("Management", "bbbb", changed).metadataVersion, 2u);
    EXPECT_FALSE(changed);
    EXPECT_EQ(state.Record("Management", "cccc", changed).metadataVersion, 3u);
}

TEST(ResponderStateTest, NamesWithSpacesPercentAndLineFeedsRoundTrip)
{
    TemporaryDirectory directory;
    std::string error;
    std::string name = "odd name%\nwith\tcontrols";
    bool changed = false;
    {
        ResponderState state = LoadedState(directory.Path());
        state.Record(name, "aaaa", changed);
        ASSERT_TRUE(state.Save(error)) << error;
    }
    std::vector<std::string> warnings;
    ResponderState state = LoadedState(directory.Path(), &warnings);
    EXPECT_NE(state.Find(name), nullptr);
    EXPECT_EQ(state.Entries().size(), 1u);
}

TEST(ResponderStateTest, DamagedLinesAreReportedAndTheReadableOnesKept)
{
    TemporaryDirectory directory;
    ASSERT_TRUE(WriteFile(directory.Path() + "/state",
                          "instance 41\n"
                          "garbage \x01\x02 here\n"
                          "target 12345678-1234-4234-8234-123456789abc 7 ffff Management\n"
                          "target not-a-uuid 3 ffff Broken\n"));
    std::vector<std::string> warnings;
    ResponderState state = LoadedState(directory.Path(), &warnings);
    ASSERT_EQ(warnings.size(), 2u);
    EXPECT_EQ(warnings[0], "state:2: unreadable line, ignored");
    EXPECT_EQ(warnings[1], "state:4: unreadable target entry, forgotten");
    ASSERT_NE(state.Find("Management"), nullptr);
    EXPECT_EQ(state.Find("Management")->metadataVersion, 7u);
    EXPECT_EQ(state.Find("Broken"), nullptr);
    std::string error;
    ASSERT_TRUE(state.Start(error));
    EXPECT_EQ(state.InstanceId(), 42u);
}

TEST(ResponderStateTest, LostInstanceCountGoesOnFromTheClock)
{
    TemporaryDirectory directory;
    ASSERT_TRUE(WriteFile(directory.Path() + "/state", "instance 4x\n"));
    std::vector<std::string> warnings;
    std::uint64_t before = static_cast<std::uint64_t>(std::time(nullptr));
    ResponderState state = LoadedState(directory.Path(), &warnings);
    EXPECT_FALSE(warnings.empty());
    EXPECT_GE(state.InstanceId(), before);
}

TEST(ResponderStateTest, SaveReplacesTheFileAndLeavesNoTemporaryBehind)
{
    TemporaryDirectory directory;
    ResponderState state = LoadedState(directory.Path());
    std::string error;
    ASSERT_TRUE(state.Start(error));
    ASSERT_TRUE(state.Start(error));
    EXPECT_EQ(Entries(directory.Path()), std::vector<std::string>{"state"});
    EXPECT_NE(ReadFile(directory.Path() + "/state").find("\ninstance 2\n"), std::string::npos);
}

TEST(ResponderStateTest, StartRemovesTemporariesOfADeadRunAndNothingElse)
{
    TemporaryDirectory directory;
    ASSERT_TRUE(WriteFile(directory.Path() + "/.state.a1B2c3", "instance 9\n"));
    ASSERT_TRUE(WriteFile(directory.Path() + "/.state.keep", "x"));
    ResponderState state = LoadedState(directory.Path());
    std::string error;
    ASSERT_TRUE(state.Start(error)) << error;
    std::vector<std::string> entries = Entries(directory.Path());
    std::sort(entries.begin(), entries.end());
    EXPECT_EQ(entries, (std::vector<std::string>{".state.keep", "state"}));
}

TEST(ResponderStateTest, SaveIntoAMissingDirectoryFailsWithTheReason)
{
    TemporaryDirectory directory;
    ResponderState state(directory.Path() + "/missing", new KivPlr::UuidGenerator);
    std::string error;
    EXPECT_FALSE(state.Start(error));
    EXPECT_NE(error.find("No such file or directory"), std::string::npos) << error;
}

TEST(ResponderStateTest, PruneDropsOnlyNamesNotInUseAndOnlyBeyondTheLimit)
{
    TemporaryDirectory directory;
    ResponderState state = LoadedState(directory.Path());
    bool changed = false;
    for (std::size_t index = 0; index < ResponderState::MaximumEntries + 5; ++index)
        state.Record("name" + std::to_string(index), "aaaa", changed);
    state.Prune({"name0", "name1"});
    EXPECT_EQ(state.Entries().size(), ResponderState::MaximumEntries);
    EXPECT_NE(state.Find("name0"), nullptr);
    EXPECT_NE(state.Find("name1"), nullptr);
}

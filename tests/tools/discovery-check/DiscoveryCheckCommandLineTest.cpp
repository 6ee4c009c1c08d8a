// SPDX-License-Identifier: Apache-2.0
// discovery-check answers --help and --version on standard output, as the
// command-line conventions of packaged programs expect.

#include <KivTest/ShellCommand.h>

#include <gtest/gtest.h>

#include <string>

using KivTest::ChildOutcome;

namespace {

ChildOutcome RunCheck(const std::string& arguments)
{
    return KivTest::RunOwnProgram(KIV_DISCOVERY_CHECK_PROGRAM, arguments);
}

} // namespace

TEST(DiscoveryCheckCommandLineTest, HelpPrintsTheUsageOnStandardOutputAndExitsWithZero)
{
    ChildOutcome outcome = RunCheck("--help");
    EXPECT_EQ(outcome.exitStatus, 0) << KivTest::Describe(outcome);
    EXPECT_EQ(outcome.standardError, "");
    EXPECT_EQ(outcome.standardOutput.rfind("usage: discovery-check config DIR\n", 0), 0u) << outcome.standardOutput;
    EXPECT_NE(outcome.standardOutput.find("discovery-check --help | --version\n"), std::string::npos);
}

TEST(DiscoveryCheckCommandLineTest, VersionPrintsTheProjectVersionOnStandardOutputAndExitsWithZero)
{
    ChildOutcome outcome = RunCheck("--version");
    EXPECT_EQ(outcome.exitStatus, 0) << KivTest::Describe(outcome);
    EXPECT_EQ(outcome.standardError, "");
    EXPECT_EQ(outcome.standardOutput, std::string("discovery-check ") + KIV_PROJECT_VERSION + "\n");
}

TEST(DiscoveryCheckCommandLineTest, HelpWithAnotherArgumentIsAWrongCommandLine)
{
    ChildOutcome outcome = RunCheck("--help status");
    EXPECT_EQ(outcome.exitStatus, 2) << KivTest::Describe(outcome);
    EXPECT_EQ(outcome.standardOutput, "");
    EXPECT_EQ(outcome.standardError.rfind("usage: discovery-check config DIR\n", 0), 0u) << outcome.standardError;
}

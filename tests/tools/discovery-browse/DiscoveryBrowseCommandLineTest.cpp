// SPDX-License-Identifier: Apache-2.0
// discovery-browse as a program, without a network: --help and --version on
// standard output with status 0, a wrong command line with status 2 and
// the reason and usage on standard error.

#include <KivTest/ShellCommand.h>

#include <gtest/gtest.h>

#include <string>

using KivTest::ChildOutcome;

namespace {

ChildOutcome RunBrowse(const std::string& arguments)
{
    return KivTest::RunOwnProgram(KIV_DISCOVERY_BROWSE_PROGRAM, arguments);
}

const char UsageStart[] = "usage: discovery-browse [--type PREFIX:LOCAL]... [--type-namespace URI]\n";

} // namespace

TEST(DiscoveryBrowseCommandLineTest, HelpPrintsTheUsageOnStandardOutputAndExitsWithZero)
{
    ChildOutcome outcome = RunBrowse("--help");
    EXPECT_EQ(outcome.exitStatus, 0) << KivTest::Describe(outcome);
    EXPECT_EQ(outcome.standardError, "");
    EXPECT_EQ(outcome.standardOutput.rfind(UsageStart, 0), 0u) << outcome.standardOutput;
    EXPECT_NE(outcome.standardOutput.find("discovery-browse --help | --version\n"), std::string::npos);
}

TEST(DiscoveryBrowseCommandLineTest, VersionPrintsTheProjectVersionOnStandardOutputAndExitsWithZero)
{
    ChildOutcome outcome = RunBrowse("--version");
    EXPECT_EQ(outcome.exitStatus, 0) << KivTest::Describe(outcome);
    EXPECT_EQ(outcome.standardError, "");
    EXPECT_EQ(outcome.standardOutput, std::string("discovery-browse ") + KIV_PROJECT_VERSION + "\n");
}

TEST(DiscoveryBrowseCommandLineTest, WrongCommandLineExitsWithTwoAndSaysWhyBeforeTheUsage)
{
    ChildOutcome outcome = RunBrowse("--timeout never");
    EXPECT_EQ(outcome.exitStatus, 2) << KivTest::Describe(outcome);
    EXPECT_EQ(outcome.standardOutput, "");
    EXPECT_EQ(outcome.standardError.rfind("discovery-browse: --timeout 'never' is not a number of seconds above 0 "
                                          "and up to 3600\n" +
                                              std::string(UsageStart),
                                          0),
              0u)
        << outcome.standardError;
}

TEST(DiscoveryBrowseCommandLineTest, AnInterfaceThatIsNotThereEndsWithOneAndSendsNothing)
{
    ChildOutcome outcome = RunBrowse("--interface kivnosuch0 --timeout 0.1");
    EXPECT_EQ(outcome.exitStatus, 1) << KivTest::Describe(outcome);
    EXPECT_EQ(outcome.standardOutput, "");
    EXPECT_EQ(outcome.standardError,
              "discovery-browse: interface kivnosuch0 is not up, not multicast-capable or has no address\n");
}

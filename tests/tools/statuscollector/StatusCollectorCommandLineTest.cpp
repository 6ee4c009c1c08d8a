// SPDX-License-Identifier: Apache-2.0
// statuscollector answers --help and --version on standard output and then
// collects nothing.

#include <KivTest/DirectoryListing.h>
#include <KivTest/ShellCommand.h>
#include <KivTest/TemporaryDirectory.h>

#include <gtest/gtest.h>

#include <string>

using KivTest::ChildOutcome;
using KivTest::ShellQuote;

namespace {

class StatusCollectorCommandLineTest : public ::testing::Test
{
protected:
    /// Runs the collector with -output into the scratch directory first, so
    /// that a snapshot written by mistake shows up there.
    ChildOutcome RunCollector(const std::string& arguments)
    {
        return KivTest::RunOwnProgram(KIV_STATUSCOLLECTOR_PROGRAM,
                                      "-output " + ShellQuote(directory.Path() + "/status.xml") + " " + arguments);
    }

    KivTest::TemporaryDirectory directory;
};

} // namespace

TEST_F(StatusCollectorCommandLineTest, HelpPrintsTheUsageOnStandardOutputAndWritesNoSnapshot)
{
    ChildOutcome outcome = RunCollector("-nolog --help");
    EXPECT_EQ(outcome.exitStatus, 0) << KivTest::Describe(outcome);
    EXPECT_EQ(outcome.standardError, "");
    EXPECT_EQ(outcome.standardOutput.rfind("usage: statuscollector [-nolog] [-output FILE]\n"
                                           "       statuscollector --help | --version\n",
                                           0),
              0u)
        << outcome.standardOutput;
    EXPECT_TRUE(KivTest::ListDirectory(directory.Path()).empty());
}

TEST_F(StatusCollectorCommandLineTest, VersionPrintsTheProjectVersionOnStandardOutputAndWritesNoSnapshot)
{
    ChildOutcome outcome = RunCollector("--version -bogus");
    EXPECT_EQ(outcome.exitStatus, 0) << KivTest::Describe(outcome);
    EXPECT_EQ(outcome.standardError, "");
    EXPECT_EQ(outcome.standardOutput, std::string("statuscollector ") + KIV_PROJECT_VERSION + "\n");
    EXPECT_TRUE(KivTest::ListDirectory(directory.Path()).empty());
}

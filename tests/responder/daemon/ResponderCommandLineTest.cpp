// SPDX-License-Identifier: Apache-2.0
// The program itself, for what needs neither root nor a network: the
// command line and a start that cannot succeed. Its work on a network is
// shown by the namespace tests in tests/e2e.
#include <KivTest/FakeSyslogSocket.h>
#include <KivTest/ShellCommand.h>
#include <KivTest/TemporaryDirectory.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <unistd.h>
#include <vector>

using KivTest::ChildOutcome;
using KivTest::Describe;
using KivTest::ShellQuote;

namespace {

ChildOutcome RunResponder(const std::string& arguments)
{
    return KivTest::RunOwnProgram(KIV_DISCOVERY_RESPONDER_PROGRAM, arguments);
}

} // namespace

TEST(ResponderCommandLineTest, VersionPrintsTheProjectVersionAndStartsNothing)
{
    ChildOutcome outcome = RunResponder("--state-dir /nonexistent --version");
    EXPECT_EQ(outcome.exitStatus, 0) << Describe(outcome);
    EXPECT_EQ(outcome.standardOutput, std::string("discovery-responder ") + KIV_PROJECT_VERSION + "\n");
    EXPECT_EQ(outcome.standardError, "");
}

TEST(ResponderCommandLineTest, HelpNamesEveryOption)
{
    ChildOutcome outcome = RunResponder("--help");
    EXPECT_EQ(outcome.exitStatus, 0) << Describe(outcome);
    for (const char* option : {"--descriptions-dir", "--state-dir", "--interface"})
        EXPECT_NE(outcome.standardOutput.find(option), std::string::npos) << option;
}

TEST(ResponderCommandLineTest, AnUnknownArgumentExitsWithTwoAndTheUsage)
{
    ChildOutcome outcome = RunResponder("--bogus");
    EXPECT_EQ(outcome.exitStatus, 2) << Describe(outcome);
    EXPECT_EQ(outcome.standardError, "discovery-responder: unknown argument \"--bogus\"\n"
                                     "usage: discovery-responder [--descriptions-dir DIR] [--state-dir DIR] "
                                     "[--interface NAME]...\n");
}

TEST(ResponderCommandLineTest, AnUnusableStateDirectoryStopsTheStartWithExitOneAndALogLine)
{
    KivTest::TemporaryDirectory directory;
    std::string missing = directory.Path() + "/missing";
    std::string expected = "cannot create a file in " + missing + ": No such file or directory";
    // The program logs to /dev/log: a fake one in a private mount namespace
    // takes the line, so the machine's logger never sees it.
    KivTest::SyslogCapture capture = KivTest::CaptureSyslog([&] {
        ChildOutcome outcome = RunResponder("--state-dir " + ShellQuote(missing) + " --descriptions-dir " +
                                            ShellQuote(directory.Path()));
        if (outcome.exitStatus != 1 || outcome.standardError != "discovery-responder: " + expected + "\n") {
            std::fprintf(stderr, "%s", Describe(outcome).c_str());
            _exit(3);
        }
    });
    KIV_SKIP_OR_FAIL_UNLESS_CAPTURED(capture);
    std::vector<KivTest::SyslogMessage> messages = KivTest::ParsedMessages(capture);
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].priority, 24 + 3) << "daemon facility, error level";
    EXPECT_EQ(messages[0].identity, "discovery-responder");
    EXPECT_EQ(messages[0].text, "cannot start: " + expected);
}

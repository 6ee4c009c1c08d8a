#include "RecordingShellTools.h"
#include "ShellCommand.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/wait.h>

using namespace KivPlr;
using KivTest::RecordingShellTools;

TEST(ShellCommandTest, FormatFollowsTheCFormattingRules)
{
    char* line = ShellCommand::Format("useradd %s -p %s", "alice", "abAwh7.RciMzE");
    ASSERT_NE(line, nullptr);
    EXPECT_STREQ(line, "useradd alice -p abAwh7.RciMzE");
    ShellCommand::Release(line);
}

TEST(ShellCommandTest, FormatHoldsLinesLongerThanAnyFixedBuffer)
{
    std::string name(5000, 'n');
    char* line = ShellCommand::Format("userdel %s", name.c_str());
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(std::string(line), "userdel " + name);
    ShellCommand::Release(line);
}

TEST(ShellCommandTest, FormatWithoutFormatGivesNull)
{
    // Through a plain function pointer: the format check cannot see a null.
    char* (*format)(const char*, ...) = ShellCommand::Format;
    EXPECT_EQ(format(nullptr), nullptr);
}

TEST(ShellCommandTest, ExitStatusZeroGivesPass)
{
    EXPECT_EQ(ShellCommand::Run("exit 0"), ResultPass);
}

TEST(ShellCommandTest, NonZeroExitStatusGivesFail)
{
    EXPECT_EQ(ShellCommand::Run("exit 1"), ResultFail);
    EXPECT_EQ(ShellCommand::Run("exit 255"), ResultFail);
    EXPECT_EQ(ShellCommand::Run("exit 9"), ResultFail);
}

TEST(ShellCommandTest, MissingToolGivesFail)
{
    RecordingShellTools tools;
    setenv("PATH", tools.Directory().c_str(), 1);
    EXPECT_EQ(ShellCommand::Run("useradd alice"), ResultFail);
}

TEST(ShellCommandTest, CommandEndedBySignalGivesFail)
{
    EXPECT_EQ(ShellCommand::Run("kill -KILL $$"), ResultFail);
}

TEST(ShellCommandTest, NullLineGivesFailWithoutAskingForAShell)
{
    EXPECT_EQ(ShellCommand::Run(nullptr), ResultFail);
}

TEST(ShellCommandTest, StatusRuleLooksAtTheExitStatus)
{
    EXPECT_EQ(ShellCommand::ResultOfStatus(0), ResultPass);
    EXPECT_EQ(ShellCommand::ResultOfStatus(1 << 8), ResultFail);
    EXPECT_EQ(ShellCommand::ResultOfStatus(127 << 8), ResultFail);
    EXPECT_EQ(ShellCommand::ResultOfStatus(-1), ResultFail);
    EXPECT_EQ(ShellCommand::ResultOfStatus(SIGKILL), ResultFail) << "ended by a signal";
}

TEST(ShellCommandTest, ReadOutputCollectsEveryPiece)
{
    // Longer than two pieces of 512 bytes, with and without line feeds.
    std::string line(1300, 'x');
    std::string output;
    ShellCommand::ReadOutput(("printf '%s\\nab\\ncd' " + line).c_str(), output);
    EXPECT_EQ(output, line + "\nab\ncd");
}

TEST(ShellCommandTest, ReadOutputAppends)
{
    std::string output = "kept ";
    ShellCommand::ReadOutput("echo more", output);
    EXPECT_EQ(output, "kept more\n");
}

TEST(ShellCommandTest, ReadOutputKeepsAPieceOnlyUpToANulByte)
{
    std::string output;
    ShellCommand::ReadOutput("printf 'ab\\000cd\\nef\\n'", output);
    EXPECT_EQ(output, "abef\n");
}

TEST(ShellCommandTest, ReadOutputOfNullLineAppendsNothing)
{
    std::string output = "x";
    ShellCommand::ReadOutput(nullptr, output);
    EXPECT_EQ(output, "x");
}

TEST(ShellCommandTest, WipeOverwritesEveryByteOfTheLine)
{
    char buffer[] = "useradd alice -p abAwh7.RciMzE";
    std::size_t length = std::strlen(buffer);
    ShellCommand::Wipe(buffer);
    for (std::size_t index = 0; index < length; ++index)
        EXPECT_EQ(buffer[index], '\0') << index;
    ShellCommand::Wipe(nullptr);
}

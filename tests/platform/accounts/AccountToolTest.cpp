// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/accounts/AccountTool.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>
#include <KivTest/RecordingShellTools.h>

#include <gtest/gtest.h>

#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/wait.h>

using namespace KivPlr;
using KivTest::RecordingShellTools;

TEST(AccountToolTest, FormatFollowsTheCFormattingRules)
{
    char* line = AccountTool::Format("useradd %s -p %s", "alice", "abAwh7.RciMzE");
    ASSERT_NE(line, nullptr);
    EXPECT_STREQ(line, "useradd alice -p abAwh7.RciMzE");
    AccountTool::Release(line);
}

TEST(AccountToolTest, FormatHoldsLinesLongerThanAnyFixedBuffer)
{
    std::string name(5000, 'n');
    char* line = AccountTool::Format("userdel %s", name.c_str());
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(std::string(line), "userdel " + name);
    AccountTool::Release(line);
}

TEST(AccountToolTest, FormatWithoutFormatGivesNull)
{
    // Through a plain function pointer: the format check cannot see a null.
    char* (*format)(const char*, ...) = AccountTool::Format;
    EXPECT_EQ(format(nullptr), nullptr);
}

TEST(AccountToolTest, ExitStatusZeroGivesPass)
{
    EXPECT_EQ(AccountTool::Run("exit 0"), ResultPass);
}

TEST(AccountToolTest, NonZeroExitStatusGivesFail)
{
    EXPECT_EQ(AccountTool::Run("exit 1"), ResultFail);
    EXPECT_EQ(AccountTool::Run("exit 255"), ResultFail);
    EXPECT_EQ(AccountTool::Run("exit 9"), ResultFail);
}

TEST(AccountToolTest, MissingToolGivesFail)
{
    RecordingShellTools tools;
    setenv("PATH", tools.Directory().c_str(), 1);
    EXPECT_EQ(AccountTool::Run("useradd alice"), ResultFail);
}

TEST(AccountToolTest, CommandEndedBySignalGivesFail)
{
    EXPECT_EQ(AccountTool::Run("kill -KILL $$"), ResultFail);
}

TEST(AccountToolTest, NullLineGivesFailWithoutAskingForAShell)
{
    EXPECT_EQ(AccountTool::Run(nullptr), ResultFail);
}

TEST(AccountToolTest, StatusRuleLooksAtTheExitStatus)
{
    EXPECT_EQ(AccountTool::ResultOfStatus(0), ResultPass);
    EXPECT_EQ(AccountTool::ResultOfStatus(1 << 8), ResultFail);
    EXPECT_EQ(AccountTool::ResultOfStatus(127 << 8), ResultFail);
    EXPECT_EQ(AccountTool::ResultOfStatus(-1), ResultFail);
    EXPECT_EQ(AccountTool::ResultOfStatus(SIGKILL), ResultFail) << "ended by a signal";
}

TEST(AccountToolTest, ReadOutputCollectsEveryPiece)
{
    // Longer than two pieces of 512 bytes, with and without line feeds.
    std::string line(1300, 'x');
    std::string output;
    AccountTool::ReadOutput(("printf '%s\\nab\\ncd' " + line).c_str(), output);
    EXPECT_EQ(output, line + "\nab\ncd");
}

TEST(AccountToolTest, ReadOutputAppends)
{
    std::string output = "kept ";
    AccountTool::ReadOutput("echo more", output);
    EXPECT_EQ(output, "kept more\n");
}

TEST(AccountToolTest, ReadOutputKeepsAPieceOnlyUpToANulByte)
{
    std::string output;
    AccountTool::ReadOutput("printf 'ab\\000cd\\nef\\n'", output);
    EXPECT_EQ(output, "abef\n");
}

TEST(AccountToolTest, ReadOutputOfNullLineAppendsNothing)
{
    std::string output = "x";
    AccountTool::ReadOutput(nullptr, output);
    EXPECT_EQ(output, "x");
}

TEST(AccountToolTest, ReadOutputWithANullOutputReferenceIsFatalAndRunsNothing)
{
    RecordingShellTools tools;
    tools.Install("id", 0, "root\n");
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<std::string>(
                             [](std::string& none) { AccountTool::ReadOutput("id -nG root", none); }),
                         L"AccountTool: output NULL reference.");
    EXPECT_TRUE(tools.Calls().empty());
}

TEST(AccountToolTest, WipeOverwritesEveryByteOfTheLine)
{
    char buffer[] = "useradd alice -p abAwh7.RciMzE";
    std::size_t length = std::strlen(buffer);
    AccountTool::Wipe(buffer);
    for (std::size_t index = 0; index < length; ++index)
        EXPECT_EQ(buffer[index], '\0') << index;
    AccountTool::Wipe(nullptr);
}

// SPDX-License-Identifier: Apache-2.0
// ShellCommand.h - runs one command line through /bin/sh in a forked child
// and reports its exit status and everything it printed.
//
// For tests that start programs (ours through EmulatorPrefix(), or tools
// such as ip and python3). Use from the test's own thread.
//
// Example:
//   #include <gtest/gtest.h>
//   #include <KivTest/Emulation.h>
//   std::string program = "/usr/local/sbin/statuscollector";
//   ChildOutcome outcome = RunShellCommand(EmulatorPrefix() + program + " -nolog");
//   EXPECT_EQ(outcome.exitStatus, 0) << Describe(outcome);
//   EXPECT_EQ(RunOwnProgram(program, "--help").exitStatus, 0);
#ifndef KIV_TESTS_SHELLCOMMAND_H
#define KIV_TESTS_SHELLCOMMAND_H

#include <KivTest/ChildProcess.h>

#include <string>

namespace KivTest {

/// Runs \p commandLine with "/bin/sh -c" and waits for it. A shell that
/// cannot be started gives exit status 127.
ChildOutcome RunShellCommand(const std::string& commandLine);

/// \p text in single quotes for a shell command line, any quotes in it
/// escaped.
std::string ShellQuote(const std::string& text);

/// Runs one of our own \p program with \p arguments (already quoted as the
/// shell wants them), through the emulator when there is one.
ChildOutcome RunOwnProgram(const std::string& program, const std::string& arguments);

} // namespace KivTest

#endif

// SPDX-License-Identifier: Apache-2.0
#include <KivTest/ShellCommand.h>

#include <KivTest/Emulation.h>

#include <unistd.h>

namespace KivTest {

ChildOutcome RunShellCommand(const std::string& commandLine)
{
    return RunInChild([&commandLine] {
        execl("/bin/sh", "sh", "-c", commandLine.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    });
}

std::string ShellQuote(const std::string& text)
{
    std::string quoted = "'";
    for (char character : text) {
        if (character == '\'')
            quoted += "'\\''";
        else
            quoted += character;
    }
    return quoted + "'";
}

ChildOutcome RunOwnProgram(const std::string& program, const std::string& arguments)
{
    return RunShellCommand(EmulatorPrefix() + ShellQuote(program) + " " + arguments);
}

} // namespace KivTest

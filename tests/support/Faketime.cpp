// SPDX-License-Identifier: Apache-2.0
#include <KivTest/Faketime.h>

#include <KivTest/ShellCommand.h>

namespace KivTest {

std::string FaketimeProblem(const std::string& speedUp)
{
    ChildOutcome probe = RunShellCommand("command -v faketime >/dev/null && timeout 60 faketime -f " +
                                         ShellQuote(speedUp) + " sleep 300");
    if (probe.exited && probe.exitStatus == 0)
        return "";
    return "faketime cannot let sleep(300) pass quickly here (" + Describe(probe) + ")";
}

} // namespace KivTest

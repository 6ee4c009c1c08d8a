// SPDX-License-Identifier: Apache-2.0
#include <KivTest/RecordingShellTools.h>

#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <sys/stat.h>

namespace KivTest {

namespace {

// Single-quoted for the shell; the paths of a temporary directory hold no quotes.
std::string Quoted(const std::string& text)
{
    return "'" + text + "'";
}

} // namespace

RecordingShellTools::RecordingShellTools() : logFile(directory.Path() + "/calls.log")
{
    if (!WriteFile(logFile, ""))
        throw std::runtime_error("cannot write " + logFile);
    const char* path = std::getenv("PATH");
    hadPath = path != nullptr;
    savedPath = hadPath ? path : "";
    std::string searchPath = directory.Path() + (hadPath ? ":" + savedPath : std::string());
    setenv("PATH", searchPath.c_str(), 1);
}

RecordingShellTools::~RecordingShellTools()
{
    if (hadPath)
        setenv("PATH", savedPath.c_str(), 1);
    else
        unsetenv("PATH");
}

void RecordingShellTools::Install(const std::string& name, int exitStatus, const std::string& output)
{
    std::string script = directory.Path() + "/" + name;
    std::string outputFile = script + ".output";
    std::ostringstream text;
    text << "#!/bin/sh\n"
         << "# Stand-in for " << name << ": record the call, print the chosen text, exit.\n"
         << "{\n"
         << "    printf '%s' " << Quoted(name) << "\n"
         << "    for argument in \"$@\"; do printf ' %s' \"$argument\"; done\n"
         << "    printf '\\n'\n"
         << "} >>" << Quoted(logFile) << "\n"
         << "cat " << Quoted(outputFile) << "\n"
         << "exit " << exitStatus << "\n";
    if (!WriteFile(outputFile, output) || !WriteFile(script, text.str()) || chmod(script.c_str(), 0755) != 0)
        throw std::runtime_error("cannot install the stand-in " + script);
}

std::vector<std::string> RecordingShellTools::Calls() const
{
    std::vector<std::string> calls;
    std::istringstream log(ReadFile(logFile));
    for (std::string line; std::getline(log, line);)
        calls.push_back(line);
    return calls;
}

void RecordingShellTools::ClearCalls()
{
    WriteFile(logFile, "");
}

} // namespace KivTest

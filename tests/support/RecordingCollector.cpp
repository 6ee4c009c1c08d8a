// SPDX-License-Identifier: Apache-2.0
#include <KivTest/RecordingCollector.h>

#include <KivTest/MountNamespace.h>
#include <KivTest/ShellCommand.h>
#include <KivTest/TemporaryDirectory.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace KivTest {

namespace {

const char StatusFile[] = "/dev/shm/status.xml";

std::vector<std::string> Split(const std::string& text, char separator)
{
    std::vector<std::string> parts;
    std::string part;
    std::istringstream stream(text);
    while (std::getline(stream, part, separator))
        parts.push_back(part);
    return parts;
}

bool Exists(const std::string& path)
{
    struct stat information;
    return lstat(path.c_str(), &information) == 0;
}

} // namespace

RecordingCollector::RecordingCollector(std::string work, std::string configuration, std::string watched)
    : workDirectory(std::move(work)), configurationDirectory(std::move(configuration)), watchedFile(std::move(watched))
{
}

std::string RecordingCollector::PlanDirectory(unsigned cycle) const
{
    return workDirectory + "/plan/" + std::to_string(cycle);
}

std::string RecordingCollector::RecordDirectory() const
{
    return workDirectory + "/record";
}

bool RecordingCollector::PlanCycle(unsigned cycle, const std::optional<std::string>& configuration,
                                   const std::optional<std::string>& status, bool removeStatus)
{
    std::string directory = PlanDirectory(cycle);
    if (!MountNamespace::MakeDirectories(directory))
        return false;
    bool written = true;
    if (configuration)
        written = WriteFile(directory + "/configuration.xml", *configuration) && written;
    if (status)
        written = WriteFile(directory + "/status.xml", *status) && written;
    if (removeStatus)
        written = WriteFile(directory + "/remove-status", "") && written;
    return written;
}

std::string RecordingCollector::Script() const
{
    std::string watchedDirectory = watchedFile.substr(0, watchedFile.find_last_of('/'));
    return "#!/bin/sh\n"
           "# Recording stand-in for the status collector, written by a test.\n"
           "record=" + ShellQuote(RecordDirectory()) + "\n"
           "plan=" + ShellQuote(workDirectory + "/plan") + "\n"
           "configuration=" + ShellQuote(configurationDirectory) + "\n"
           "watched=" + ShellQuote(watchedFile) + "\n"
           "watched_directory=" + ShellQuote(watchedDirectory) + "\n"
           "status=" + ShellQuote(StatusFile) + "\n"
           "cycle=$(( $(cat \"$record/count\") + 1 ))\n"
           "echo \"$cycle\" > \"$record/count\"\n"
           "# The program that ran us: the nearest ancestor that is not the shell of system().\n"
           "runner=$PPID\n"
           "while case $(cat /proc/$runner/comm) in sh|dash|bash) true;; *) false;; esac; do\n"
           "    runner=$(sed -n 's/^PPid:[[:space:]]*//p' /proc/$runner/status)\n"
           "done\n"
           "{\n"
           "    printf '%s|%s %s|%s|%s' \"$cycle\" \"$runner\" \"$(cat /proc/$runner/comm)\" \"$(date +%s.%N)\" \"$0\"\n"
           "    for argument in \"$@\"; do printf '|%s' \"$argument\"; done\n"
           "    printf '\\n'\n"
           "} >> \"$record/calls\"\n"
           "seen=\"$record/$cycle\"\n"
           "mkdir \"$seen\"\n"
           "if [ -e \"$watched\" ]; then\n"
           "    stat -c '%i %.9Y' \"$watched\" > \"$seen/identity\"\n"
           "    cp \"$watched\" \"$seen/content\"\n"
           "fi\n"
           "ls -A \"$watched_directory\" > \"$seen/listing\" 2>/dev/null\n"
           ": > \"$seen/done\"\n"
           "if [ ! -d \"$plan/$cycle\" ]; then\n"
           "    : > \"$record/held\"\n"
           "    exec cat \"$record/hold\" > /dev/null\n"
           "fi\n"
           "if [ -e \"$plan/$cycle/remove-status\" ]; then\n"
           "    rm -f \"$status\"\n"
           "elif [ -e \"$plan/$cycle/status.xml\" ]; then\n"
           "    cp \"$plan/$cycle/status.xml\" \"$status.staging\" && mv \"$status.staging\" \"$status\"\n"
           "fi\n"
           "next=$((cycle + 1))\n"
           "if [ -e \"$plan/$next/configuration.xml\" ]; then\n"
           "    cp \"$plan/$next/configuration.xml\" \"$configuration/configuration.xml\"\n"
           "fi\n"
           "exit 0\n";
}

bool RecordingCollector::Install(const std::string& scriptPath, std::string& fault) const
{
    std::string record = RecordDirectory();
    if (!MountNamespace::MakeDirectories(record) || !WriteFile(record + "/count", "0\n") ||
        (mkfifo((record + "/hold").c_str(), 0600) != 0 && errno != EEXIST)) {
        fault = "cannot make the recording area " + record + ": " + std::strerror(errno);
        return false;
    }
    if (!WriteFile(scriptPath, Script()) || chmod(scriptPath.c_str(), 0755) != 0) {
        fault = "cannot write the collector script " + scriptPath + ": " + std::strerror(errno);
        return false;
    }
    std::string first = PlanDirectory(1) + "/configuration.xml";
    if (Exists(first) && (!MountNamespace::MakeDirectories(configurationDirectory) ||
                          !WriteFile(configurationDirectory + "/configuration.xml", ReadFile(first)))) {
        fault = "cannot stage the first configuration in " + configurationDirectory;
        return false;
    }
    return true;
}

bool RecordingCollector::Held() const
{
    return Exists(RecordDirectory() + "/held");
}

std::vector<RecordingCollector::Call> RecordingCollector::Calls() const
{
    std::vector<Call> calls;
    for (const std::string& line : Split(ReadFile(RecordDirectory() + "/calls"), '\n')) {
        std::vector<std::string> fields = Split(line, '|');
        if (fields.size() < 4)
            continue;
        Call call;
        call.cycle = static_cast<unsigned>(std::strtoul(fields[0].c_str(), nullptr, 10));
        call.runner = fields[1];
        call.time = std::strtod(fields[2].c_str(), nullptr);
        call.command.assign(fields.begin() + 3, fields.end());
        calls.push_back(call);
    }
    return calls;
}

RecordingCollector::Observation RecordingCollector::Observed(unsigned cycle) const
{
    Observation observation;
    std::string seen = RecordDirectory() + "/" + std::to_string(cycle);
    observation.recorded = Exists(seen + "/done");
    observation.exists = Exists(seen + "/identity");
    observation.identity = ReadFile(seen + "/identity");
    observation.content = ReadFile(seen + "/content");
    observation.listing = Split(ReadFile(seen + "/listing"), '\n');
    return observation;
}

} // namespace KivTest

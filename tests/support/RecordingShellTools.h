// SPDX-License-Identifier: Apache-2.0
// RecordingShellTools.h - stand-ins for command-line tools that record how
// they were called.
//
// A test installs small shell scripts under the names of the tools the code
// runs (useradd, id, ...) in a temporary directory that it puts first on
// PATH; the shell of system() and popen() then finds them instead of the
// real tools. Each call appends one line to a log, prints the text chosen
// for the tool and exits with the chosen status. PATH is restored when the
// object goes. One per test, in the main thread:
//
// Example:
//   #include <gtest/gtest.h>
//   SmartPtr<IUserGroup> group(new UserGroup);
//   _Result result = ResultFail;
//   RecordingShellTools tools;
//   tools.Install("groupadd", 0);
//   tools.Install("id", 0, "alice video\n");
//   group->Add("video", result);
//   EXPECT_EQ(tools.Calls(), std::vector<std::string>{"groupadd video"});
#ifndef KIV_TESTS_RECORDINGSHELLTOOLS_H
#define KIV_TESTS_RECORDINGSHELLTOOLS_H

#include <KivTest/TemporaryDirectory.h>

#include <string>
#include <vector>

namespace KivTest {

class RecordingShellTools
{
public:
    RecordingShellTools();
    ~RecordingShellTools();

    RecordingShellTools(const RecordingShellTools&) = delete;
    RecordingShellTools& operator=(const RecordingShellTools&) = delete;

    /// Installs (or replaces) the stand-in \p name: it records its call,
    /// writes \p output to its standard output and exits with \p exitStatus.
    void Install(const std::string& name, int exitStatus = 0, const std::string& output = "");

    /// One line per call so far, in order: the tool's name followed by each
    /// argument after a single space, so for plain arguments exactly the
    /// command line the shell was given.
    std::vector<std::string> Calls() const;

    /// Forgets the calls recorded so far.
    void ClearCalls();

    /// The directory that holds the stand-ins (first on PATH).
    const std::string& Directory() const { return directory.Path(); }

private:
    TemporaryDirectory directory;
    std::string logFile;
    bool hadPath = false;
    std::string savedPath;
};

} // namespace KivTest

#endif

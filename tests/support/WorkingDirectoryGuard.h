// SPDX-License-Identifier: Apache-2.0
// WorkingDirectoryGuard.h - puts the process's working directory back when a
// test that changes it ends, however it ends (a failed ASSERT returns early).
//
// Example:
//   #include <gtest/gtest.h>
//   #include <KivTest/TemporaryDirectory.h>
//   #include <unistd.h>
//   KivTest::TemporaryDirectory directory;
//   KivTest::WorkingDirectoryGuard guard;      // remembers where we are
//   ASSERT_EQ(chdir(directory.Path().c_str()), 0);
//   // work in the directory; back on scope exit
//
// Or remember and enter in one step.
//
// Example:
//   #include <KivTest/TemporaryDirectory.h>
//   KivTest::TemporaryDirectory directory;
//   KivTest::WorkingDirectoryGuard enter(directory.Path());  // remember, then enter
//
// It keeps the old directory open and returns with fchdir, so it also works
// when the old path is longer than getcwd can report. One per scope; the
// working directory is process-wide, so do not use it from several threads.
#ifndef KIV_TESTS_WORKINGDIRECTORYGUARD_H
#define KIV_TESTS_WORKINGDIRECTORYGUARD_H

#include <string>

namespace KivTest {

class WorkingDirectoryGuard
{
public:
    WorkingDirectoryGuard();
    /// Remembers the working directory, then enters \p directory (a failure
    /// to enter is a test failure; the directory is still restored).
    explicit WorkingDirectoryGuard(const std::string& directory);
    ~WorkingDirectoryGuard();

    WorkingDirectoryGuard(const WorkingDirectoryGuard&) = delete;
    WorkingDirectoryGuard& operator=(const WorkingDirectoryGuard&) = delete;

private:
    int saved;
};

} // namespace KivTest

#endif

// WorkingDirectoryGuard.h - puts the process's working directory back when a
// test that changes it ends, however it ends (a failed ASSERT returns early).
//
//   KivTest::WorkingDirectoryGuard guard;      // remembers where we are
//   ASSERT_EQ(chdir(directory.Path().c_str()), 0);
//   ...                                        // back on scope exit
//
// It keeps the old directory open and returns with fchdir, so it also works
// when the old path is longer than getcwd can report. One per scope; the
// working directory is process-wide, so do not use it from several threads.
#ifndef KIV_TESTS_WORKINGDIRECTORYGUARD_H
#define KIV_TESTS_WORKINGDIRECTORYGUARD_H

namespace KivTest {

class WorkingDirectoryGuard
{
public:
    WorkingDirectoryGuard();
    ~WorkingDirectoryGuard();

    WorkingDirectoryGuard(const WorkingDirectoryGuard&) = delete;
    WorkingDirectoryGuard& operator=(const WorkingDirectoryGuard&) = delete;

private:
    int saved;
};

} // namespace KivTest

#endif

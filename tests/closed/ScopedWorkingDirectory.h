// ScopedWorkingDirectory.h - enters a directory for one test scope and goes
// back to the previous working directory when the scope ends, also after a
// failed ASSERT. The description writer works in the current directory, so
// its tests move there. The working directory is process-wide: one at a time.
//
//   ScopedWorkingDirectory enter(directory.Path());
//   ASSERT_TRUE(description.WriteToFile());   // writes into directory.Path()
#ifndef KIV_TESTS_CLOSED_SCOPEDWORKINGDIRECTORY_H
#define KIV_TESTS_CLOSED_SCOPEDWORKINGDIRECTORY_H

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>

class ScopedWorkingDirectory
{
public:
    explicit ScopedWorkingDirectory(const std::string& directory)
        : previous(open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    {
        EXPECT_GE(previous, 0) << std::strerror(errno);
        EXPECT_EQ(chdir(directory.c_str()), 0) << directory << ": " << std::strerror(errno);
    }

    ~ScopedWorkingDirectory()
    {
        if (previous >= 0) {
            EXPECT_EQ(fchdir(previous), 0) << std::strerror(errno);
            close(previous);
        }
    }

    ScopedWorkingDirectory(const ScopedWorkingDirectory&) = delete;
    ScopedWorkingDirectory& operator=(const ScopedWorkingDirectory&) = delete;

private:
    int previous;
};

#endif

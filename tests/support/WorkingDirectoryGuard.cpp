// SPDX-License-Identifier: Apache-2.0
#include <KivTest/WorkingDirectoryGuard.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

namespace KivTest {

WorkingDirectoryGuard::WorkingDirectoryGuard() : saved(open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    if (saved < 0)
        throw std::runtime_error("cannot open the working directory");
}

WorkingDirectoryGuard::WorkingDirectoryGuard(const std::string& directory) : WorkingDirectoryGuard()
{
    EXPECT_EQ(chdir(directory.c_str()), 0) << directory << ": " << std::strerror(errno);
}

WorkingDirectoryGuard::~WorkingDirectoryGuard()
{
    if (fchdir(saved) != 0) {
        // Nothing sensible is left to do in a destructor; the next test
        // starts in a fresh process anyway.
    }
    close(saved);
}

} // namespace KivTest

#include "WorkingDirectoryGuard.h"

#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

namespace KivTest {

WorkingDirectoryGuard::WorkingDirectoryGuard() : saved(open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    if (saved < 0)
        throw std::runtime_error("cannot open the working directory");
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

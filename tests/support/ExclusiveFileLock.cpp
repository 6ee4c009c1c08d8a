// SPDX-License-Identifier: Apache-2.0
#include <KivTest/ExclusiveFileLock.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <sys/file.h>
#include <unistd.h>

namespace KivTest {

ExclusiveFileLock::ExclusiveFileLock(const std::string& path)
    : descriptor(open(path.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC, 0644))
{
    if (descriptor < 0)
        throw std::runtime_error("cannot open the lock file " + path + ": " + std::strerror(errno));
    int result;
    do {
        result = flock(descriptor, LOCK_EX);
    } while (result != 0 && errno == EINTR);
    if (result != 0) {
        int error = errno;
        close(descriptor);
        throw std::runtime_error("cannot lock " + path + ": " + std::strerror(error));
    }
}

ExclusiveFileLock::~ExclusiveFileLock()
{
    // Closing the only descriptor of the open file releases the lock.
    close(descriptor);
}

} // namespace KivTest

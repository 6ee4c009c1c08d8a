// SPDX-License-Identifier: Apache-2.0
#include "AtomicFileWriter.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

namespace KivClosed {

namespace {

/// Bytes of the target's name kept in the temporary name, so that the
/// temporary name stays below the file-name limit of every file system.
const size_t kLongestNamePart = 100;
const int kNameAttempts = 100;

std::string SystemError(int error)
{
    return std::strerror(error);
}

std::string WorkingDirectory()
{
    char buffer[4096];
    if (getcwd(buffer, sizeof buffer) != nullptr)
        return buffer;
    return "the working directory";
}

std::string TemporaryName(const std::string& fileName, int attempt)
{
    struct timespec now = {0, 0};
    clock_gettime(CLOCK_REALTIME, &now);
    uint64_t mixed = static_cast<uint64_t>(now.tv_nsec) ^ (static_cast<uint64_t>(now.tv_sec) << 20) ^
                     (static_cast<uint64_t>(getpid()) << 40) ^ static_cast<uint64_t>(attempt) * 0x9E3779B97F4A7C15ull;
    char suffix[32];
    std::snprintf(suffix, sizeof suffix, ".%012llx.tmp", static_cast<unsigned long long>(mixed & 0xFFFFFFFFFFFFull));
    return "." + fileName.substr(0, kLongestNamePart) + suffix;
}

bool WriteAll(int descriptor, const std::string& content, int& error)
{
    size_t written = 0;
    while (written < content.size()) {
        ssize_t count = ::write(descriptor, content.data() + written, content.size() - written);
        if (count < 0) {
            if (errno == EINTR)
                continue;
            error = errno;
            return false;
        }
        written += static_cast<size_t>(count);
    }
    return true;
}

} // namespace

bool AtomicFileWriter::Replace(const std::string& fileName, const std::string& content, mode_t mode,
                               std::string& fault)
{
    int directory = ::open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory < 0) {
        fault = fileName + ": cannot open the working directory: " + SystemError(errno);
        return false;
    }
    std::string temporary;
    int file = -1;
    for (int attempt = 0; attempt < kNameAttempts && file < 0; ++attempt) {
        temporary = TemporaryName(fileName, attempt);
        file = ::openat(directory, temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode);
        if (file < 0 && errno != EEXIST)
            break;
    }
    if (file < 0) {
        fault = fileName + ": cannot create a temporary file in " + WorkingDirectory() + ": " + SystemError(errno);
        ::close(directory);
        return false;
    }
    int error = 0;
    std::string step;
    // fchmod: the umask must not narrow the mode that readers rely on.
    if (::fchmod(file, mode) != 0) {
        error = errno;
        step = "cannot set the mode of";
    } else if (!WriteAll(file, content, error)) {
        step = "cannot write";
    } else if (::fsync(file) != 0) {
        error = errno;
        step = "cannot flush";
    }
    if (::close(file) != 0 && error == 0) {
        error = errno;
        step = "cannot close";
    }
    if (error == 0 && ::renameat(directory, temporary.c_str(), directory, fileName.c_str()) != 0) {
        error = errno;
        step = "cannot rename the temporary file over";
    }
    if (error != 0) {
        ::unlinkat(directory, temporary.c_str(), 0);
        fault = fileName + ": " + step + " " + fileName + " in " + WorkingDirectory() + ": " + SystemError(error);
        ::close(directory);
        return false;
    }
    bool flushed = ::fsync(directory) == 0;
    if (!flushed)
        fault = fileName + ": replaced, but the directory " + WorkingDirectory() +
                " could not be flushed: " + SystemError(errno);
    ::close(directory);
    return flushed;
}

} // namespace KivClosed

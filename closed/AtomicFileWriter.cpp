// SPDX-License-Identifier: Apache-2.0
#include <KivClosed/AtomicFileWriter.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>
#include <vector>

namespace KivClosed {

namespace {

/// Bytes of the target's name kept in the temporary name, so that the
/// temporary name stays below the file-name limit of every file system.
const std::size_t LongestNamePart = 100;
const int NameAttempts = 100;
/// A temporary name is "." + name part + "." + RandomDigits lower-case hex
/// digits + TemporarySuffix.
const std::size_t RandomDigits = 12;
const char TemporarySuffix[] = ".tmp";
const std::size_t TemporarySuffixLength = sizeof TemporarySuffix - 1;
/// Readable by the writer alone while it is written: nobody else can open
/// it, so nobody else can hold its lock.
const mode_t WritingMode = 0600;

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

std::string TemporaryPrefix(const std::string& fileName)
{
    return "." + fileName.substr(0, LongestNamePart) + ".";
}

bool IsTemporaryName(const std::string& entry, const std::string& prefix)
{
    if (entry.size() != prefix.size() + RandomDigits + TemporarySuffixLength ||
        entry.compare(0, prefix.size(), prefix) != 0 ||
        entry.compare(prefix.size() + RandomDigits, TemporarySuffixLength, TemporarySuffix) != 0)
        return false;
    for (std::size_t index = prefix.size(); index < prefix.size() + RandomDigits; ++index) {
        char digit = entry[index];
        if (!((digit >= '0' && digit <= '9') || (digit >= 'a' && digit <= 'f')))
            return false;
    }
    return true;
}

bool SameFile(const struct stat& one, const struct stat& other)
{
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

/// Removes the temporary file \p name in \p directory if it is stale: a
/// regular file of this user that no process holds locked. The writer locks
/// its temporary file from just after creating it until after the rename, and
/// a process that dies loses its locks, so an unlocked one is left over.
void RemoveIfStale(int directory, const std::string& name)
{
    struct stat named;
    if (::fstatat(directory, name.c_str(), &named, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(named.st_mode) ||
        named.st_uid != ::geteuid())
        return;
    int file = ::openat(directory, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0)
        return;
    struct stat opened;
    struct stat again;
    // The name is looked at again under the lock: only the file that was
    // found unlocked is removed, never one that took its place meanwhile.
    if (::fstat(file, &opened) == 0 && SameFile(opened, named) && ::flock(file, LOCK_EX | LOCK_NB) == 0 &&
        ::fstatat(directory, name.c_str(), &again, AT_SYMLINK_NOFOLLOW) == 0 && SameFile(again, opened))
        ::unlinkat(directory, name.c_str(), 0);
    ::close(file);
}

/// Removes the stale temporary files that writers of \p fileName killed
/// before their rename left in \p directory. Best effort: what cannot be
/// listed or judged stays.
void RemoveStaleTemporaries(int directory, const std::string& fileName)
{
    int listing = ::openat(directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (listing < 0)
        return;
    DIR* entries = ::fdopendir(listing);
    if (entries == nullptr) {
        ::close(listing);
        return;
    }
    const std::string prefix = TemporaryPrefix(fileName);
    std::vector<std::string> candidates;
    while (const struct dirent* entry = ::readdir(entries)) {
        if (IsTemporaryName(entry->d_name, prefix))
            candidates.push_back(entry->d_name);
    }
    ::closedir(entries);
    for (const std::string& candidate : candidates)
        RemoveIfStale(directory, candidate);
}

/// Takes the lock that marks \p file as being written. False when it cannot
/// be ours: a cleaner holds it for the moment, or already removed the name
/// (it found the file before the lock was taken); a new name is then tried.
/// Where the file system has no locks, the file is written unlocked (and no
/// cleaner there can judge it stale either).
bool LockAsBeingWritten(int file)
{
    if (::flock(file, LOCK_EX | LOCK_NB) != 0)
        return errno != EWOULDBLOCK && errno != EINTR;
    struct stat information;
    return ::fstat(file, &information) == 0 && information.st_nlink > 0;
}

std::string TemporaryName(const std::string& fileName, int attempt)
{
    struct timespec now = {0, 0};
    clock_gettime(CLOCK_REALTIME, &now);
    std::uint64_t mixed = static_cast<std::uint64_t>(now.tv_nsec) ^ (static_cast<std::uint64_t>(now.tv_sec) << 20) ^
                     (static_cast<std::uint64_t>(getpid()) << 40) ^ static_cast<std::uint64_t>(attempt) * 0x9E3779B97F4A7C15ull;
    char digits[32];
    std::snprintf(digits, sizeof digits, "%012llx", static_cast<unsigned long long>(mixed & 0xFFFFFFFFFFFFull));
    return TemporaryPrefix(fileName) + digits + TemporarySuffix;
}

bool WriteAll(int descriptor, const std::string& content, int& error)
{
    std::size_t written = 0;
    while (written < content.size()) {
        ssize_t count = ::write(descriptor, content.data() + written, content.size() - written);
        if (count < 0) {
            if (errno == EINTR)
                continue;
            error = errno;
            return false;
        }
        written += static_cast<std::size_t>(count);
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
    RemoveStaleTemporaries(directory, fileName);
    std::string temporary;
    int file = -1;
    for (int attempt = 0; attempt < NameAttempts && file < 0; ++attempt) {
        temporary = TemporaryName(fileName, attempt);
        file = ::openat(directory, temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW,
                        WritingMode);
        if (file < 0 && errno != EEXIST)
            break;
        if (file >= 0 && !LockAsBeingWritten(file)) {
            ::close(file);
            file = -1;
            errno = EEXIST;
        }
    }
    if (file < 0) {
        fault = fileName + ": cannot create a temporary file in " + WorkingDirectory() + ": " + SystemError(errno);
        ::close(directory);
        return false;
    }
    int error = 0;
    std::string step;
    // fchmod once the content is in, before the flush: the umask must not
    // narrow the mode that readers rely on.
    if (!WriteAll(file, content, error)) {
        step = "cannot write";
    } else if (::fchmod(file, mode) != 0) {
        error = errno;
        step = "cannot set the mode of";
    } else if (::fsync(file) != 0) {
        error = errno;
        step = "cannot flush";
    }
    // The file stays open, and so locked, until it is renamed or removed: a
    // cleaner must never find it unlocked under its temporary name.
    if (error == 0 && ::renameat(directory, temporary.c_str(), directory, fileName.c_str()) != 0) {
        error = errno;
        step = "cannot rename the temporary file over";
    }
    if (error != 0)
        ::unlinkat(directory, temporary.c_str(), 0);
    // After a successful fsync a failing close cannot lose the content.
    ::close(file);
    if (error != 0) {
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

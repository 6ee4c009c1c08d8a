// SPDX-License-Identifier: Apache-2.0
#include <KivTest/ThrowawayAccounts.h>

#include <KivTest/MountNamespace.h>
#include <KivTest/TemporaryDirectory.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace KivTest {

namespace {

const char* const accountFilePaths[] = {
    "/etc/passwd", "/etc/shadow",    "/etc/group",      "/etc/gshadow",     "/etc/subuid",
    "/etc/subgid", "/var/log/lastlog", "/var/log/faillog", "/etc/login.defs",
};

// Covers directory with a tmpfs that holds a copy (cp -a) of what it held.
// The shadow tools replace their files by renaming a new one over the old,
// which a file bind-mounted on its own would refuse; a whole directory of
// copies lets them work as they do on the machine.
bool CoverWithCopy(const std::string& directory, std::string& fault)
{
    struct stat original;
    // The descriptor keeps the covered original reachable for cp, through
    // /proc/self/fd, after the tmpfs hides it.
    int originalDirectory = open(directory.c_str(), O_RDONLY | O_DIRECTORY);
    if (originalDirectory < 0 || fstat(originalDirectory, &original) != 0) {
        fault = "open " + directory + ": " + std::strerror(errno);
        return false;
    }
    bool covered = MountNamespace::MountTmpfs(directory, fault);
    if (covered) {
        std::string copy = "cp -a /proc/self/fd/" + std::to_string(originalDirectory) + "/. '" + directory + "'";
        covered = std::system(copy.c_str()) == 0 && chmod(directory.c_str(), original.st_mode & 07777) == 0 &&
                  chown(directory.c_str(), original.st_uid, original.st_gid) == 0;
        if (!covered)
            fault = "copying " + directory + " into the tmpfs over it failed";
    }
    close(originalDirectory);
    return covered;
}

} // namespace

std::string EnterThrowawayAccounts()
{
    std::string fault;
    if (!MountNamespace::Enter(fault) || !CoverWithCopy("/etc", fault))
        return fault;
    for (const char* directory : {"/var/log", "/var/mail", "/home"}) {
        struct stat existing;
        if (stat(directory, &existing) == 0 && !MountNamespace::MountTmpfs(directory, fault))
            return fault;
    }
    return std::string();
}

AccountFiles AccountFiles::Read()
{
    AccountFiles files;
    for (const char* path : accountFilePaths) {
        struct stat status;
        files.contents[path] = stat(path, &status) == 0 ? ReadFile(path) : std::string("<missing>");
    }
    return files;
}

std::string DescribeDifference(const AccountFiles& before, const AccountFiles& after)
{
    std::string text;
    for (const auto& entry : before.contents) {
        auto other = after.contents.find(entry.first);
        if (other == after.contents.end() || other->second != entry.second)
            text += entry.first + " changed; ";
    }
    return text.empty() ? "no difference" : text;
}

ChildOutcome RunWithThrowawayAccounts(const std::string& innerTest, const Environment& environment)
{
    AccountFiles before = AccountFiles::Read();
    ChildOutcome outcome = RunInnerTest(innerTest, environment, EnterThrowawayAccounts);
    AccountFiles after = AccountFiles::Read();
    EXPECT_TRUE(after == before) << DescribeDifference(before, after);
    return outcome;
}

} // namespace KivTest

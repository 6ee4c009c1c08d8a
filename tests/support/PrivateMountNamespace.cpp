#include "PrivateMountNamespace.h"

#include "ChildProcess.h"
#include "Emulation.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace KivTest {

namespace {

std::string Failure(const std::string& what)
{
    return what + ": " + std::strerror(errno);
}

} // namespace

std::string MountNamespaceUnavailable()
{
    if (RunningUnderEmulation())
        return "mount namespaces are not available under qemu-arm emulation";
    if (geteuid() != 0)
        return "making a mount namespace needs root";
    ChildOutcome outcome = RunInChild([] {
        std::string failure = EnterPrivateMountNamespace();
        if (!failure.empty()) {
            std::fputs(failure.c_str(), stderr);
            _exit(1);
        }
    });
    if (!outcome.exited || outcome.exitStatus != 0)
        return "no private mount namespace here (" + outcome.standardError + ")";
    return std::string();
}

std::string EnterPrivateMountNamespace()
{
    if (unshare(CLONE_NEWNS) != 0)
        return Failure("unshare(CLONE_NEWNS)");
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        return Failure("making / private");
    return std::string();
}

std::string ReplaceWithTmpfsCopy(const std::string& directory)
{
    struct stat original;
    if (stat(directory.c_str(), &original) != 0)
        return Failure("stat " + directory);
    // The descriptor keeps the covered original reachable for cp, through
    // /proc/self/fd, after the tmpfs hides it.
    int originalDirectory = open(directory.c_str(), O_RDONLY | O_DIRECTORY);
    if (originalDirectory < 0)
        return Failure("open " + directory);
    std::string failure;
    if (mount("tmpfs", directory.c_str(), "tmpfs", 0, "mode=0755") != 0) {
        failure = Failure("mounting a tmpfs over " + directory);
    } else {
        std::string copy = "cp -a /proc/self/fd/" + std::to_string(originalDirectory) + "/. '" + directory + "'";
        if (std::system(copy.c_str()) != 0)
            failure = "copying the original into the tmpfs over " + directory + " failed";
        else if (chmod(directory.c_str(), original.st_mode & 07777) != 0 ||
                 chown(directory.c_str(), original.st_uid, original.st_gid) != 0)
            failure = Failure("giving the tmpfs over " + directory + " the original's owner and mode");
    }
    close(originalDirectory);
    return failure;
}

std::string ReplaceWithEmptyTmpfs(const std::string& directory)
{
    struct stat original;
    if (stat(directory.c_str(), &original) != 0)
        return std::string();
    if (mount("tmpfs", directory.c_str(), "tmpfs", 0, "mode=0755") != 0)
        return Failure("mounting a tmpfs over " + directory);
    return std::string();
}

} // namespace KivTest

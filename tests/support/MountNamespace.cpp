// SPDX-License-Identifier: Apache-2.0
#include <KivTest/MountNamespace.h>

#include <KivTest/ChildProcess.h>
#include <KivTest/Emulation.h>

#include <cerrno>
#include <cstring>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace KivTest {

namespace {

std::string SystemError(const std::string& what)
{
    return what + ": " + std::strerror(errno);
}

} // namespace

bool MountNamespace::Available(std::string& reason)
{
    if (RunningUnderEmulation()) {
        reason = "mount namespaces cannot be made under qemu-arm user-mode emulation";
        return false;
    }
    ChildOutcome outcome = RunInChild([] {
        std::string fault;
        if (!Enter(fault)) {
            std::fputs(fault.c_str(), stderr);
            std::fflush(stderr);
            _exit(1);
        }
    });
    if (outcome.exited && outcome.exitStatus == 0)
        return true;
    reason = "no private mount namespace available here (" + outcome.standardError + ")";
    return false;
}

bool MountNamespace::Enter(std::string& fault)
{
    if (unshare(CLONE_NEWNS) != 0) {
        fault = SystemError("unshare(CLONE_NEWNS)");
        return false;
    }
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
        fault = SystemError("making / private");
        return false;
    }
    return true;
}

bool MountNamespace::MakeDirectories(const std::string& path)
{
    struct stat information;
    if (stat(path.c_str(), &information) == 0)
        return S_ISDIR(information.st_mode);
    std::string::size_type slash = path.find_last_of('/');
    if (slash != std::string::npos && slash != 0 && !MakeDirectories(path.substr(0, slash)))
        return false;
    return mkdir(path.c_str(), 0755) == 0 || errno == EEXIST;
}

bool MountNamespace::MountTmpfs(const std::string& target, std::string& fault, const std::string& options)
{
    std::string mountPoint = target;
    struct stat information;
    while (stat(mountPoint.c_str(), &information) != 0) {
        std::string::size_type slash = mountPoint.find_last_of('/');
        if (slash == std::string::npos || slash == 0) {
            fault = "no existing directory below / to mount a tmpfs for " + target;
            return false;
        }
        mountPoint.erase(slash);
    }
    if (mount("tmpfs", mountPoint.c_str(), "tmpfs", 0, options.empty() ? nullptr : options.c_str()) != 0) {
        fault = SystemError("mounting a tmpfs on " + mountPoint);
        return false;
    }
    if (!MakeDirectories(target)) {
        fault = SystemError("creating " + target + " in the tmpfs on " + mountPoint);
        return false;
    }
    return true;
}

bool MountNamespace::Bind(const std::string& source, const std::string& target, std::string& fault)
{
    if (mount(source.c_str(), target.c_str(), nullptr, MS_BIND, nullptr) != 0) {
        fault = SystemError("binding " + source + " onto " + target);
        return false;
    }
    return true;
}

} // namespace KivTest

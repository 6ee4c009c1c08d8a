// SPDX-License-Identifier: Apache-2.0
// MountNamespace.h - puts a forked test child into a private mount
// namespace, where it may cover system paths (/dev/shm, /var/lib, /home,
// /sys/class/drm, ...) with tmpfs or bind mounts that the machine never sees.
//
// Call the operations from inside RunInChild (or another forked child) only:
// the namespace lasts as long as that process. Single-threaded processes only.
//
// Example:
//   #include <KivTest/ChildProcess.h>
//   #include <gtest/gtest.h>
//   #include <unistd.h>
//   std::string reason;
//   if (!MountNamespace::Available(reason))
//       GTEST_SKIP() << reason;
//   ChildOutcome outcome = RunInChild([] {
//       std::string fault;
//       if (!MountNamespace::Enter(fault) || !MountNamespace::MountTmpfs("/dev/shm", fault))
//           _exit(2);
//   });
#ifndef KIV_TESTS_MOUNTNAMESPACE_H
#define KIV_TESTS_MOUNTNAMESPACE_H

#include <string>

namespace KivTest {

class MountNamespace
{
public:
    /// True when a test child can make a private mount namespace here: we
    /// are not under qemu-arm emulation and unshare(CLONE_NEWNS) works (it is
    /// tried in a throwaway child). Otherwise false with \p reason saying why,
    /// for GTEST_SKIP.
    static bool Available(std::string& reason);

    /// Moves the calling process into a new mount namespace and makes every
    /// mount in it private, so that nothing mounted afterwards propagates to
    /// the machine. False with \p fault on failure.
    static bool Enter(std::string& fault);

    /// Mounts a fresh tmpfs on \p target (an absolute path). When \p target
    /// does not exist, nothing is created on the machine: the tmpfs goes onto
    /// its nearest existing ancestor other than "/" (hiding the ancestor's
    /// other entries in this namespace) and \p target is made inside it.
    /// \p options go to the mount as data ("size=8k"). False with \p fault.
    static bool MountTmpfs(const std::string& target, std::string& fault, const std::string& options = "");

    /// Binds \p source onto \p target (which must exist). False with \p fault.
    static bool Bind(const std::string& source, const std::string& target, std::string& fault);

    /// Creates \p path and every missing parent with mode 0755; true when
    /// \p path is a directory afterwards. Meant for paths inside mounts that
    /// the test made.
    static bool MakeDirectories(const std::string& path);
};

} // namespace KivTest

#endif

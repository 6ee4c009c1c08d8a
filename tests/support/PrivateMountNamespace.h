// PrivateMountNamespace.h - lets a test change system directories in a
// throwaway copy that only its own child process sees.
//
// In a forked child, EnterPrivateMountNamespace gives the process its own
// mount table with every mount private, so nothing mounted afterwards
// reaches the machine; ReplaceWithTmpfsCopy then puts a writable copy of a
// directory (for instance /etc) over the original. Everything is gone when
// the child ends. Needs root and a kernel that allows it; not under qemu-arm.
//
//   if (std::string reason = MountNamespaceUnavailable(); !reason.empty())
//       GTEST_SKIP() << reason;
//   RunInChild([] {
//       if (!EnterPrivateMountNamespace().empty() || !ReplaceWithTmpfsCopy("/etc").empty())
//           _exit(3);
//       ... // /etc is now a private copy
//   });
#ifndef KIV_TESTS_PRIVATEMOUNTNAMESPACE_H
#define KIV_TESTS_PRIVATEMOUNTNAMESPACE_H

#include <string>

namespace KivTest {

/// Empty when a test process can make a private mount namespace here;
/// otherwise the reason why not (qemu-arm emulation, no privilege, ...),
/// found by trying it in a short-lived child.
std::string MountNamespaceUnavailable();

/// For a forked child only: unshare(CLONE_NEWNS), then make every mount
/// recursively private. Empty on success, else what failed.
std::string EnterPrivateMountNamespace();

/// Inside the private namespace: mounts a tmpfs over \p directory that holds
/// a copy (cp -a) of what the directory held. Mounts below \p directory are
/// not carried over. Empty on success, else what failed.
std::string ReplaceWithTmpfsCopy(const std::string& directory);

/// Inside the private namespace: mounts an empty tmpfs over \p directory.
/// A missing directory is left alone. Empty on success, else what failed.
std::string ReplaceWithEmptyTmpfs(const std::string& directory);

} // namespace KivTest

#endif

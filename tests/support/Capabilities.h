// SPDX-License-Identifier: Apache-2.0
// Capabilities.h - drops a capability from the calling process for good, and
// checks that it is gone.
//
// Tests that must see a privileged call refused (settimeofday without
// CAP_SYS_TIME) run it in a forked child that first drops the capability:
//
// Example:
//   #include <linux/capability.h>
//   #include <unistd.h>
//   std::string why;
//   if (!KivTest::DropCapability(CAP_SYS_TIME, why) || KivTest::MayUseCapability(CAP_SYS_TIME, why))
//       _exit(77);   // never make the call while the capability might remain
//
// Affects the whole calling process; call it only in a child you forked.
#ifndef KIV_TESTS_CAPABILITIES_H
#define KIV_TESTS_CAPABILITIES_H

#include <string>

namespace KivTest {

/// Removes \p capability from the bounding set and from the effective,
/// permitted and inheritable sets (capset through the raw system call).
/// False, with the reason in \p why, when a step failed.
bool DropCapability(int capability, std::string& why);

/// True when \p capability is still in the effective or permitted set or in
/// the bounding set, or when that cannot be read (\p why says which).
bool MayUseCapability(int capability, std::string& why);

} // namespace KivTest

#endif

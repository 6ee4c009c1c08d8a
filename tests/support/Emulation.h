// SPDX-License-Identifier: Apache-2.0
// Emulation.h - what a test needs to know about running under qemu-arm.
//
// The armhf lane runs every test under user-mode emulation. Programs that a
// test starts must be run through the same emulator, and a few things
// (namespaces, PAM preloading, ptrace) do not work there:
//
// Example:
//   #include <gtest/gtest.h>
//   std::string discoverydPath = "/usr/sbin/discoveryd";
//   std::string command = KivTest::EmulatorPrefix() + discoverydPath;
//   if (KivTest::RunningUnderEmulation())
//       GTEST_SKIP() << "mount namespaces are not available under qemu-arm";
#ifndef KIV_TESTS_EMULATION_H
#define KIV_TESTS_EMULATION_H

#include <string>

namespace KivTest {

/// True in the armhf lane, where the tests run under qemu-arm.
inline bool RunningUnderEmulation()
{
    return std::string(KIV_EMULATOR).size() != 0;
}

/// "qemu-arm -L <sysroot> " in the armhf lane, empty on the host: put it in
/// front of a command line that starts one of our own programs.
inline std::string EmulatorPrefix()
{
    return RunningUnderEmulation() ? std::string(KIV_EMULATOR) + " " : std::string();
}

} // namespace KivTest

#endif

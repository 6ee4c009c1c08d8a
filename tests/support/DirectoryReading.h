// SPDX-License-Identifier: Apache-2.0
// DirectoryReading.h - whether this process can enumerate a directory.
//
// Under qemu-arm user-mode emulation the host kernel hands a 32-bit program
// the 64-bit directory offsets of file systems such as ext4, and the C
// library's 32-bit readdir gives up with EOVERFLOW. Tests that enumerate
// directories check first and skip with the reason (the armhf lane reads
// directories fine when TMPDIR is on a tmpfs):
//
// Example:
//   #include <gtest/gtest.h>
//   #include <KivTest/TemporaryDirectory.h>
//   KivTest::TemporaryDirectory directory;
//   std::string reason;
//   if (!KivTest::CanReadDirectory(directory.Path(), reason)) GTEST_SKIP() << reason;
#ifndef KIV_TESTS_DIRECTORYREADING_H
#define KIV_TESTS_DIRECTORYREADING_H

#include <string>

namespace KivTest {

/// True when readdir lists \p directory ("." at least); otherwise false with
/// \p reason saying why.
bool CanReadDirectory(const std::string& directory, std::string& reason);

} // namespace KivTest

#endif

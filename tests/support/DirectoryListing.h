// SPDX-License-Identifier: Apache-2.0
// DirectoryListing.h - the names in one directory, for tests that check
// what a program left behind (no temporary files, exactly one snapshot).
//
// Example:
//   #include <gtest/gtest.h>
//   #include <KivTest/TemporaryDirectory.h>
//   KivTest::TemporaryDirectory directory;
//   EXPECT_EQ(KivTest::ListDirectory(directory.Path()), std::vector<std::string>{"status.xml"});
//
// A free function; any thread.
#ifndef KIV_TESTS_DIRECTORYLISTING_H
#define KIV_TESTS_DIRECTORYLISTING_H

#include <string>
#include <vector>

namespace KivTest {

/// The entry names of \p directory except "." and "..", sorted byte-wise;
/// empty when the directory cannot be read.
std::vector<std::string> ListDirectory(const std::string& directory);

} // namespace KivTest

#endif

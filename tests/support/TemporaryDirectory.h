// SPDX-License-Identifier: Apache-2.0
// TemporaryDirectory.h - a fresh directory under $TMPDIR (or /tmp) for one
// test, removed with everything in it when the object goes.
//
// Example:
//   TemporaryDirectory directory;
//   std::string file = directory.Path() + "/data.txt";
//   WriteFile(file, "hello");
//
// Owned by the test that makes it; not shared between threads.
#ifndef KIV_TESTS_TEMPORARYDIRECTORY_H
#define KIV_TESTS_TEMPORARYDIRECTORY_H

#include <string>

namespace KivTest {

class TemporaryDirectory
{
public:
    TemporaryDirectory();
    ~TemporaryDirectory();

    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    /// The absolute path of the directory, without a trailing slash.
    const std::string& Path() const { return path; }

private:
    std::string path;
};

/// Writes \p content to \p file, replacing it; false on any failure.
bool WriteFile(const std::string& file, const std::string& content);

/// The whole content of \p file, or an empty string if it cannot be read.
std::string ReadFile(const std::string& file);

/// Removes \p path and everything below it, not following symbolic links.
void RemoveTree(const std::string& path);

} // namespace KivTest

#endif

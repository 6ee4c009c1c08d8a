// SPDX-License-Identifier: Apache-2.0
// ExclusiveFileLock.h - holds an exclusive flock on a file for one scope, so
// that test processes started side by side (ctest -j, two lanes at once)
// take turns at a resource that they would otherwise race for.
//
// Example:
//   {
//       KivTest::ExclusiveFileLock turn("/tmp/kiv-pam_wrapper.lock");   // waits
//       // start the child that uses the shared resource
//   }                                                                   // released
//
// The lock file is created when missing and left in place: removing it
// would let a late waiter lock a file that nobody else sees any more.
#ifndef KIV_TESTS_EXCLUSIVEFILELOCK_H
#define KIV_TESTS_EXCLUSIVEFILELOCK_H

#include <string>

namespace KivTest {

class ExclusiveFileLock
{
public:
    /// Opens (creating if needed) \p path and waits for its exclusive lock;
    /// throws std::runtime_error when the file cannot be opened or locked.
    explicit ExclusiveFileLock(const std::string& path);
    ~ExclusiveFileLock();

    ExclusiveFileLock(const ExclusiveFileLock&) = delete;
    ExclusiveFileLock& operator=(const ExclusiveFileLock&) = delete;

private:
    int descriptor;
};

} // namespace KivTest

#endif

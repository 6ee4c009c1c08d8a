// SPDX-License-Identifier: Apache-2.0
// ThrowawayAccounts.h - lets account tests run the real shadow tools
// without touching the machine's accounts.
//
// EnterThrowawayAccounts, called in a forked child (for instance as the
// preparation step of RunInnerTest), gives the child a private mount
// namespace in which /etc is a tmpfs copy of the real one and /var/log,
// /var/mail and /home are empty tmpfs mounts: useradd, groupadd, usermod and
// PAM then change only the copies. AccountFiles takes a byte-for-byte
// picture of the machine's real account files; RunWithThrowawayAccounts
// runs an inner test (InnerTest.h) that way and proves afterwards that the
// machine's files did not change:
//
// Example:
//   #include <gtest/gtest.h>
//   Environment environment;                   // nothing beyond the test's own
//   EXPECT_INNER_TEST_PASSED(RunWithThrowawayAccounts("UserInside.AddAndDelete", environment));
#ifndef KIV_TESTS_THROWAWAYACCOUNTS_H
#define KIV_TESTS_THROWAWAYACCOUNTS_H

#include <KivTest/InnerTest.h>

#include <map>
#include <string>

namespace KivTest {

/// A PATH on which the system's shadow tools are found, for inner tests.
constexpr const char* SystemSearchPath = "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";

/// For a forked child only: private mount namespace (MountNamespace.h),
/// tmpfs copy of /etc, empty tmpfs over /var/log, /var/mail and /home.
/// Empty on success, else what failed. Check MountNamespace::Available first.
std::string EnterThrowawayAccounts();

/// The content of each account file of the machine (passwd, shadow, group,
/// gshadow, subuid, subgid, and the login records in /var/log), by path;
/// a missing file reads as "<missing>".
struct AccountFiles
{
    std::map<std::string, std::string> contents;

    static AccountFiles Read();
    bool operator==(const AccountFiles& other) const { return contents == other.contents; }
};

/// Names the files that differ, for failure messages.
std::string DescribeDifference(const AccountFiles& before, const AccountFiles& after);

/// RunInnerTest with EnterThrowawayAccounts as the preparation; adds a test
/// failure when any of the machine's account files differs afterwards.
ChildOutcome RunWithThrowawayAccounts(const std::string& innerTest, const Environment& environment);

} // namespace KivTest

#endif

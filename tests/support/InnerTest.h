// SPDX-License-Identifier: Apache-2.0
// InnerTest.h - runs one test of the current test executable again in a
// fresh process that was prepared for it.
//
// Some tests need what only a new process can have: a library preloaded
// through LD_PRELOAD, or a private mount namespace with copies of system
// files. The outer test prepares the environment and calls RunInnerTest;
// the child runs the preparation step, sets the environment and executes
// this program again with a filter for the one inner test. The inner test
// skips itself when it is run any other way (for instance by ctest).
//
// Example (namespace scope):
//   #include <gtest/gtest.h>
//   TEST(UserPamInner, RightPassword)
//   {
//       KIV_SKIP_UNLESS_INNER_TEST();
//       // runs with pam_wrapper preloaded
//   }
//   TEST(UserPamTest, RightPasswordGives200)
//   {
//       Environment environment = {{"LD_PRELOAD", "libpam_wrapper.so"}};
//       EXPECT_INNER_TEST_PASSED(RunInnerTest("UserPamInner.RightPassword", environment));
//   }
#ifndef KIV_TESTS_INNERTEST_H
#define KIV_TESTS_INNERTEST_H

#include <KivTest/ChildProcess.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace KivTest {

typedef std::vector<std::pair<std::string, std::string>> Environment;

/// Forks; in the child runs \p prepare (a non-empty answer is the reason it
/// failed: it is printed and the child exits with 3), sets \p environment
/// and executes this program with --gtest_filter=\p testName. Returns how
/// the child ended and what it printed.
ChildOutcome RunInnerTest(const std::string& testName, const Environment& environment,
                          const std::function<std::string()>& prepare = nullptr);

/// True in a process started by RunInnerTest for the test now running.
bool RunningAsInnerTest();

} // namespace KivTest

/// Expects the inner test to have run and passed: the child exited with 0
/// and gtest reported exactly one passed test (not a skip, not "no tests").
#define EXPECT_INNER_TEST_PASSED(outcome)                                                           \
    do {                                                                                            \
        const ::KivTest::ChildOutcome& kivInner = (outcome);                                        \
        EXPECT_TRUE(kivInner.exited && kivInner.exitStatus == 0 &&                                  \
                    kivInner.standardOutput.find("[  PASSED  ] 1 test.") != std::string::npos)      \
            << ::KivTest::Describe(kivInner);                                                       \
    } while (0)

/// The first statement of an inner test: skips it unless RunInnerTest started it.
#define KIV_SKIP_UNLESS_INNER_TEST()                                                                \
    do {                                                                                            \
        if (!::KivTest::RunningAsInnerTest())                                                       \
            GTEST_SKIP() << "runs only in the process that its outer test prepares and starts";     \
    } while (0)

#endif

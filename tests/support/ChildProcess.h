// SPDX-License-Identifier: Apache-2.0
// ChildProcess.h - runs a piece of test code in a forked child and reports
// how the child ended and everything it wrote.
//
// Death tests use it to check that a fatal path ends the process with exit
// status 1 and prints nothing at all, on standard output or standard error:
//
// Example:
//   #include <gtest/gtest.h>
//   ChildOutcome outcome = RunInChild([] { SmartPtr<IObject> empty; empty->AddRef(); });
//   EXPECT_SILENT_EXIT(outcome, 1);
//
// A child that returns from the function exits with status 0.
#ifndef KIV_TESTS_CHILDPROCESS_H
#define KIV_TESTS_CHILDPROCESS_H

#include <functional>
#include <string>

namespace KivTest {

struct ChildOutcome
{
    bool exited = false;        ///< ended through exit or return
    int exitStatus = -1;        ///< valid when exited
    int signalNumber = 0;       ///< the signal that ended it, when !exited
    std::string standardOutput; ///< every byte written to file descriptor 1
    std::string standardError;  ///< every byte written to file descriptor 2
};

/// Forks, runs \p body in the child with its standard output and error
/// captured, and waits for it. Leak checking is switched off in the child:
/// a fatal exit leaves the objects of the test alive on purpose.
ChildOutcome RunInChild(const std::function<void()>& body);

/// Text that describes an outcome, for failure messages.
std::string Describe(const ChildOutcome& outcome);

} // namespace KivTest

/// Expects the child to have exited with \p status and printed nothing.
#define EXPECT_SILENT_EXIT(outcome, status)                                                  \
    do {                                                                                     \
        const ::KivTest::ChildOutcome& kivOutcome = (outcome);                               \
        EXPECT_TRUE(kivOutcome.exited) << ::KivTest::Describe(kivOutcome);                   \
        EXPECT_EQ(kivOutcome.exitStatus, (status)) << ::KivTest::Describe(kivOutcome);       \
        EXPECT_EQ(kivOutcome.standardOutput, "");                                            \
        EXPECT_EQ(kivOutcome.standardError, "");                                             \
    } while (0)

/// Runs \p statement in a child and expects the silent exit with status 1
/// that the library's fatal-error routine makes.
#define EXPECT_FATAL_SILENT(statement) \
    EXPECT_SILENT_EXIT(::KivTest::RunInChild([&] { statement; }), 1)

#endif

// SPDX-License-Identifier: Apache-2.0
// FatalMessage.h - which message a fatal path handed to KivPlr::FatalError.
//
// The fatal-error routine prints nothing, so death tests that must tell one
// fatal error from another run the code in a forked child that reports the
// message through a pipe when the process exits:
//
// Example:
//   #include <gtest/gtest.h>
//   EXPECT_FATAL_MESSAGE(Date(1969, 12, 31), L"year out of range");
//
// The macro also asserts the silent exit with status 1 (EXPECT_FATAL_SILENT).
#ifndef KIV_TESTS_FATALMESSAGE_H
#define KIV_TESTS_FATALMESSAGE_H

#include <KivTest/ChildProcess.h>

#include <functional>
#include <string>

namespace KivTest {

/// Runs \p body in a child and returns the message of the fatal error that
/// ended it, or "<no fatal error>" when the child ended another way.
std::wstring FatalMessageOf(const std::function<void()>& body);

} // namespace KivTest

/// \p statement ends the process silently with status 1, through FatalError
/// with exactly \p message.
#define EXPECT_FATAL_MESSAGE(statement, message)                                  \
    do {                                                                          \
        EXPECT_FATAL_SILENT(statement);                                           \
        EXPECT_EQ(::KivTest::FatalMessageOf([&] { statement; }), std::wstring(message)); \
    } while (0)

#endif

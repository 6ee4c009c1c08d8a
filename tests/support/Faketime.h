// SPDX-License-Identifier: Apache-2.0
// Faketime.h - whether libfaketime can speed up a program's clock here.
//
// The end-to-end tests run the daemons under faketime so that their sleeps
// of minutes pass in seconds; where faketime is missing or cannot do that
// (no preloading, as under qemu-arm) they skip with the reason.
//
// Example:
//   #include <gtest/gtest.h>
//   std::string problem = FaketimeProblem("+0 x300");
//   if (!problem.empty())
//       GTEST_SKIP() << problem;
#ifndef KIV_TESTS_FAKETIME_H
#define KIV_TESTS_FAKETIME_H

#include <string>

namespace KivTest {

/// Why "faketime -f \p speedUp" cannot let sleep(300) pass quickly here, or
/// empty when it can. \p speedUp must speed the clock up enough for that
/// (300 times lets it pass in about a second).
std::string FaketimeProblem(const std::string& speedUp);

} // namespace KivTest

#endif

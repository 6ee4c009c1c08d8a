// SPDX-License-Identifier: Apache-2.0
// LoadTestHelpers.h - the one-fault check shared by the loader tests of the
// closed-library replacements.
//
//   EXPECT_EQ(OnlyFault(config.ErrorMessages(), file), "3:5: attribute port of service is missing");
#ifndef KIV_TESTS_CLOSED_LOADTESTHELPERS_H
#define KIV_TESTS_CLOSED_LOADTESTHELPERS_H

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

/// The one message of a failed load with "<file>:" taken off its front;
/// a test failure when there is not exactly one or it does not start so.
inline std::string OnlyFault(const std::vector<std::string>& messages, const std::string& file)
{
    EXPECT_EQ(messages.size(), 1u) << ::testing::PrintToString(messages);
    if (messages.empty())
        return "";
    std::string prefix = file + ":";
    const std::string& message = messages.front();
    EXPECT_EQ(message.compare(0, prefix.size(), prefix), 0) << message;
    return message.substr(std::min(prefix.size(), message.size()));
}

#endif

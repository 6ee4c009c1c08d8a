// SPDX-License-Identifier: Apache-2.0
#include <KivTest/InnerTest.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace KivTest {

namespace {

constexpr const char* InnerTestVariable = "KIV_INNER_TEST";

} // namespace

ChildOutcome RunInnerTest(const std::string& testName, const Environment& environment,
                          const std::function<std::string()>& prepare)
{
    return RunInChild([&] {
        if (prepare) {
            std::string failure = prepare();
            if (!failure.empty()) {
                std::fprintf(stderr, "preparing %s failed: %s\n", testName.c_str(), failure.c_str());
                std::fflush(stderr);
                _exit(3);
            }
        }
        for (const auto& variable : environment)
            setenv(variable.first.c_str(), variable.second.c_str(), 1);
        setenv(InnerTestVariable, testName.c_str(), 1);
        std::string filter = "--gtest_filter=" + testName;
        std::fflush(nullptr);
        execl("/proc/self/exe", "inner-test", filter.c_str(), static_cast<char*>(nullptr));
        std::perror("execl /proc/self/exe");
        _exit(4);
    });
}

bool RunningAsInnerTest()
{
    const char* wanted = std::getenv(InnerTestVariable);
    const ::testing::TestInfo* current = ::testing::UnitTest::GetInstance()->current_test_info();
    if (wanted == nullptr || current == nullptr)
        return false;
    return std::string(current->test_suite_name()) + "." + current->name() == wanted;
}

} // namespace KivTest

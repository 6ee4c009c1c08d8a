#include "ThrowawayAccounts.h"

#include "PrivateMountNamespace.h"
#include "TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace KivTest {

namespace {

const char* const accountFilePaths[] = {
    "/etc/passwd", "/etc/shadow",    "/etc/group",      "/etc/gshadow",     "/etc/subuid",
    "/etc/subgid", "/var/log/lastlog", "/var/log/faillog", "/etc/login.defs",
};

} // namespace

std::string EnterThrowawayAccounts()
{
    std::string failure = EnterPrivateMountNamespace();
    if (failure.empty())
        failure = ReplaceWithTmpfsCopy("/etc");
    for (const char* directory : {"/var/log", "/var/mail", "/home"}) {
        if (failure.empty())
            failure = ReplaceWithEmptyTmpfs(directory);
    }
    return failure;
}

AccountFiles AccountFiles::Read()
{
    AccountFiles files;
    for (const char* path : accountFilePaths) {
        struct stat status;
        files.contents[path] = stat(path, &status) == 0 ? ReadFile(path) : std::string("<missing>");
    }
    return files;
}

std::string DescribeDifference(const AccountFiles& before, const AccountFiles& after)
{
    std::string text;
    for (const auto& entry : before.contents) {
        auto other = after.contents.find(entry.first);
        if (other == after.contents.end() || other->second != entry.second)
            text += entry.first + " changed; ";
    }
    return text.empty() ? "no difference" : text;
}

ChildOutcome RunWithThrowawayAccounts(const std::string& innerTest, const Environment& environment)
{
    AccountFiles before = AccountFiles::Read();
    ChildOutcome outcome = RunInnerTest(innerTest, environment, EnterThrowawayAccounts);
    AccountFiles after = AccountFiles::Read();
    EXPECT_TRUE(after == before) << DescribeDifference(before, after);
    return outcome;
}

} // namespace KivTest

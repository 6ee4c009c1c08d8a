// SPDX-License-Identifier: Apache-2.0
#include <Discoveryd/ConfigurationPath.h>
#include <KivTest/TemporaryDirectory.h>

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <unistd.h>

using KivTest::TemporaryDirectory;

namespace {

// Heap-allocated so that AddressSanitizer sees any write past the object.
std::string PathFor(const std::string& settingsLink)
{
    auto path = std::make_unique<ConfigurationPath>(settingsLink.c_str());
    return path->Get();
}

std::string LinkTo(const TemporaryDirectory& directory, const std::string& target)
{
    std::string link = directory.Path() + "/kivotrel";
    EXPECT_EQ(symlink(target.c_str(), link.c_str()), 0) << std::strerror(errno);
    return link;
}

} // namespace

TEST(ConfigurationPathTest, MissingSettingsLinkGivesTheSuffixAlone)
{
    TemporaryDirectory directory;
    EXPECT_EQ(PathFor(directory.Path() + "/kivotrel"), "/syscontrol/1.0/configuration");
}

TEST(ConfigurationPathTest, SettingsPathThatIsNoLinkGivesTheSuffixAlone)
{
    TemporaryDirectory directory;
    ASSERT_TRUE(KivTest::WriteFile(directory.Path() + "/kivotrel", "/elsewhere"));
    EXPECT_EQ(PathFor(directory.Path() + "/kivotrel"), "/syscontrol/1.0/configuration");
}

TEST(ConfigurationPathTest, LinkTargetIsFollowedByTheSuffix)
{
    TemporaryDirectory directory;
    EXPECT_EQ(PathFor(LinkTo(directory, "/a")), "/a/syscontrol/1.0/configuration");
}

TEST(ConfigurationPathTest, LinkTargetIsTakenAsWrittenNotResolved)
{
    TemporaryDirectory directory;
    EXPECT_EQ(PathFor(LinkTo(directory, "settings/../x/")),
              "settings/../x//syscontrol/1.0/configuration");
}

TEST(ConfigurationPathTest, TargetOfTwoHundredBytesKeepsTheWholeText)
{
    TemporaryDirectory directory;
    std::string target = "/" + std::string(199, 's');
    std::string path = PathFor(LinkTo(directory, target));
    EXPECT_EQ(path, target + "/syscontrol/1.0/configuration");
    EXPECT_EQ(path.size(), 229u);
}

TEST(ConfigurationPathTest, TargetLongerThanTwoHundredBytesIsCutThere)
{
    TemporaryDirectory directory;
    std::string target = "/" + std::string(170, 'a') + std::string(129, 'b');
    std::string path = PathFor(LinkTo(directory, target));
    EXPECT_EQ(path, target.substr(0, 200) + "/syscontrol/1.0/configuration");
}

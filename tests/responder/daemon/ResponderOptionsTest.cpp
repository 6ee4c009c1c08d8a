// SPDX-License-Identifier: Apache-2.0
#include <KivResponder/ResponderOptions.h>

#include <gtest/gtest.h>
#include <vector>

using KivResponder::ResponderOptions;

namespace {

bool Parse(ResponderOptions& options, std::vector<const char*> arguments)
{
    arguments.insert(arguments.begin(), "discovery-responder");
    return options.Parse(static_cast<int>(arguments.size()), arguments.data());
}

} // namespace

TEST(ResponderOptionsTest, NoArgumentsServeTheDaemonsDirectoriesOnEveryInterface)
{
    ResponderOptions options;
    ASSERT_TRUE(Parse(options, {}));
    EXPECT_EQ(options.Asked(), ResponderOptions::Request::Run);
    EXPECT_EQ(options.DescriptionsDirectory(), "/var/lib/discovery");
    EXPECT_EQ(options.StateDirectory(), "/var/lib/discovery-responder");
    EXPECT_TRUE(options.Interfaces().empty());
}

TEST(ResponderOptionsTest, ValuesComeAsNextArgumentOrAfterEquals)
{
    ResponderOptions options;
    ASSERT_TRUE(Parse(options, {"--descriptions-dir", "/tmp/d", "--state-dir=/tmp/s", "--interface", "eth0",
                                "--interface=eth1"}));
    EXPECT_EQ(options.DescriptionsDirectory(), "/tmp/d");
    EXPECT_EQ(options.StateDirectory(), "/tmp/s");
    EXPECT_EQ(options.Interfaces(), (std::vector<std::string>{"eth0", "eth1"}));
}

TEST(ResponderOptionsTest, AnOptionWithoutItsValueIsAProblem)
{
    ResponderOptions options;
    EXPECT_FALSE(Parse(options, {"--state-dir"}));
    EXPECT_EQ(options.Problem(), "--state-dir needs a value");
    EXPECT_FALSE(Parse(options, {"--interface="}));
    EXPECT_EQ(options.Problem(), "--interface needs a value");
}

TEST(ResponderOptionsTest, AnUnknownArgumentIsAProblem)
{
    ResponderOptions options;
    EXPECT_FALSE(Parse(options, {"--port", "3702"}));
    EXPECT_EQ(options.Problem(), "unknown argument \"--port\"");
}

TEST(ResponderOptionsTest, VersionAnywhereWinsOverWrongArguments)
{
    ResponderOptions options;
    ASSERT_TRUE(Parse(options, {"--bogus", "--version"}));
    EXPECT_EQ(options.Asked(), ResponderOptions::Request::Version);
    EXPECT_EQ(options.Answer(), std::string("discovery-responder ") + KIV_PROJECT_VERSION + "\n");
}

TEST(ResponderOptionsTest, HelpStartsWithTheUsageLine)
{
    ResponderOptions options;
    ASSERT_TRUE(Parse(options, {"--help"}));
    EXPECT_EQ(options.Answer().rfind(std::string(ResponderOptions::Usage) + "\n", 0), 0u);
}

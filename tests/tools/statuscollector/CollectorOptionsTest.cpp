// SPDX-License-Identifier: Apache-2.0
#include <StatusCollector/CollectorOptions.h>

#include <gtest/gtest.h>
#include <vector>

using KivCollector::CollectorOptions;

namespace {

bool Parse(CollectorOptions& options, std::vector<const char*> arguments)
{
    arguments.insert(arguments.begin(), "statuscollector");
    return options.Parse(static_cast<int>(arguments.size()), arguments.data());
}

} // namespace

TEST(CollectorOptionsTest, NoArgumentsWriteTheDaemonsSnapshotWithDiagnostics)
{
    CollectorOptions options;
    EXPECT_TRUE(Parse(options, {}));
    EXPECT_FALSE(options.Quiet());
    EXPECT_EQ(options.OutputFile(), "/dev/shm/status.xml");
    EXPECT_EQ(options.Problem(), "");
}

TEST(CollectorOptionsTest, NologSilencesDiagnostics)
{
    CollectorOptions options;
    EXPECT_TRUE(Parse(options, {"-nolog"}));
    EXPECT_TRUE(options.Quiet());
    EXPECT_EQ(options.OutputFile(), "/dev/shm/status.xml");
}

TEST(CollectorOptionsTest, OutputNamesAnotherFileInEitherOrder)
{
    CollectorOptions options;
    EXPECT_TRUE(Parse(options, {"-output", "/tmp/a.xml", "-nolog"}));
    EXPECT_TRUE(options.Quiet());
    EXPECT_EQ(options.OutputFile(), "/tmp/a.xml");
    EXPECT_TRUE(Parse(options, {"-nolog", "-output", "b.xml"}));
    EXPECT_EQ(options.OutputFile(), "b.xml");
}

TEST(CollectorOptionsTest, TheLastOutputWins)
{
    CollectorOptions options;
    EXPECT_TRUE(Parse(options, {"-output", "a.xml", "-output", "b.xml"}));
    EXPECT_EQ(options.OutputFile(), "b.xml");
}

TEST(CollectorOptionsTest, OutputWithoutAFileIsAProblem)
{
    CollectorOptions options;
    EXPECT_FALSE(Parse(options, {"-output"}));
    EXPECT_EQ(options.Problem(), "-output needs a file name");
    EXPECT_FALSE(Parse(options, {"-output", ""}));
    EXPECT_EQ(options.Problem(), "-output needs a file name");
}

TEST(CollectorOptionsTest, AnUnknownArgumentIsAProblem)
{
    CollectorOptions options;
    EXPECT_FALSE(Parse(options, {"-verbose"}));
    EXPECT_EQ(options.Problem(), "unknown argument \"-verbose\"");
    EXPECT_FALSE(Parse(options, {"status.xml"}));
    EXPECT_EQ(options.Problem(), "unknown argument \"status.xml\"");
}

TEST(CollectorOptionsTest, NologCountsEvenAfterAProblem)
{
    CollectorOptions options;
    EXPECT_FALSE(Parse(options, {"-bad", "-nolog"}));
    EXPECT_TRUE(options.Quiet());
}

TEST(CollectorOptionsTest, ParseStartsAfresh)
{
    CollectorOptions options;
    EXPECT_TRUE(Parse(options, {"-nolog", "-output", "a.xml"}));
    EXPECT_TRUE(Parse(options, {}));
    EXPECT_FALSE(options.Quiet());
    EXPECT_EQ(options.OutputFile(), "/dev/shm/status.xml");
}

TEST(CollectorOptionsTest, HelpAnywhereAsksForHelpAndSkipsTheOtherArguments)
{
    CollectorOptions options;
    EXPECT_TRUE(Parse(options, {"-output", "--help", "-bogus"}));
    EXPECT_EQ(options.Asked(), CollectorOptions::Request::Help);
    EXPECT_EQ(options.Problem(), "");
    EXPECT_EQ(options.Answer().rfind(std::string(CollectorOptions::Usage) + "\n", 0), 0u) << options.Answer();
}

TEST(CollectorOptionsTest, TheFirstOfVersionAndHelpDecides)
{
    CollectorOptions options;
    EXPECT_TRUE(Parse(options, {"--version", "--help"}));
    EXPECT_EQ(options.Asked(), CollectorOptions::Request::Version);
    EXPECT_EQ(options.Answer(), std::string("statuscollector ") + KIV_PROJECT_VERSION + "\n");
    EXPECT_TRUE(Parse(options, {"-nolog"}));
    EXPECT_EQ(options.Asked(), CollectorOptions::Request::Collect);
    EXPECT_EQ(options.Answer(), "");
}

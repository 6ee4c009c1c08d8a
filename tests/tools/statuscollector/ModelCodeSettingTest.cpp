// SPDX-License-Identifier: Apache-2.0
#include <StatusCollector/ModelCodeSetting.h>

#include <StatusCollector/CollectedStatus.h>

#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>

using KivCollector::CollectedStatus;
using KivCollector::ModelCodeSetting;

namespace {

/// Sets the model code variable for one test and puts the old value back.
class ModelCodeSettingTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const char* old = std::getenv(ModelCodeSetting::VariableName);
        hadValue = old != nullptr;
        if (hadValue)
            oldValue = old;
    }

    void TearDown() override
    {
        if (hadValue)
            setenv(ModelCodeSetting::VariableName, oldValue.c_str(), 1);
        else
            unsetenv(ModelCodeSetting::VariableName);
    }

    bool hadValue = false;
    std::string oldValue;
};

} // namespace

TEST_F(ModelCodeSettingTest, UnsetGivesTheUnknownModelWithoutWarning)
{
    unsetenv(ModelCodeSetting::VariableName);
    std::string warning;
    EXPECT_EQ(ModelCodeSetting::Read(warning), CollectedStatus::UnknownModelCode);
    EXPECT_EQ(warning, "");
}

TEST_F(ModelCodeSettingTest, EmptyGivesTheUnknownModelWithoutWarning)
{
    setenv(ModelCodeSetting::VariableName, "", 1);
    std::string warning;
    EXPECT_EQ(ModelCodeSetting::Read(warning), CollectedStatus::UnknownModelCode);
    EXPECT_EQ(warning, "");
}

TEST_F(ModelCodeSettingTest, ReadsADecimalValue)
{
    setenv(ModelCodeSetting::VariableName, "3", 1);
    std::string warning;
    EXPECT_EQ(ModelCodeSetting::Read(warning), 3u);
    EXPECT_EQ(warning, "");
}

TEST_F(ModelCodeSettingTest, ABadValueGivesTheUnknownModelAndAWarning)
{
    setenv(ModelCodeSetting::VariableName, "-3", 1);
    std::string warning;
    EXPECT_EQ(ModelCodeSetting::Read(warning), CollectedStatus::UnknownModelCode);
    EXPECT_EQ(warning, "STATUSCOLLECTOR_MODEL_CODE=\"-3\" is not a decimal number within 0..4294967295; the model "
                       "code stays unknown");
}

TEST(ModelCodeSettingParseTest, AcceptsTheWholeUnsigned32BitRange)
{
    std::uint32_t code = 7;
    EXPECT_TRUE(ModelCodeSetting::Parse("0", code));
    EXPECT_EQ(code, 0u);
    EXPECT_TRUE(ModelCodeSetting::Parse("4294967295", code));
    EXPECT_EQ(code, 4294967295u);
    EXPECT_TRUE(ModelCodeSetting::Parse("0000000012", code));
    EXPECT_EQ(code, 12u);
}

TEST(ModelCodeSettingParseTest, RefusesAnythingButDecimalDigitsWithinRange)
{
    for (const char* text : {"", "4294967296", "99999999999", "+3", "-3", " 3", "3 ", "0x3", "3a", "1e3"}) {
        std::uint32_t code = 7;
        EXPECT_FALSE(ModelCodeSetting::Parse(text, code)) << text;
        EXPECT_EQ(code, 7u) << text;
    }
}

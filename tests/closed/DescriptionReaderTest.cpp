// SPDX-License-Identifier: Apache-2.0
#include <KivDiscoveryClient/DescriptionReader.h>

#include <KivTest/TemporaryDirectory.h>
#include "LoadTestHelpers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using KivDiscoveryClient::DescriptionReader;
using KivTest::TemporaryDirectory;
using KivTest::WriteFile;

namespace {

class DescriptionReaderTest : public ::testing::Test
{
protected:
    bool Load(const std::string& content)
    {
        EXPECT_TRUE(WriteFile(File(), content));
        return reader.Load(File().c_str());
    }

    std::string File() const { return directory.Path() + "/Management.xml"; }

    std::string OnlyFault() const { return ::OnlyFault(reader.ErrorMessages(), File()); }

    TemporaryDirectory directory;
    DescriptionReader reader;
};

} // namespace

TEST_F(DescriptionReaderTest, NewReaderHoldsAnEmptyDescription)
{
    EXPECT_EQ(reader.Name(), "");
    EXPECT_TRUE(reader.Types().empty());
    EXPECT_TRUE(reader.Scopes().empty());
    EXPECT_EQ(reader.Port(), 0u);
    EXPECT_EQ(reader.MetaData(), "");
}

TEST_F(DescriptionReaderTest, ReadsEveryPart)
{
    ASSERT_TRUE(Load("<service name=\"Management\"><type>t1</type><scope>s1</scope><type>t2</type>"
                     "<port>8080</port><metadata>&lt;a&gt;</metadata></service>"))
        << reader.ErrorMessage();
    EXPECT_EQ(reader.Name(), "Management");
    EXPECT_EQ(reader.Types(), (std::vector<std::string>{"t1", "t2"}));
    EXPECT_EQ(reader.Scopes(), (std::vector<std::string>{"s1"}));
    EXPECT_EQ(reader.Port(), 8080u);
    EXPECT_EQ(reader.MetaData(), "<a>");
}

TEST_F(DescriptionReaderTest, MissingMetadataIsEmpty)
{
    ASSERT_TRUE(Load("<service name=\"n\"><port>1</port></service>"));
    EXPECT_EQ(reader.MetaData(), "");
}

TEST_F(DescriptionReaderTest, NameAndPortAreRequired)
{
    EXPECT_FALSE(Load("<service><port>1</port></service>"));
    EXPECT_EQ(OnlyFault(), "1:1: attribute name of service is missing");
    EXPECT_FALSE(Load("<service name=\"n\">\n</service>"));
    EXPECT_EQ(OnlyFault(), "1:1: element port of service is missing");
}

TEST_F(DescriptionReaderTest, PortIsSixteenBits)
{
    ASSERT_TRUE(Load("<service name=\"n\"><port>65535</port></service>"));
    EXPECT_EQ(reader.Port(), 65535u);
    EXPECT_FALSE(Load("<service name=\"n\"><port>65536</port></service>"));
    EXPECT_EQ(OnlyFault(), "1:19: element port: 65536 is out of range 0..65535");
}

TEST_F(DescriptionReaderTest, PortOrMetadataGivenTwiceFails)
{
    EXPECT_FALSE(Load("<service name=\"n\"><port>1</port><port>1</port></service>"));
    EXPECT_EQ(OnlyFault(), "1:33: element port of service is given twice (first at 1:19)");
    EXPECT_FALSE(Load("<service name=\"n\"><port>1</port><metadata/><metadata/></service>"));
    EXPECT_EQ(OnlyFault(), "1:44: element metadata of service is given twice (first at 1:33)");
}

TEST_F(DescriptionReaderTest, UnknownElementsAndAttributesAreIgnored)
{
    ASSERT_TRUE(Load("<service name=\"n\" version=\"2\"><port>1</port><ttl>60</ttl><type lang=\"x\">t</type>"
                     "</service>"));
    EXPECT_EQ(reader.Types(), (std::vector<std::string>{"t"}));
}

TEST_F(DescriptionReaderTest, FailedLoadKeepsTheEarlierValues)
{
    ASSERT_TRUE(Load("<service name=\"first\"><type>t</type><port>2</port><metadata>m</metadata></service>"));
    EXPECT_FALSE(Load("<service name=\"second\"><type>u</type><port>x</port></service>"));
    EXPECT_EQ(reader.Name(), "first");
    EXPECT_EQ(reader.Types(), (std::vector<std::string>{"t"}));
    EXPECT_EQ(reader.Port(), 2u);
    EXPECT_EQ(reader.MetaData(), "m");
}

TEST_F(DescriptionReaderTest, WrongRootAndMissingFileFail)
{
    EXPECT_FALSE(Load("<services/>"));
    EXPECT_EQ(OnlyFault(), "1:1: root element is services, expected service");
    std::string missing = directory.Path() + "/absent.xml";
    EXPECT_FALSE(reader.Load(missing.c_str()));
    EXPECT_EQ(reader.ErrorMessage(), "cannot open " + missing + ": No such file or directory");
    EXPECT_FALSE(reader.Load(nullptr));
    EXPECT_EQ(reader.ErrorMessage(), "no description file given");
}

// SPDX-License-Identifier: Apache-2.0
#include <KivClosed/XmlRecordReader.h>

#include <KivTest/TemporaryDirectory.h>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <ctime>
#include <string>
#include <thread>

using KivClosed::LastGoodFile;
using KivClosed::XmlRecordReader;
using KivTest::TemporaryDirectory;
using KivTest::WriteFile;

namespace {

const XmlRecordReader::Element ZoneElements[] = {
    {"configuration", XmlRecordReader::NoParent, XmlRecordReader::Children, 1, 0, false},
    {"timeZone", 0, XmlRecordReader::Text, 1, 0, false},
};

/// Reads the one text of ZoneElements.
class ZoneReader : public XmlRecordReader
{
public:
    explicit ZoneReader(const std::string& path) : XmlRecordReader(path, 1048576, 4096, ZoneElements, 2) {}

    std::string zone;

protected:
    void TextRead(int, std::string& text) override { zone.swap(text); }
};

std::string Zone(const std::string& name)
{
    return "<configuration><timeZone>" + name + "</timeZone></configuration>\n";
}

class XmlRecordReaderTest : public ::testing::Test
{
protected:
    /// Loads the file; \p opened tells whether the load opened it.
    XmlRecordReader::Outcome Load(std::string& zone, bool& opened)
    {
        std::uint64_t before = XmlRecordReader::FilesOpened();
        ZoneReader reader(File());
        XmlRecordReader::Outcome outcome = reader.Load(lastGood);
        opened = XmlRecordReader::FilesOpened() != before;
        zone = reader.zone;
        return outcome;
    }

    /// Waits (a bounded few seconds) until the file's change time lies more
    /// than LastGoodFile::SettledSeconds in the past.
    void WaitUntilSettled()
    {
        struct stat status;
        ASSERT_EQ(stat(File().c_str(), &status), 0);
        for (int round = 0; round < 100; ++round) {
            struct timespec now;
            clock_gettime(CLOCK_REALTIME, &now);
            if (now.tv_sec - status.st_ctim.tv_sec > LastGoodFile::SettledSeconds)
                return;
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        FAIL() << "the file's change time did not settle within 10 s";
    }

    std::string File() const { return directory.Path() + "/configuration.xml"; }

    TemporaryDirectory directory;
    LastGoodFile lastGood;
};

} // namespace

TEST_F(XmlRecordReaderTest, FreshlyWrittenFileIsReadOnEveryLoad)
{
    ASSERT_TRUE(WriteFile(File(), Zone("UTC")));
    std::string zone;
    bool opened = false;
    EXPECT_EQ(Load(zone, opened), XmlRecordReader::Parsed);
    EXPECT_TRUE(opened);
    EXPECT_EQ(zone, "UTC");
    // Written just now: its stamps cannot vouch for it yet, the bytes do.
    EXPECT_EQ(Load(zone, opened), XmlRecordReader::Unchanged);
    EXPECT_TRUE(opened);
}

TEST_F(XmlRecordReaderTest, SettledUntouchedFileIsNotOpenedAgain)
{
    ASSERT_TRUE(WriteFile(File(), Zone("UTC")));
    WaitUntilSettled();
    std::string zone;
    bool opened = false;
    ASSERT_EQ(Load(zone, opened), XmlRecordReader::Parsed);
    EXPECT_EQ(Load(zone, opened), XmlRecordReader::Unchanged);
    EXPECT_FALSE(opened);
    EXPECT_EQ(Load(zone, opened), XmlRecordReader::Unchanged);
    EXPECT_FALSE(opened);
    // Any write changes the stamps: the same size, other bytes, parsed.
    ASSERT_TRUE(WriteFile(File(), Zone("CET")));
    EXPECT_EQ(Load(zone, opened), XmlRecordReader::Parsed);
    EXPECT_TRUE(opened);
    EXPECT_EQ(zone, "CET");
}

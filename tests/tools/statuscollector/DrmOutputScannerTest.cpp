// SPDX-License-Identifier: Apache-2.0
#include <StatusCollector/DrmOutputScanner.h>

#include <KivTest/TemporaryDirectory.h>

#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using KivCollector::CollectedStatus;
using KivCollector::DrmOutputScanner;

namespace {

class DrmOutputScannerTest : public ::testing::Test
{
protected:
    /// Makes the entry \p name, with a status file holding \p status unless
    /// that is null.
    void AddEntry(const std::string& name, const char* status)
    {
        ASSERT_EQ(mkdir((directory.Path() + "/" + name).c_str(), 0755), 0);
        if (status != nullptr) {
            ASSERT_TRUE(KivTest::WriteFile(directory.Path() + "/" + name + "/status", status));
        }
    }

    std::vector<CollectedStatus::Output> Scan()
    {
        std::vector<CollectedStatus::Output> outputs;
        std::string fault;
        EXPECT_TRUE(DrmOutputScanner(directory.Path()).Scan(outputs, fault)) << fault;
        return outputs;
    }

    KivTest::TemporaryDirectory directory;
};

MATCHER_P2(IsOutput, number, kind, "")
{
    return arg.number == static_cast<std::uint32_t>(number) && arg.kind == static_cast<std::uint32_t>(kind) &&
           arg.rows == 1 && arg.columns == 1;
}

} // namespace

TEST_F(DrmOutputScannerTest, NumbersConnectorsFromOneInNameOrderWithTheirKinds)
{
    AddEntry("card0-HDMI-A-1", "connected\n");
    AddEntry("card0-DP-1", "disconnected\n");
    EXPECT_THAT(Scan(), ::testing::ElementsAre(IsOutput(1, CollectedStatus::DisconnectedKind),
                                               IsOutput(2, CollectedStatus::ConnectedKind)));
}

TEST_F(DrmOutputScannerTest, OrdersNamesByteWiseAcrossCards)
{
    AddEntry("card1-HDMI-A-2", "connected\n");
    AddEntry("card10-DP-1", "unknown\n");
    AddEntry("card0-eDP-1", "connected\n");
    // card0-eDP-1, card1-HDMI-A-2, card10-DP-1
    EXPECT_THAT(Scan(), ::testing::ElementsAre(IsOutput(1, CollectedStatus::ConnectedKind),
                                               IsOutput(2, CollectedStatus::ConnectedKind),
                                               IsOutput(3, CollectedStatus::DisconnectedKind)));
}

TEST_F(DrmOutputScannerTest, SkipsEntriesThatAreNotConnectors)
{
    AddEntry("card0", nullptr);
    AddEntry("renderD128", nullptr);
    AddEntry("card0-VGA-1", "connected\n");
    ASSERT_TRUE(KivTest::WriteFile(directory.Path() + "/version", "drm 1.1.0 20060810\n"));
    EXPECT_THAT(Scan(), ::testing::ElementsAre(IsOutput(1, CollectedStatus::ConnectedKind)));
}

TEST_F(DrmOutputScannerTest, CountsAnythingButConnectedAsDisconnected)
{
    AddEntry("card0-A-1", "connected");
    AddEntry("card0-B-1", "unknown\n");
    AddEntry("card0-C-1", "Connected\n");
    AddEntry("card0-D-1", " connected\n");
    AddEntry("card0-E-1", "");
    AddEntry("card0-F-1", nullptr);
    EXPECT_THAT(Scan(), ::testing::ElementsAre(IsOutput(1, CollectedStatus::ConnectedKind),
                                               IsOutput(2, CollectedStatus::DisconnectedKind),
                                               IsOutput(3, CollectedStatus::DisconnectedKind),
                                               IsOutput(4, CollectedStatus::DisconnectedKind),
                                               IsOutput(5, CollectedStatus::DisconnectedKind),
                                               IsOutput(6, CollectedStatus::DisconnectedKind)));
}

TEST_F(DrmOutputScannerTest, FollowsSymbolicLinksAsTheKernelMakesThem)
{
    AddEntry("device-of-card0-DP-2", "connected\n");
    ASSERT_EQ(symlink("device-of-card0-DP-2", (directory.Path() + "/card0-DP-2").c_str()), 0);
    EXPECT_THAT(Scan(), ::testing::ElementsAre(IsOutput(1, CollectedStatus::ConnectedKind)));
}

TEST_F(DrmOutputScannerTest, AnEmptyDirectoryGivesNoOutputs)
{
    EXPECT_TRUE(Scan().empty());
}

TEST_F(DrmOutputScannerTest, AMissingDirectoryGivesNoOutputsAndNoFault)
{
    std::vector<CollectedStatus::Output> outputs(2);
    std::string fault;
    EXPECT_TRUE(DrmOutputScanner(directory.Path() + "/missing").Scan(outputs, fault));
    EXPECT_TRUE(outputs.empty());
    EXPECT_EQ(fault, "");
}

TEST_F(DrmOutputScannerTest, ADirectoryThatCannotBeReadFails)
{
    ASSERT_TRUE(KivTest::WriteFile(directory.Path() + "/file", "x"));
    std::vector<CollectedStatus::Output> outputs(2);
    std::string fault;
    EXPECT_FALSE(DrmOutputScanner(directory.Path() + "/file").Scan(outputs, fault));
    EXPECT_TRUE(outputs.empty());
    EXPECT_EQ(fault, "cannot read " + directory.Path() + "/file: Not a directory");
}

TEST(DrmOutputScannerNameTest, RecognisesConnectorNames)
{
    EXPECT_TRUE(DrmOutputScanner::IsConnectorName("card0-HDMI-A-1"));
    EXPECT_TRUE(DrmOutputScanner::IsConnectorName("card12-X"));
    EXPECT_FALSE(DrmOutputScanner::IsConnectorName("card0"));
    EXPECT_FALSE(DrmOutputScanner::IsConnectorName("card0-"));
    EXPECT_FALSE(DrmOutputScanner::IsConnectorName("card-DP-1"));
    EXPECT_FALSE(DrmOutputScanner::IsConnectorName("cardA-DP-1"));
    EXPECT_FALSE(DrmOutputScanner::IsConnectorName("renderD128"));
    EXPECT_FALSE(DrmOutputScanner::IsConnectorName("version"));
    EXPECT_FALSE(DrmOutputScanner::IsConnectorName(""));
}

// SPDX-License-Identifier: Apache-2.0
#include <KivClosed/LastGoodFile.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using KivClosed::LastGoodFile;

namespace {

const std::string Bytes = "<status/>\n";

/// The stat of a file holding Bytes, last changed at \p changedSeconds.
struct stat StatusChangedAt(std::time_t changedSeconds)
{
    struct stat status;
    std::memset(&status, 0, sizeof status);
    status.st_dev = 8;
    status.st_ino = 4711;
    status.st_size = static_cast<off_t>(Bytes.size());
    status.st_mode = S_IFREG | 0644;
    status.st_mtim = {changedSeconds, 250};
    status.st_ctim = {changedSeconds, 500};
    return status;
}

struct timespec At(std::time_t seconds, long nanoseconds = 0)
{
    return {seconds, nanoseconds};
}

/// A LastGoodFile remembering Bytes from a file changed at 1000 s, read at
/// \p now.
LastGoodFile RememberedAt(const struct timespec& now)
{
    LastGoodFile lastGood;
    std::string bytes = Bytes;
    lastGood.Remember(bytes, StatusChangedAt(1000), now);
    return lastGood;
}

} // namespace

TEST(LastGoodFileTest, NothingRememberedVouchesForNoFile)
{
    LastGoodFile lastGood;
    EXPECT_FALSE(lastGood.IsSettled());
    EXPECT_FALSE(lastGood.StillHolds(StatusChangedAt(1000)));
    EXPECT_FALSE(lastGood.SameBytes(""));
    EXPECT_FALSE(lastGood.SameBytes(Bytes));
}

TEST(LastGoodFileTest, SettledUntouchedFileIsVouchedForByItsStamps)
{
    LastGoodFile lastGood = RememberedAt(At(1010));
    EXPECT_TRUE(lastGood.IsSettled());
    EXPECT_TRUE(lastGood.StillHolds(StatusChangedAt(1000)));
    EXPECT_TRUE(lastGood.SameBytes(Bytes));
}

TEST(LastGoodFileTest, FileChangedLessThanThreeSecondsBeforeTheReadIsNotVouchedFor)
{
    // A write in the same coarse clock tick as the read could leave the
    // stamps as they were: such a file is read again every time.
    LastGoodFile lastGood = RememberedAt(At(1003, 499));
    EXPECT_FALSE(lastGood.IsSettled());
    EXPECT_FALSE(lastGood.StillHolds(StatusChangedAt(1000)));
    EXPECT_TRUE(lastGood.SameBytes(Bytes));
    EXPECT_TRUE(RememberedAt(At(1003, 500)).StillHolds(StatusChangedAt(1000)));
}

TEST(LastGoodFileTest, ChangeTimeAfterTheReadIsNeverSettled)
{
    // A clock set back: the file's stamp lies ahead of the reader's time.
    EXPECT_FALSE(RememberedAt(At(900)).IsSettled());
}

TEST(LastGoodFileTest, AnyOtherIdentityOrStampIsNotTheRememberedFile)
{
    LastGoodFile lastGood = RememberedAt(At(2000));
    struct stat changed = StatusChangedAt(1000);
    changed.st_dev = 9;
    EXPECT_FALSE(lastGood.StillHolds(changed));
    changed = StatusChangedAt(1000);
    changed.st_ino = 4712;
    EXPECT_FALSE(lastGood.StillHolds(changed));
    changed = StatusChangedAt(1000);
    changed.st_size += 1;
    EXPECT_FALSE(lastGood.StillHolds(changed));
    changed = StatusChangedAt(1000);
    changed.st_mode = S_IFREG | 0600;
    EXPECT_FALSE(lastGood.StillHolds(changed));
    changed = StatusChangedAt(1000);
    changed.st_mtim.tv_nsec += 1;
    EXPECT_FALSE(lastGood.StillHolds(changed));
    changed = StatusChangedAt(1000);
    changed.st_ctim.tv_nsec += 1;
    EXPECT_FALSE(lastGood.StillHolds(changed));
    changed = StatusChangedAt(1000);
    changed.st_ctim.tv_sec += 1;
    EXPECT_FALSE(lastGood.StillHolds(changed));
}

TEST(LastGoodFileTest, BytesThatDoNotFillTheStatedFileAreNotVouchedFor)
{
    // The file grew or shrank between its stat and the read.
    LastGoodFile lastGood;
    std::string bytes = Bytes + "more";
    lastGood.Remember(bytes, StatusChangedAt(1000), At(2000));
    EXPECT_FALSE(lastGood.IsSettled());
}

TEST(LastGoodFileTest, ConfirmedRereadLetsTheFileSettleLater)
{
    LastGoodFile lastGood = RememberedAt(At(1001));
    ASSERT_FALSE(lastGood.StillHolds(StatusChangedAt(1000)));
    lastGood.Confirm(StatusChangedAt(1000), At(1005));
    EXPECT_TRUE(lastGood.StillHolds(StatusChangedAt(1000)));
    EXPECT_TRUE(lastGood.SameBytes(Bytes));
}

TEST(LastGoodFileTest, EmptyBytesAreNeverGood)
{
    LastGoodFile lastGood;
    std::string empty;
    struct stat status = StatusChangedAt(1000);
    status.st_size = 0;
    lastGood.Remember(empty, status, At(2000));
    EXPECT_FALSE(lastGood.SameBytes(""));
    EXPECT_FALSE(lastGood.StillHolds(status));
}

// SPDX-License-Identifier: Apache-2.0
#include <KivClosed/LastGoodFile.h>

namespace KivClosed {

namespace {

bool SameTime(const struct timespec& left, const struct timespec& right)
{
    return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

/// True when \p changed lies at least SettledSeconds before \p now. A change
/// time in the future (a clock set back) never counts as settled.
bool Settled(const struct timespec& changed, const struct timespec& now)
{
    return now.tv_sec - changed.tv_sec > LastGoodFile::SettledSeconds ||
           (now.tv_sec - changed.tv_sec == LastGoodFile::SettledSeconds && now.tv_nsec >= changed.tv_nsec);
}

} // namespace

bool LastGoodFile::StillHolds(const struct stat& status) const
{
    return settled && !bytes.empty() && status.st_dev == device && status.st_ino == inode &&
           status.st_size == size && status.st_mode == mode && SameTime(status.st_mtim, modified) &&
           SameTime(status.st_ctim, changed);
}

void LastGoodFile::Remember(std::string& newBytes, const struct stat& status, const struct timespec& now)
{
    bytes.swap(newBytes);
    Confirm(status, now);
}

void LastGoodFile::Confirm(const struct stat& status, const struct timespec& now)
{
    device = status.st_dev;
    inode = status.st_ino;
    size = status.st_size;
    mode = status.st_mode;
    modified = status.st_mtim;
    changed = status.st_ctim;
    // Remembered bytes that no longer fill the file as it was stated cannot
    // be vouched for by its stamps.
    settled = static_cast<off_t>(bytes.size()) == status.st_size && Settled(status.st_ctim, now);
}

} // namespace KivClosed

// SPDX-License-Identifier: Apache-2.0
// LastGoodFile.h - what a loader remembers of the last file it loaded
// without a fault: its bytes, and the file's identity and times as they
// were when the bytes were read.
//
// The bytes decide whether a file read again is the same one, so that it
// keeps the record without a parse. The identity saves even the read: a file
// whose device, inode, size, mode, modification and change times are all as
// remembered has not been written since, provided its change time had
// already settled when it was remembered. The kernel stamps every write with
// the current time, but coarsely (a clock tick, whole seconds on some file
// systems), so a write in the same tick as the one remembered could leave the
// stamps as they were; a file whose change time was at least
// SettledSeconds in the past when it was remembered cannot meet that case.
// A file that had not settled is read and compared byte for byte each time
// until it has.
//
// Example:
//   KivClosed::LastGoodFile lastGood;
//   struct stat status;
//   if (stat("/dev/shm/status.xml", &status) == 0 && lastGood.StillHolds(status))
//       return;   // unchanged: neither read nor parsed
#ifndef KIV_CLOSED_LASTGOODFILE_H
#define KIV_CLOSED_LASTGOODFILE_H

#include <sys/stat.h>
#include <ctime>
#include <string>

namespace KivClosed {

class LastGoodFile
{
public:
    /// Seconds a file's change time must lie in the past for its stamps
    /// alone to vouch for its bytes.
    static constexpr std::time_t SettledSeconds = 3;

    /// Nothing remembered: no file matches.
    LastGoodFile() = default;

    /// True when remembered stamps can vouch for the file's bytes: only
    /// then is a stat worth making before reading.
    bool IsSettled() const { return settled; }

    /// True when \p status is the remembered file, untouched since its
    /// settled stamps were taken.
    bool StillHolds(const struct stat& status) const;

    /// True when \p candidate holds the remembered bytes (never for an empty
    /// remembered text: an empty file is never good).
    bool SameBytes(const std::string& candidate) const { return !bytes.empty() && candidate == bytes; }

    /// Takes \p newBytes (by swapping) as the last good file, read from the
    /// file of \p status at \p now (wall clock).
    void Remember(std::string& newBytes, const struct stat& status, const struct timespec& now);

    /// The remembered bytes were read again from the file of \p status at
    /// \p now: its stamps replace the remembered ones.
    void Confirm(const struct stat& status, const struct timespec& now);

private:
    std::string bytes;
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    mode_t mode = 0;
    struct timespec modified = {0, 0};
    struct timespec changed = {0, 0};
    bool settled = false;
};

} // namespace KivClosed

#endif

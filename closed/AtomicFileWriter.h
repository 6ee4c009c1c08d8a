// SPDX-License-Identifier: Apache-2.0
// AtomicFileWriter.h - replaces one file in the current working directory
// atomically and durably: temporary file beside it, fsync, rename over the
// target, fsync of the directory. Temporary files that writers killed before
// their rename left behind are removed by the next write.
//
// Used by Discovery::WriteToFile; a stateless helper, safe on any thread as
// long as no other thread changes the working directory meanwhile.
//
// Example:
//   std::string text;
//   std::string fault;
//   if (!AtomicFileWriter::Replace("Management.xml", text, 0644, fault))
//       std::fprintf(stderr, "%s\n", fault.c_str());   // "Management.xml: cannot write ...: No space left on device"
#ifndef KIV_CLOSED_ATOMICFILEWRITER_H
#define KIV_CLOSED_ATOMICFILEWRITER_H

#include <string>
#include <sys/types.h>

namespace KivClosed {

class AtomicFileWriter
{
public:
    /// Writes \p content to \p fileName (a plain name, resolved in the
    /// current working directory) with permission bits \p mode, whatever the
    /// umask. A reader of \p fileName sees the old whole file or the new
    /// whole file. On failure answers false with \p fault saying what failed;
    /// the old file is then unchanged and the temporary file removed. A
    /// failure to flush the directory after the rename is reported too,
    /// although the new content is then in place.
    ///
    /// The temporary file is ".<up to 100 bytes of fileName>.<12 hex
    /// digits>.tmp", created exclusively with mode 0600 and held under an
    /// exclusive flock until it is renamed or removed; it gets \p mode just
    /// before the flush. Before creating its own, Replace removes the stale
    /// ones of \p fileName: names of exactly that form that are regular files
    /// of the calling user and that no process holds locked (their writer
    /// died). Any other entry of the directory is never touched.
    static bool Replace(const std::string& fileName, const std::string& content, mode_t mode, std::string& fault);
};

} // namespace KivClosed

#endif

// SPDX-License-Identifier: Apache-2.0
// DescriptionWatcher.h - follows the descriptions directory with inotify
// and says which description files may have appeared, changed or gone.
//
// Only names ending in ".xml" that do not start with "." count: the
// discovery client writes ".<name>.<digits>.tmp" and renames it over the
// description, so a change arrives as a rename. A directory that is missing
// at start (or removed or moved later) is waited for through its parent.
// Owned by the responder's loop; one thread.
//
// Example:
//   DescriptionWatcher watcher("/var/lib/discovery");
//   std::string error;
//   if (!watcher.Start(error)) { /* inotify unavailable */ }
//   // when watcher.Descriptor() is readable:
//   std::set<std::string> names;
//   bool rescan = false;
//   watcher.ReadEvents(names, rescan);   // names: "Management.xml"; rescan: list the directory
#ifndef KIV_RESPONDER_DESCRIPTIONWATCHER_H
#define KIV_RESPONDER_DESCRIPTIONWATCHER_H

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace KivResponder {

class DescriptionWatcher
{
public:
    /// Names gathered by one ReadEvents at most; more turn into a rescan.
    static constexpr std::size_t MaximumNames = 256;

    explicit DescriptionWatcher(std::string directory);
    ~DescriptionWatcher();
    DescriptionWatcher(const DescriptionWatcher&) = delete;
    DescriptionWatcher& operator=(const DescriptionWatcher&) = delete;

    /// Makes the inotify instance and watches the directory, or its parent
    /// while it is missing. False with \p error when inotify cannot be used
    /// or neither can be watched.
    bool Start(std::string& error);
    /// The inotify descriptor to wait on (readable when events are pending).
    int Descriptor() const { return descriptor; }
    /// True while the directory itself is watched (not only its parent).
    bool WatchingDirectory() const { return directoryWatch >= 0; }

    /// Reads every pending event without blocking. Adds to \p names the
    /// description file names that were written, renamed in or out, made or
    /// removed; sets \p rescan when the caller must list the directory
    /// again (it appeared, went, or events were lost).
    void ReadEvents(std::set<std::string>& names, bool& rescan);

    /// Whether \p name is a description file name: "*.xml", not starting with ".".
    static bool IsDescriptionName(const std::string& name);
    /// The description file names in \p directory, sorted; empty when it
    /// cannot be read.
    static std::vector<std::string> List(const std::string& directory);

private:
    bool WatchDirectoryOrParent(std::string& error);

    std::string directory;
    int descriptor = -1;
    int directoryWatch = -1;
    int parentWatch = -1;
};

} // namespace KivResponder

#endif

// SPDX-License-Identifier: Apache-2.0
// StatusCollector.h - gathers the status snapshot of the machine it runs
// on (model code setting, network devices, display connectors) and
// replaces the snapshot file atomically.
//
// main() makes one per run; tests point it at their own route table and
// graphics directory. Used by one thread (Publish changes the working
// directory for the time of the write).
//
// Example:
//   #include <StatusCollector/StatusDocument.h>
//   StatusCollector collector;
//   CollectedStatus status;
//   std::vector<std::string> warnings;
//   std::string fault;
//   if (collector.Collect(status, warnings, fault))
//       StatusCollector::Publish(StatusDocument::Render(status), "/dev/shm/status.xml", fault);
#ifndef KIV_TOOLS_STATUSCOLLECTOR_H
#define KIV_TOOLS_STATUSCOLLECTOR_H

#include <StatusCollector/CollectedStatus.h>

#include <string>
#include <vector>

namespace KivCollector {

class StatusCollector
{
public:
    StatusCollector();
    /// A collector that reads \p routeFile instead of /proc/net/route and
    /// \p drmDirectory instead of /sys/class/drm.
    StatusCollector(std::string routeFile, std::string drmDirectory);

    /// Replaces \p status by what the machine has now. False with \p fault
    /// when the interfaces, the route table or the graphics directory cannot
    /// be read: a partial snapshot would publish devices or outputs that are
    /// wrong, so nothing should be written then. A bad model code setting is
    /// not a failure; it adds a line to \p warnings.
    bool Collect(CollectedStatus& status, std::vector<std::string>& warnings, std::string& fault) const;

    /// True when \p file is free or a regular file, which Publish may
    /// replace. False with \p fault naming the path and what is there when it
    /// is anything else (a directory, a symbolic link, a named pipe...): the
    /// snapshot's directory may be writable by every local user, and what
    /// someone else put there is not ours to replace. A path that cannot be
    /// looked at passes; Publish then reports why it cannot write.
    static bool CheckOutputPath(const std::string& file, std::string& fault);

    /// Replaces \p file by \p text through a temporary file in the same
    /// directory and a rename (mode 0644): a reader sees the old whole file
    /// or the new whole file. Refuses, as CheckOutputPath, to replace
    /// anything but a regular file. On failure answers false with \p fault;
    /// what was at \p file is then unchanged and no temporary file is left.
    /// The working directory is the same afterwards as before.
    static bool Publish(const std::string& text, const std::string& file, std::string& fault);

private:
    std::string routeFile;
    std::string drmDirectory;
};

} // namespace KivCollector

#endif

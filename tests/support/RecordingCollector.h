// SPDX-License-Identifier: Apache-2.0
// RecordingCollector.h - a recording stand-in for the status collector: a
// shell script that the daemon runs in its place once per cycle. Each run
// logs its command line, the program that ran it and the (possibly faked) time, records
// what the daemon left in its output directory since the run before, and
// stages the inputs that the test prepared for this cycle (the status
// snapshot) and the next one (the configuration, which the daemon loads
// before it runs the collector).
//
// The test makes one in a work directory that the daemon's mount namespace
// also sees, plans the cycles, installs the script, and reads the records
// afterwards. When the runs go past the planned cycles, the script marks
// itself held and blocks until it is killed, so the daemon stops between
// two cycles. Single-threaded use.
//
// Example:
//   #include <KivTest/TemporaryDirectory.h>
//   TemporaryDirectory work;
//   std::string configurationText = "<configuration/>", statusText = "<status/>", fault;
//   RecordingCollector collector(work.Path(), "/home/Kiv/settings/syscontrol/1.0/configuration",
//                                "/var/lib/discovery");
//   collector.PlanCycle(1, configurationText, statusText);
//   collector.Install("/usr/local/sbin/statuscollector", fault);  // inside the namespace
//   // run the daemon until collector.Held()
//   RecordingCollector::Observation seen = collector.Observed(2);  // after cycle 1
#ifndef KIV_TESTS_RECORDINGCOLLECTOR_H
#define KIV_TESTS_RECORDINGCOLLECTOR_H

#include <optional>
#include <string>
#include <vector>

namespace KivTest {

class RecordingCollector
{
public:
    /// One run of the collector.
    struct Call
    {
        unsigned cycle = 0;               ///< 1 for the first run
        std::string runner;               ///< "<process id> <name>" of the program that ran it (not a shell)
        double time = 0;                  ///< seconds since 1970 as the run saw them
        std::vector<std::string> command; ///< $0 and every argument
    };

    /// What one run found in the output directory before staging anything.
    struct Observation
    {
        bool recorded = false;            ///< the run got that far
        bool exists = false;              ///< the watched file was there
        std::string identity;             ///< its inode and modification time
        std::string content;              ///< its bytes
        std::vector<std::string> listing; ///< every name in the output directory
    };

    /// Records under \p workDirectory; stages configurations into
    /// \p configurationDirectory and the snapshot into /dev/shm/status.xml;
    /// watches \p watchedFile.
    RecordingCollector(std::string workDirectory, std::string configurationDirectory, std::string watchedFile);

    /// Prepares cycle \p cycle (from 1): its configuration (none: the file
    /// stays as it is) and its status snapshot (none: the snapshot stays as
    /// it is, unless \p removeStatus deletes it). Cycle 1's configuration is
    /// put in place by Install, each later one by the run of the cycle
    /// before. Cycles must be planned without gaps; the first cycle not
    /// planned holds the collector. False when the files cannot be written.
    bool PlanCycle(unsigned cycle, const std::optional<std::string>& configuration,
                   const std::optional<std::string>& status, bool removeStatus = false);

    /// Writes the script to \p scriptPath (mode 0755), makes the recording
    /// area and stages cycle 1's configuration. Call it where the daemon's
    /// paths are visible (inside its mount namespace). False with \p fault.
    bool Install(const std::string& scriptPath, std::string& fault) const;

    /// The text of the script.
    std::string Script() const;

    /// True once a run went past the planned cycles and is blocking.
    bool Held() const;

    /// Every run so far, in order.
    std::vector<Call> Calls() const;

    /// What the run of cycle \p cycle saw, i.e. the state after cycle - 1.
    Observation Observed(unsigned cycle) const;

private:
    std::string PlanDirectory(unsigned cycle) const;
    std::string RecordDirectory() const;

    std::string workDirectory;
    std::string configurationDirectory;
    std::string watchedFile;
};

} // namespace KivTest

#endif

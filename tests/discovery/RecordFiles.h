// SPDX-License-Identifier: Apache-2.0
// RecordFiles.h - writes configuration and status files for the publisher's
// tests and loads them into records through the record libraries.
//
//   RecordFiles files(directory.Path());
//   files.LoadConfiguration(config, "unit-1", {{0, 8080}});
//   files.LoadStatus(status, 3);
//
// A failed load is reported as a test failure. One per test, on its thread.
#ifndef KIV_TESTS_DISCOVERY_RECORDFILES_H
#define KIV_TESTS_DISCOVERY_RECORDFILES_H

#include <VpCfg/CConfig.h>
#include <VpSts/CStatus.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace KivTest {

/// Service entries as (kind, port) pairs, in list order.
using ServiceEntries = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

class RecordFiles
{
public:
    /// Keeps the files below \p directory (which must exist).
    explicit RecordFiles(const std::string& directory);

    /// The configuration directory that LoadConfiguration fills.
    const std::string& ConfigurationDirectory() const { return configurationDirectory; }
    /// The status file that LoadStatus writes.
    const std::string& StatusFile() const { return statusFile; }

    /// Writes a configuration with description "Wall", time zone
    /// "Europe/Zurich", \p computerName and \p services, and loads it.
    void LoadConfiguration(VpCfg::CConfig& config, const std::string& computerName,
                           const ServiceEntries& services);
    /// Writes a status with \p modelCode, one device (number 1, eth0, every
    /// text present) and one published output (number 1, 2 rows, 4 columns),
    /// and loads it.
    void LoadStatus(VpSts::CStatus& status, std::uint32_t modelCode);

private:
    std::string configurationDirectory;
    std::string statusFile;
};

/// The metadata text that a publisher over the records of LoadConfiguration
/// and LoadStatus builds.
std::string ExpectedMetadata(const std::string& computerName, const char* productFamily);

} // namespace KivTest

#endif

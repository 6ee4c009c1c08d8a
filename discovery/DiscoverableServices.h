// SPDX-License-Identifier: Apache-2.0
// DiscoverableServices.h - publishes the unit's management service
// description for network discovery, rewriting it only when the management
// port or a metadata fragment changed since the last cycle.
//
// The daemon creates exactly one at start-up (after installing the platform,
// whose lock it takes), keeps it in gServices for the life of the process and
// calls Update once per refresh cycle from its only thread. Update holds the
// object's lock throughout, so a second caller would wait.
//
// Example:
//   #include <Discoveryd/Globals.h>
//   SmartPtr<DiscoverableServices> services(new DiscoverableServices(gConfig, gStatus));
//   gConfig.LoadResources("/home/Kiv/settings/syscontrol/1.0/configuration");
//   gStatus.Load("/dev/shm/status.xml");
//   services->Update();   // Management.xml in /var/lib/discovery if anything changed
#ifndef KIVCONFIG_DISCOVERABLESERVICES_H
#define KIVCONFIG_DISCOVERABLESERVICES_H

#include <KivConfig/MetadataGroup.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/ILock.h>
#include <VpCfg/CConfig.h>
#include <VpSts/CStatus.h>

#include <cstdint>
#include <string>

namespace KivConfig {

class DiscoverableServices : public KivPlr::Object
{
public:
    /// Where the description file goes in the daemon.
    static const char* const OutputDirectory;
    /// The scope of the management description: the maker's standards host
    /// and the product line's path.
    static const char* const ScopeUri;
    /// The line printed at the end of every Update.
    static const char* const SavedMessage;

    /// Builds the groups "cpp:Config" (description, time zone, computer name
    /// over \p config) and "cpp:State" (product family, network, outputs over
    /// \p status), starts with port 80 and nothing to write, and takes a lock
    /// from the installed platform (none installed is fatal: "SmartPtr<T>->
    /// NULL reference"). The records and the directory are read at every
    /// Update; both records must outlive this object.
    DiscoverableServices(const VpCfg::CConfig& config, const VpSts::CStatus& status,
                         const std::string& outputDirectory = OutputDirectory);

    /// One publishing cycle, under the lock: takes the management port from
    /// the service list, refreshes both groups, enters the output directory,
    /// writes the description "Management" there only if the port or a
    /// fragment changed, returns to the previous working directory and prints
    /// SavedMessage, written or not. Results of the description writer and of
    /// the directory changes are not examined: a failed write is not tried
    /// again until something changes. If an exception leaves Update, the
    /// working directory is not restored.
    void Update();

private:
    ~DiscoverableServices() override = default;

    /// Refreshes both groups and sets metadata to their texts followed by
    /// the discovery version; marks the description for writing when a
    /// fragment changed, and clears the providers' flags.
    void BuildMetadata();
    /// Saves the working directory and changes to the output directory.
    void EnterOutputDirectory();
    /// Changes back to the directory saved by EnterOutputDirectory.
    void LeaveOutputDirectory();

    KivPlr::SmartPtr<KivPlr::ILock> lock;
    std::string savedWorkingDirectory;
    KivPlr::SmartPtr<MetadataGroup> configGroup;
    KivPlr::SmartPtr<MetadataGroup> stateGroup;
    // A 16-bit port, kept in a full word.
    std::uint32_t managementPort;
    bool dirty;
    /// The groups' texts and the whole metadata, kept from cycle to cycle so
    /// that a steady cycle reuses their storage.
    std::string configXml;
    std::string stateXml;
    std::string metadata;

    const VpCfg::CConfig& config;
    std::string outputDirectory;
};

} // namespace KivConfig

#endif

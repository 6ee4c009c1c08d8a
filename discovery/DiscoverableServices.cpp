// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/DiscoverableServices.h>

#include <KivConfig/IMetadata.h>
#include <KivConfig/MetadataComputerName.h>
#include <KivConfig/MetadataDescription.h>
#include <KivConfig/MetadataProductFamily.h>
#include <KivConfig/MetadataStatusNetwork.h>
#include <KivConfig/MetadataStatusOutput.h>
#include <KivConfig/MetadataTimezone.h>
#include <KivDiscoveryClient/Discovery.h>
#include <KivPlr/core/IPlatform.h>
#include <KivPlr/core/Path.h>
#include <KivPlr/core/Platform.h>
#include <KivPlr/io/DirectoryManager.h>
#include <KivPlr/sync/ScopedLock.h>

#include <cstdint>
#include <cstdio>

namespace KivConfig {

namespace {

const std::uint32_t ManagementServiceKind = 0;
const std::uint32_t InitialManagementPort = 80;
const char* const DescriptionName = "Management";
const char* const ManagementType = "cpp:Management";
const char* const DiscoveryVersion = "<cpp:DiscoveryVersion>1</cpp:DiscoveryVersion>";

} // namespace

const char* const DiscoverableServices::OutputDirectory = "/var/lib/discovery";
const char* const DiscoverableServices::ScopeUri =
    "http://standards.kivotrel.example/2011/videoprocessor/trx";
const char* const DiscoverableServices::SavedMessage =
    "saving management service description file\r";

DiscoverableServices::DiscoverableServices(const VpCfg::CConfig& config,
                                           const VpSts::CStatus& status,
                                           const std::string& outputDirectory)
    : lock(), savedWorkingDirectory(), configGroup(), stateGroup(), managementPort(0),
      dirty(false), config(config), outputDirectory(outputDirectory)
{
    configGroup = new MetadataGroup("cpp:Config");
    stateGroup = new MetadataGroup("cpp:State");

    KivPlr::SmartPtr<IMetadata> description(new MetadataDescription(config));
    KivPlr::SmartPtr<IMetadata> timezone(new MetadataTimezone(config));
    KivPlr::SmartPtr<IMetadata> computerName(new MetadataComputerName(config));
    KivPlr::SmartPtr<IMetadata> productFamily(new MetadataProductFamily(status));
    KivPlr::SmartPtr<IMetadata> network(new MetadataStatusNetwork(status));
    KivPlr::SmartPtr<IMetadata> outputs(new MetadataStatusOutput(status));

    configGroup->Add(description);
    configGroup->Add(timezone);
    configGroup->Add(computerName);
    stateGroup->Add(productFamily);
    stateGroup->Add(network);
    stateGroup->Add(outputs);

    managementPort = InitialManagementPort;
    dirty = false;

    KivPlr::SmartPtr<KivPlr::IPlatform> platform(KivPlr::Platform::GetInstance());
    lock = platform->CreateLock();
}

void DiscoverableServices::Update()
{
    KivPlr::ScopedLock hold(*lock);

    // Every management entry is compared with the port kept so far, not just
    // the first: with two of them the last one wins and each cycle rewrites.
    for (unsigned int index = 0;; ++index) {
        const VpCfg::CServiceEntry* entry = config.serviceList[index];
        if (entry == nullptr)
            break;
        if (entry->serviceKind == ManagementServiceKind && entry->servicePort != managementPort) {
            dirty = true;
            managementPort = entry->servicePort;
        }
    }

    BuildMetadata();

    EnterOutputDirectory();
    KivDiscoveryClient::Discovery description(DescriptionName);
    description.AddType(ManagementType);
    description.AddScope(ScopeUri);
    description.SetPort(static_cast<unsigned short>(managementPort));
    description.SetMetaData(metadata);
    if (dirty) {
        description.WriteToFile();
        dirty = false;
    }
    LeaveOutputDirectory();

    // Printed in every cycle, written or not: the line deliberately does not
    // track the write (flushed so that a pipe or the journal gets it at once).
    std::puts(SavedMessage);
    std::fflush(stdout);
}

void DiscoverableServices::BuildMetadata()
{
    configGroup->Refresh();
    stateGroup->Refresh();

    configGroup->GetXml(configXml);
    stateGroup->GetXml(stateXml);

    if (configGroup->IsChanged() || stateGroup->IsChanged()) {
        dirty = true;
        stateGroup->ClearChanged();
        configGroup->ClearChanged();
    }

    metadata.assign(configXml).append(stateXml).append(DiscoveryVersion);
}

void DiscoverableServices::EnterOutputDirectory()
{
    // A manager of its own rather than the platform's: the publisher must
    // work whichever platform is installed. The results are not examined; if
    // the directory cannot be entered the description lands wherever the
    // working directory is, and the next cycle tries again.
    KivPlr::SmartPtr<KivPlr::IDirectoryManager> directories(new KivPlr::DirectoryManager);
    KivPlr::_Result result = KivPlr::ResultPass;
    directories->GetCurrent(savedWorkingDirectory, result);
    directories->SetCurrent(KivPlr::Path(outputDirectory), result);
}

void DiscoverableServices::LeaveOutputDirectory()
{
    KivPlr::SmartPtr<KivPlr::IDirectoryManager> directories(new KivPlr::DirectoryManager);
    KivPlr::_Result result = KivPlr::ResultPass;
    directories->SetCurrent(KivPlr::Path(savedWorkingDirectory), result);
}

} // namespace KivConfig

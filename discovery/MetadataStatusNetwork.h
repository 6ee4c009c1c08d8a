// SPDX-License-Identifier: Apache-2.0
// MetadataStatusNetwork.h - publishes the unit's network interfaces as one
// <Network> element with a <NetworkDevice> per interface.
//
// The second provider of the "cpp:State" group; created by
// DiscoverableServices over the daemon's status record and owned through
// SmartPtr. One thread at a time.
//
// Example:
//   VpSts::CStatus status;                  // the process uses gStatus
//   SmartPtr<IMetadata> provider(new MetadataStatusNetwork(status));
//   provider->Refresh();
//   std::string text;
//   provider->GetXml(text);   // <Network><NetworkDevice number=\"1\"><Name>eth0</Name>...
#ifndef KIVCONFIG_METADATASTATUSNETWORK_H
#define KIVCONFIG_METADATASTATUSNETWORK_H

#include <KivConfig/MetadataBase.h>
#include <VpSts/CStatus.h>

namespace KivConfig {

class MetadataStatusNetwork : public MetadataBase
{
public:
    /// Reads `networkDeviceList` of \p status, which must outlive the provider.
    explicit MetadataStatusNetwork(const VpSts::CStatus& status);

    /// Writes "<Network>", one element per device up to the first missing
    /// list entry, then "</Network>". The number attribute's quotes carry a
    /// backslash each. Values are not escaped. A missing (null) device text
    /// ends the fragment just before it: nothing further is added, not even
    /// the closing tags.
    void Refresh() override;

private:
    ~MetadataStatusNetwork() override = default;

    const VpSts::CStatus& status;
};

} // namespace KivConfig

#endif

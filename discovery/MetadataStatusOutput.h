// SPDX-License-Identifier: Apache-2.0
// MetadataStatusOutput.h - publishes the unit's published video outputs as
// one <Outputs> element with an <Output> and its translation table size each.
//
// The third provider of the "cpp:State" group; created by
// DiscoverableServices over the daemon's status record and owned through
// SmartPtr. One thread at a time.
//
// Example:
//   VpSts::CStatus status;                  // the process uses gStatus
//   SmartPtr<IMetadata> provider(new MetadataStatusOutput(status));
//   provider->Refresh();
//   std::string text;
//   provider->GetXml(text);   // <Outputs><Output number=\"1\" i:type=\"Cablor6Type\">...
#ifndef KIVCONFIG_METADATASTATUSOUTPUT_H
#define KIVCONFIG_METADATASTATUSOUTPUT_H

#include <KivConfig/MetadataBase.h>
#include <VpSts/CStatus.h>

namespace KivConfig {

class MetadataStatusOutput : public MetadataBase
{
public:
    /// Reads `outputList` of \p status, which must outlive the provider.
    explicit MetadataStatusOutput(const VpSts::CStatus& status);

    /// Writes "<Outputs>", one element per output of kind 0 up to the first
    /// missing list entry (outputs of other kinds leave no trace; numbers are
    /// the outputs' own), then "</Outputs>". Attribute quotes carry a
    /// backslash each.
    void Refresh() override;

private:
    ~MetadataStatusOutput() override = default;

    const VpSts::CStatus& status;
};

} // namespace KivConfig

#endif

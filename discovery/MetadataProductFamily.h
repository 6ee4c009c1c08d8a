// SPDX-License-Identifier: Apache-2.0
// MetadataProductFamily.h - publishes which model of the product family the
// unit is, as <ProductFamily>TRX-....</ProductFamily>.
//
// The first provider of the "cpp:State" group; created by DiscoverableServices
// over the daemon's status record and owned through SmartPtr. One thread at a
// time.
//
// Example:
//   VpSts::CStatus status;                  // the process uses gStatus
//   SmartPtr<IMetadata> provider(new MetadataProductFamily(status));
//   provider->Refresh();
//   std::string text;
//   provider->GetXml(text);   // "<ProductFamily>TRX-7250</ProductFamily>" for code 3
#ifndef KIVCONFIG_METADATAPRODUCTFAMILY_H
#define KIVCONFIG_METADATAPRODUCTFAMILY_H

#include <KivConfig/MetadataBase.h>
#include <VpSts/CStatus.h>

#include <cstdint>

namespace KivConfig {

class MetadataProductFamily : public MetadataBase
{
public:
    /// Reads `modelCode` of \p status, which must outlive the provider.
    explicit MetadataProductFamily(const VpSts::CStatus& status);

    /// Looks the model code up in the model table and publishes its text.
    void Refresh() override;

    /// The model text of \p modelCode: 0 "TRX-7160", 1 "TRX-7060",
    /// 2 "TRX-6060", 3 "TRX-7250", 4 "TRX-7150", 5 "TRX-7050", and
    /// "TRX-7060" again for every code above 5.
    static const char* ModelText(std::uint32_t modelCode);

private:
    ~MetadataProductFamily() override = default;

    const VpSts::CStatus& status;
};

} // namespace KivConfig

#endif

// SPDX-License-Identifier: Apache-2.0
// MetadataBase.h - the changed flag, the cached fragment and the change rule
// that every metadata provider shares.
//
// A provider derives from MetadataBase and implements Refresh only: it builds
// its fragment and hands it to AcceptFragment. Created with new and owned
// through SmartPtr<IMetadata>; used by one thread at a time.
//
// Example:
//   #include <sstream>
//   class FixedName : public MetadataBase {     // MetadataComputerName reads the record instead
//   public:
//       void Refresh() override
//       {
//           std::ostringstream fragment;
//           WriteElement(fragment, "ComputerName", "unit-1");
//           AcceptFragment(fragment.str());
//       }
//   };
//   SmartPtr<IMetadata> provider(new FixedName);
//   provider->Refresh();                         // changed: "<ComputerName>unit-1</ComputerName>"
#ifndef KIVCONFIG_METADATABASE_H
#define KIVCONFIG_METADATABASE_H

#include <KivConfig/IMetadata.h>
#include <KivPlr/core/Object.h>

#include <ostream>
#include <string>

namespace KivConfig {

class MetadataBase : private KivPlr::Object, public IMetadata
{
public:
    bool IsChanged() const override;
    void ClearChanged() override;
    void GetXml(std::string& out) const override;

protected:
    ~MetadataBase() override = default;

    /// Not changed, empty cached text.
    MetadataBase();

    /// The common change rule: a \p fragment that differs from the cached text
    /// replaces it and sets the changed flag; an equal one changes nothing.
    void AcceptFragment(const std::string& fragment);

    /// Writes "<element>", the zero-terminated \p value and "</element>" into
    /// \p out, the value as it is (no escaping). A null \p value puts \p out
    /// into its failed state right after the opening tag, so that nothing
    /// more is added to it: the fragment then ends just before the missing
    /// value.
    static void WriteElement(std::ostream& out, const char* element, const char* value);

private:
    bool changed;
    std::string cachedXml;
};

} // namespace KivConfig

#endif

// MetadataBase.h - the changed flag, the cached fragment and the change rule
// that every metadata provider shares.
//
// A provider derives from MetadataBase and implements Refresh only: it builds
// its fragment and hands it to AcceptFragment. Created with new and owned
// through SmartPtr<IMetadata>; used by one thread at a time.
//
//   void MetadataComputerName::Refresh()
//   {
//       std::ostringstream fragment;
//       fragment << "<ComputerName>" << name << "</ComputerName>";
//       AcceptFragment(fragment.str());
//   }
#ifndef KIVCONFIG_METADATABASE_H
#define KIVCONFIG_METADATABASE_H

#include "IMetadata.h"
#include "Object.h"

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
    /// Not changed, empty cached text.
    MetadataBase();

    /// The common change rule: a \p fragment that differs from the cached text
    /// replaces it and sets the changed flag; an equal one changes nothing.
    void AcceptFragment(const std::string& fragment);

    /// Writes the zero-terminated \p value into \p out. A null \p value puts
    /// \p out into its failed state instead, so that nothing more is added to
    /// it: the fragment then ends just before the missing value.
    static void WriteValue(std::ostream& out, const char* value);

private:
    bool changed;
    std::string cachedXml;
};

} // namespace KivConfig

#endif

// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataBase.h>

namespace KivConfig {

MetadataBase::MetadataBase() : changed(false)
{
}

bool MetadataBase::IsChanged() const
{
    return changed;
}

void MetadataBase::ClearChanged()
{
    changed = false;
}

void MetadataBase::GetXml(std::string& out) const
{
    out = cachedXml;
}

void MetadataBase::AcceptFragment(const std::string& fragment)
{
    if (fragment != cachedXml) {
        cachedXml = fragment;
        changed = true;
    }
}

void MetadataBase::WriteElement(std::ostream& out, const char* element, const char* value)
{
    out << "<" << element << ">";
    // A missing value ends the fragment where it stands (the stream fails, as
    // inserting a null character pointer would make it); discovery clients
    // of the family expect exactly that truncated text.
    if (value == nullptr)
        out.setstate(std::ios_base::badbit);
    else
        out << value;
    out << "</" << element << ">";
}

} // namespace KivConfig

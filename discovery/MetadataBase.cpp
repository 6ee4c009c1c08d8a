// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataBase.h>

#include <charconv>
#include <iterator>
#include <limits>

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

MetadataBase::Fragment& MetadataBase::Fragment::AppendNumber(unsigned long value)
{
    char digits[std::numeric_limits<unsigned long>::digits10 + 1];
    const std::to_chars_result end = std::to_chars(std::begin(digits), std::end(digits), value);
    if (!stopped)
        text.append(digits, end.ptr);
    return *this;
}

void MetadataBase::WriteElement(Fragment& out, const char* element, const char* value)
{
    out.Append("<").Append(element).Append(">");
    // A missing value ends the fragment where it stands, as it always has
    // (the text used to come from a stream that a null value put into its
    // failed state); discovery clients of the family expect exactly that
    // truncated text.
    if (value == nullptr)
        out.Stop();
    else
        out.Append(value);
    out.Append("</").Append(element).Append(">");
}

} // namespace KivConfig

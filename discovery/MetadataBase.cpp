// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataBase.h>

#include <algorithm>
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

void MetadataBase::AcceptFragment(Fragment& fragment)
{
    // Text() trims this provider's buffer, building, to what was written.
    if (fragment.Text() != cachedXml) {
        // The old text's storage becomes the next fragment's buffer.
        cachedXml.swap(building);
        changed = true;
    }
}

void MetadataBase::Fragment::MakeRoom(std::size_t count)
{
    text.resize(std::max(used + count, 2 * text.size()));
}

MetadataBase::Fragment& MetadataBase::Fragment::AppendNumber(unsigned long value)
{
    char digits[std::numeric_limits<unsigned long>::digits10 + 1];
    const std::to_chars_result end = std::to_chars(std::begin(digits), std::end(digits), value);
    return AppendBytes(digits, static_cast<std::size_t>(end.ptr - digits));
}

void MetadataBase::WriteElement(Fragment& out, const char* element, const char* value)
{
    // A missing value ends the fragment where it stands, as it always has
    // (the text used to come from a stream that a null value put into its
    // failed state); discovery clients of the family expect exactly that
    // truncated text.
    out.Append("<").Append(element).Append(">");
    if (value == nullptr)
        out.Stop();
    else
        out.Append(value);
    out.Append("</").Append(element).Append(">");
}

} // namespace KivConfig

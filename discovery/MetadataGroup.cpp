// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataGroup.h>

namespace KivConfig {

MetadataGroup::MetadataGroup(const std::string& name) : providers(), name(name)
{
}

void MetadataGroup::Add(const KivPlr::SmartPtr<IMetadata>& provider)
{
    providers.push_back(provider);
}

void MetadataGroup::Refresh()
{
    for (const KivPlr::SmartPtr<IMetadata>& provider : providers)
        provider->Refresh();
}

bool MetadataGroup::IsChanged() const
{
    for (const KivPlr::SmartPtr<IMetadata>& provider : providers) {
        if (provider->IsChanged())
            return true;
    }
    return false;
}

void MetadataGroup::ClearChanged()
{
    for (const KivPlr::SmartPtr<IMetadata>& provider : providers)
        provider->ClearChanged();
}

void MetadataGroup::GetXml(std::string& out) const
{
    // Built in place: out keeps its capacity from cycle to cycle, and so does
    // the provider texts' buffer.
    out.clear();
    out.append("<").append(name).append(">");
    for (const KivPlr::SmartPtr<IMetadata>& provider : providers) {
        provider->GetXml(fragment);
        out.append(fragment);
    }
    out.append("</").append(name).append(">");
}

} // namespace KivConfig

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
    std::string text = "<" + name + ">";
    std::string fragment;
    for (const KivPlr::SmartPtr<IMetadata>& provider : providers) {
        provider->GetXml(fragment);
        text += fragment;
    }
    text += "</" + name + ">";
    out = text;
}

} // namespace KivConfig

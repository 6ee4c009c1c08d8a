// SPDX-License-Identifier: Apache-2.0
#include <KivWsd/DescriptionTarget.h>

namespace KivWsd {

bool DescriptionTarget::Load(const std::string&, TargetService&, std::uint16_t&, std::string& error)
{
    error = "not implemented yet";
    return false;
}

bool DescriptionTarget::TypeName(const std::string&, QualifiedName&)
{
    return false;
}

std::string DescriptionTarget::TypeText(const QualifiedName& name)
{
    return name.localName;
}

} // namespace KivWsd

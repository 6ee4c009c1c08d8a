// SPDX-License-Identifier: Apache-2.0
#include <KivWsd/QualifiedName.h>

namespace KivWsd {

bool operator==(const QualifiedName& left, const QualifiedName& right)
{
    return left.namespaceUri == right.namespaceUri && left.localName == right.localName;
}

bool operator!=(const QualifiedName& left, const QualifiedName& right)
{
    return !(left == right);
}

namespace {

bool IsNameStart(unsigned char character)
{
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') || character == '_' ||
           character >= 0x80;
}

} // namespace

bool IsLocalName(const std::string& text)
{
    if (text.empty() || !IsNameStart(static_cast<unsigned char>(text[0])))
        return false;
    for (char each : text) {
        unsigned char character = static_cast<unsigned char>(each);
        if (!IsNameStart(character) && !(character >= '0' && character <= '9') && character != '-' &&
            character != '.')
            return false;
    }
    return true;
}

} // namespace KivWsd

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

} // namespace KivWsd

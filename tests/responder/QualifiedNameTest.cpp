// SPDX-License-Identifier: Apache-2.0
#include <KivWsd/QualifiedName.h>

#include <gtest/gtest.h>

namespace {

using KivWsd::QualifiedName;

TEST(QualifiedNameTest, NamesWithSameNamespaceAndLocalNameAreEqual)
{
    EXPECT_TRUE((QualifiedName{"urn:a", "Management"} == QualifiedName{"urn:a", "Management"}));
}

TEST(QualifiedNameTest, NamesDifferingInNamespaceOnlyAreNotEqual)
{
    EXPECT_TRUE((QualifiedName{"urn:a", "Management"} != QualifiedName{"urn:b", "Management"}));
}

TEST(QualifiedNameTest, NamesDifferingInLocalNameOnlyAreNotEqual)
{
    EXPECT_FALSE((QualifiedName{"urn:a", "Management"} == QualifiedName{"urn:a", "management"}));
}

} // namespace

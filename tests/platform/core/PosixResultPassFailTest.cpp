// SPDX-License-Identifier: Apache-2.0
// PosixResultPassFail behaves as every pass/fail converter does: the cases
// are in ResultConverterTests.h.
#include <KivPlr/core/PosixResultPassFail.h>

#include "ResultConverterTests.h"

#include <gtest/gtest.h>

#include <string>

namespace KivTest {
namespace {

struct ConverterName
{
    template <typename> static std::string GetName(int) { return "PosixResultPassFail"; }
};

INSTANTIATE_TYPED_TEST_SUITE_P(Converter, ResultConverterTest, KivPlr::PosixResultPassFail, ConverterName);

} // namespace
} // namespace KivTest

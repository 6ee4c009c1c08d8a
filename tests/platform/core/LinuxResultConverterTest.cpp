// SPDX-License-Identifier: Apache-2.0
// LinuxResultConverter behaves as every pass/fail converter does: the cases
// are in ResultConverterTests.h.
#include <KivPlr/core/LinuxResultConverter.h>

#include "ResultConverterTests.h"

#include <gtest/gtest.h>

#include <string>

namespace KivTest {
namespace {

struct ConverterName
{
    template <typename> static std::string GetName(int) { return "LinuxResultConverter"; }
};

INSTANTIATE_TYPED_TEST_SUITE_P(Converter, ResultConverterTest, KivPlr::LinuxResultConverter, ConverterName);

} // namespace
} // namespace KivTest

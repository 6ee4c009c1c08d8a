// SPDX-License-Identifier: Apache-2.0
// ResultConverterTests.h - the behaviour every pass/fail result converter
// shares, as a typed test suite. Each converter's test file instantiates it
// with its class, so the cases are written once and run for each.
//
//   struct ConverterName
//   {
//       template <typename> static std::string GetName(int) { return "PosixResultPassFail"; }
//   };
//   INSTANTIATE_TYPED_TEST_SUITE_P(Converter, ResultConverterTest, PosixResultPassFail, ConverterName);
#ifndef KIV_TESTS_PLATFORM_CORE_RESULTCONVERTERTESTS_H
#define KIV_TESTS_PLATFORM_CORE_RESULTCONVERTERTESTS_H

#include <KivPlr/core/IResultConverter.h>
#include <KivPlr/core/Result.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivTest/ChildProcess.h>
#include <KivTest/NullReference.h>

#include <gtest/gtest.h>

#include <string>

namespace KivTest {

KIV_NULL_REFERENCE(NullConverterResult, KivPlr::_Result)

template <typename Converter>
class ResultConverterTest : public ::testing::Test
{
};

TYPED_TEST_SUITE_P(ResultConverterTest);

TYPED_TEST_P(ResultConverterTest, ZeroConvertsToPassAndEveryOtherValueToFail)
{
    struct Case
    {
        int native;
        KivPlr::_Result before; ///< what the out-argument held: the converter must overwrite it
        KivPlr::_Result expected;
    };
    const Case cases[] = {{0, KivPlr::ResultFail, KivPlr::ResultPass},   {-1, KivPlr::ResultPass, KivPlr::ResultFail},
                          {1, KivPlr::ResultPass, KivPlr::ResultFail},   {22, KivPlr::ResultPass, KivPlr::ResultFail},
                          {110, KivPlr::ResultPass, KivPlr::ResultFail}};
    KivPlr::SmartPtr<KivPlr::IResultConverter> converter(new TypeParam);
    for (const Case& entry : cases) {
        KivPlr::_Result result = entry.before;
        converter->Convert(entry.native, result);
        EXPECT_EQ(result, entry.expected) << "native value " << entry.native;
    }
}

TYPED_TEST_P(ResultConverterTest, NewConverterHasCountZero)
{
    TypeParam* converter = new TypeParam;
    KivPlr::IResultConverter* asInterface = converter;
    EXPECT_EQ(asInterface->GetReferenceCount(), 0u);
    KivPlr::SmartPtr<KivPlr::IResultConverter> owner(converter);
}

TYPED_TEST_P(ResultConverterTest, NullResultReferenceExitsSilently)
{
    KivPlr::SmartPtr<KivPlr::IResultConverter> converter(new TypeParam);
    EXPECT_FATAL_SILENT(converter->Convert(0, NullConverterResult()));
    EXPECT_FATAL_SILENT(converter->Convert(-1, NullConverterResult()));
}

REGISTER_TYPED_TEST_SUITE_P(ResultConverterTest, ZeroConvertsToPassAndEveryOtherValueToFail,
                            NewConverterHasCountZero, NullResultReferenceExitsSilently);

} // namespace KivTest

#endif

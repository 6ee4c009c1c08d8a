// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/LinuxResultConverter.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivTest/ChildProcess.h>
#include <KivTest/NullReference.h>

#include <gtest/gtest.h>

using namespace KivPlr;

KIV_NULL_REFERENCE(NullResultReference, KivPlr::_Result)

TEST(LinuxResultConverterTest, ZeroConvertsToPass)
{
    SmartPtr<IResultConverter> converter(new LinuxResultConverter);
    _Result result = ResultFail;
    converter->Convert(0, result);
    EXPECT_EQ(result, ResultPass);
}

TEST(LinuxResultConverterTest, NonZeroConvertsToFail)
{
    SmartPtr<IResultConverter> converter(new LinuxResultConverter);
    for (int native : {-1, 22, 1, 110}) {
        _Result result = ResultPass;
        converter->Convert(native, result);
        EXPECT_EQ(result, ResultFail) << native;
    }
}

TEST(LinuxResultConverterTest, NewConverterHasCountZero)
{
    LinuxResultConverter* converter = new LinuxResultConverter;
    IResultConverter* asInterface = converter;
    EXPECT_EQ(asInterface->GetReferenceCount(), 0u);
    SmartPtr<IResultConverter> owner(converter);
}

TEST(LinuxResultConverterTest, NullResultReferenceExitsSilently)
{
    SmartPtr<IResultConverter> converter(new LinuxResultConverter);
    EXPECT_FATAL_SILENT(converter->Convert(0, NullResultReference()));
    EXPECT_FATAL_SILENT(converter->Convert(-1, NullResultReference()));
}

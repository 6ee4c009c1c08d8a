// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/PosixResultPassFail.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivTest/ChildProcess.h>
#include <KivTest/NullReference.h>

#include <gtest/gtest.h>

using namespace KivPlr;

KIV_NULL_REFERENCE(NullResultReference, KivPlr::_Result)

TEST(PosixResultPassFailTest, ZeroConvertsToPass)
{
    SmartPtr<IResultConverter> converter(new PosixResultPassFail);
    _Result result = ResultFail;
    converter->Convert(0, result);
    EXPECT_EQ(result, ResultPass);
}

TEST(PosixResultPassFailTest, NonZeroConvertsToFail)
{
    SmartPtr<IResultConverter> converter(new PosixResultPassFail);
    for (int native : {-1, 22, 1, 110}) {
        _Result result = ResultPass;
        converter->Convert(native, result);
        EXPECT_EQ(result, ResultFail) << native;
    }
}

TEST(PosixResultPassFailTest, NewConverterHasCountZero)
{
    PosixResultPassFail* converter = new PosixResultPassFail;
    IResultConverter* asInterface = converter;
    EXPECT_EQ(asInterface->GetReferenceCount(), 0u);
    SmartPtr<IResultConverter> owner(converter);
}

TEST(PosixResultPassFailTest, NullResultReferenceExitsSilently)
{
    SmartPtr<IResultConverter> converter(new PosixResultPassFail);
    EXPECT_FATAL_SILENT(converter->Convert(0, NullResultReference()));
    EXPECT_FATAL_SILENT(converter->Convert(-1, NullResultReference()));
}

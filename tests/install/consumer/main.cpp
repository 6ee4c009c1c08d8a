// SPDX-License-Identifier: Apache-2.0
// Uses the installed library through its umbrella header only; prints what it
// saw so that the test can compare.
#include <KivPlr/KivPlr.h>

#include <cstdio>

namespace {

class Counted : public KivPlr::Object
{
};

} // namespace

int main()
{
    KivPlr::SmartPtr<KivPlr::IObject> object(new Counted);
    KivPlr::SmartPtr<KivPlr::IResultConverter> converter(new KivPlr::PosixResultPassFail);
    KivPlr::_Result result = KivPlr::ResultFail;
    converter->Convert(0, result);
    std::printf("count=%u result=%u succeeded=%d\n", static_cast<unsigned>(object->GetReferenceCount()),
                static_cast<unsigned>(result), KivPlr::Succeeded(result) ? 1 : 0);
    return KivPlr::Succeeded(result) ? 0 : 1;
}

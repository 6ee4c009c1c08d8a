// SPDX-License-Identifier: Apache-2.0
// Uses the installed library through one area header only, as a program that
// needs nothing but the directory manager would: that header brings in what
// it needs (SmartPtr, Path, the result codes) by itself.
#include <KivPlr/io/DirectoryManager.h>

#include <cstdio>

int main()
{
    KivPlr::SmartPtr<KivPlr::IDirectoryManager> directories(new KivPlr::DirectoryManager);
    KivPlr::_Result result = KivPlr::ResultFail;
    directories->IsDirectory(KivPlr::Path("/"), result);
    std::printf("root directory=%d\n", KivPlr::Succeeded(result) ? 1 : 0);
    return KivPlr::Succeeded(result) ? 0 : 1;
}

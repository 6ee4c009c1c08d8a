// SPDX-License-Identifier: Apache-2.0
// Never built into a program: ExpectDestructorRefused.cmake compiles it for
// ObjectTest.DeleteOnAPlatformObjectDoesNotCompile. Without a KIV_CASE_*
// definition it must compile, which shows that the includes and flags are
// sound. With one, that case alone is added, and the compiler must refuse it
// for the access of a destructor: platform objects are destroyed only by
// their last Release, never by delete and never at the end of a scope.
#include <KivConfig/DiscoverableServices.h>
#include <KivPlr/core/LinuxPlatform.h>
#include <KivPlr/core/Object.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/io/FileManager.h>
#include <KivPlr/sync/ILock.h>
#include <KivPlr/sync/PosixLock.h>

// The way it is done: the last holder's Release destroys the object.
void DropLock(KivPlr::PosixLock* lock)
{
    KivPlr::SmartPtr<KivPlr::ILock> owner(lock);
    owner.Reset();
}

// Each case instantiates this for one class.
template <typename Doomed>
void Delete(Doomed* object)
{
    delete object;
}

#ifdef KIV_CASE_DELETE_IMPLEMENTATION
template void Delete(KivPlr::PosixLock*);
#endif
#ifdef KIV_CASE_DELETE_OBJECT
template void Delete(KivPlr::Object*);
#endif
#ifdef KIV_CASE_DELETE_DERIVABLE
template void Delete(KivPlr::LinuxPlatform*);
#endif
#ifdef KIV_CASE_DELETE_PUBLISHER
template void Delete(KivConfig::DiscoverableServices*);
#endif
#ifdef KIV_CASE_DELETE_INTERFACE
template void Delete(KivPlr::ILock*);
#endif
#ifdef KIV_CASE_DELETE_ROOT_INTERFACE
template void Delete(KivPlr::IObject*);
#endif

#ifdef KIV_CASE_OBJECT_ON_STACK
void FileManagerOnTheStack()
{
    KivPlr::FileManager files;
    (void)files;
}
#endif

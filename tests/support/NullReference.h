// SPDX-License-Identifier: Apache-2.0
// NullReference.h - references bound to address 0, as a caller produces them
// by handing a null pointer to a reference parameter.
//
// Only for tests of the library's "NULL reference" checks; the optimiser
// cannot see through them and the undefined-behaviour sanitizer is kept out
// of the one dereference.
//
// Example:
//   #include <KivTest/ChildProcess.h>
//   #include <KivPlr/sync/PosixThreadPriorityMap.h>
//   SmartPtr<PosixThreadPriorityMap> map(new PosixThreadPriorityMap);
//   _Result result = ResultFail;
//   EXPECT_FATAL_SILENT(map->Convert(15, KivTest::NullReference<int>(), result));
//
// g++ drops the sanitizer attribute on function templates, so under
// -fsanitize=undefined a call of the template is reported where it is bound.
// Tests that run in the sanitizer lane use one of the two forms below.
//
// A plain function per type, defined with KIV_NULL_REFERENCE at namespace
// scope, whose call is passed straight as the argument (a named reference
// bound to it would be reported too).
//
// Example (namespace scope):
//   KIV_NULL_REFERENCE(NullResult, KivPlr::_Result)
//   void CloseWithNullResult(IStream* stream)
//   {
//       stream->Close(NullResult());  // must neither crash nor write anything
//   }
//
// Or WithNullReference, which makes the reference inside a function the
// sanitizer leaves alone and hands it to test code as a parameter; passing
// that parameter on binds nothing new, so any number of calls may use it.
//
// Example:
//   #include <KivPlr/sync/PassiveThreadObserver.h>
//   #include <KivPlr/sync/PosixThread.h>
//   #include <KivPlr/sync/PosixThreadPriorityMap.h>
//   SmartPtr<IThread> thread(
//       new PosixThread(new PassiveThreadObserver, new PosixThreadPriorityMap, new PosixResultPassFail, 0));
//   std::wstring name = L"worker";
//   KivTest::WithNullReference<_Result>([&](_Result& none) {
//       thread->SetName(&name, none);
//       thread->Cancel(none);
//   });
//
// For some calls (seen with std::vector parameters of free and static
// functions) g++ checks the reference at the call site all the same. Make
// that call in a plain function marked no_sanitize("undefined") instead.
//
// Example (namespace scope):
//   #include <KivPlr/accounts/UserGroupList.h>
//   __attribute__((no_sanitize("undefined"))) void ReadIntoANullVector()
//   {
//       UserGroupList::Read("alice", UserGroupList::KeepOwnGroup,
//                           KivTest::NullReference<std::vector<std::string>>());
//   }
#ifndef KIV_TESTS_NULLREFERENCE_H
#define KIV_TESTS_NULLREFERENCE_H

namespace KivTest {

template <typename T>
__attribute__((no_sanitize("undefined"))) T& NullReference()
{
    T* pointer = nullptr;
    asm volatile("" : "+r"(pointer));
    return *pointer;
}

/// Calls \p use with a T& whose address is null.
template <typename T, typename Use>
__attribute__((noinline, no_sanitize("undefined"))) void WithNullReference(const Use& use)
{
    T* pointer = nullptr;
    asm volatile("" : "+r"(pointer));
    use(*pointer);
}

} // namespace KivTest

#define KIV_NULL_REFERENCE(name, type)                                    \
    __attribute__((no_sanitize("undefined"))) inline type& name()         \
    {                                                                     \
        type* pointer = nullptr;                                          \
        asm volatile("" : "+r"(pointer));                                 \
        return *pointer;                                                  \
    }

#endif

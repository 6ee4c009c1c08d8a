// NullReference.h - a reference bound to address 0, as a caller produces it
// by handing a null pointer to a reference parameter.
//
// Only for tests of the library's "NULL reference" checks; the optimiser
// cannot see through it and the undefined-behaviour sanitizer is kept out of
// the one dereference:
//
//   EXPECT_FATAL_SILENT(map->Convert(15, KivTest::NullReference<int>(), result));
//
// g++ drops the sanitizer attribute on function templates, so under
// -fsanitize=undefined a call of the template is reported where it is bound.
// Tests that run in the sanitizer lane define a plain function per type with
// KIV_NULL_REFERENCE at namespace scope and pass its call straight as the
// argument (a named reference bound to it would be reported too):
//
//   KIV_NULL_REFERENCE(NullResult, KivPlr::_Result)
//   stream->Close(NullResult());   // must neither crash nor write anything
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

} // namespace KivTest

#define KIV_NULL_REFERENCE(name, type)                                    \
    __attribute__((no_sanitize("undefined"))) inline type& name()         \
    {                                                                     \
        type* pointer = nullptr;                                          \
        asm volatile("" : "+r"(pointer));                                 \
        return *pointer;                                                  \
    }

#endif

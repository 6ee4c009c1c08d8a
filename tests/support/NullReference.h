// NullReference.h - a reference bound to address 0, as a caller produces it
// by handing a null pointer to a reference parameter.
//
// Only for death tests of the library's "NULL reference" checks; the
// optimiser cannot see through it and the undefined-behaviour sanitizer is
// kept out of the one dereference:
//
//   EXPECT_FATAL_SILENT(map->Convert(15, KivTest::NullReference<int>(), result));
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

#endif

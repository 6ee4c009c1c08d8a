#include "NullReference.h"

#include "Uuid.h"

namespace KivTest {

namespace {

// The empty assembler statement hides the null from the optimiser; the
// sanitizer exemption is there because binding it is exactly the caller's
// fault under test.
template <typename T>
T* HiddenNull()
{
    T* pointer = nullptr;
    asm volatile("" : "+r"(pointer));
    return pointer;
}

} // namespace

__attribute__((no_sanitize("undefined"))) KivPlr::_Result& NullResultReference()
{
    return *HiddenNull<KivPlr::_Result>();
}

__attribute__((no_sanitize("undefined"))) KivPlr::Uuid& NullUuidReference()
{
    return *HiddenNull<KivPlr::Uuid>();
}

} // namespace KivTest

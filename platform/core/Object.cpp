// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/Object.h>

#include <KivPlr/core/FatalError.h>
#include <KivPlr/core/ReferenceCounter.h>

namespace KivPlr {

Object::Object() : counter(new ReferenceCounter) {}

Object::~Object()
{
    counter->Unhold();
}

std::uint32_t Object::AddRef()
{
    return counter->Increment();
}

std::uint32_t Object::Release()
{
    if (counter->ReleaseTest() == 0)
        return 0;
    delete this;
    return 1;
}

std::uint32_t Object::GetReferenceCount()
{
    return counter->Read();
}

bool Object::QueryInterface(const Uuid* interfaceId, void** object, _Result& result)
{
    if (IsNullReference(&result))
        FatalError(L"Object: result NULL reference.");
    result = ResultNotSupported;
    return QueryInterfaceImpl(interfaceId, object, result);
}

ReferenceCounter* Object::GetReferenceCounter()
{
    return counter;
}

bool Object::QueryInterfaceImpl(const Uuid*, void**, _Result& result)
{
    if (IsNullReference(&result))
        FatalError(L"Object: result NULL reference.");
    result = ResultNotSupported;
    return false;
}

} // namespace KivPlr

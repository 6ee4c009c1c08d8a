// SPDX-License-Identifier: Apache-2.0
// IObject.h - the root interface of every platform object.
//
// Every interface of the library derives virtually from IObject, so an
// implementation of several interfaces holds exactly one IObject. Objects are
// reference-counted: a new object has count 0, and SmartPtr takes it to 1.
//
// Example:
//   SmartPtr<IPlatform> platform(Platform::GetInstance());
//   SmartPtr<IFileManager> files(platform->CreateFileManager());  // count 1
//   files->AddRef();   // 2 -- rarely needed, SmartPtr does the counting
//   files->Release();  // 1
#ifndef KIVPLR_IOBJECT_H
#define KIVPLR_IOBJECT_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/Result.h>

#include <cstdint>

namespace KivPlr {

class Uuid;

class KIVPLR_API IObject
{
public:
    /// Adds one reference; returns the new count.
    virtual std::uint32_t AddRef() = 0;
    /// Drops one reference; returns non-zero when this call destroyed the
    /// object, zero while it lives on.
    virtual std::uint32_t Release() = 0;
    /// The current count; only a snapshot when other threads hold references.
    virtual std::uint32_t GetReferenceCount() = 0;
    /// Asks the object for another view of itself. \p interfaceId names the
    /// view, \p object receives it. Objects that offer no views answer 501.
    virtual bool QueryInterface(const Uuid* interfaceId, void** object, _Result& result) = 0;

protected:
    /// Only the object itself ends its life, through the last Release;
    /// a delete through any interface does not compile.
    virtual ~IObject() = default;
};

} // namespace KivPlr

#endif

// SPDX-License-Identifier: Apache-2.0
// Object.h - the reference-counted base of every platform object.
//
// Object implements the counting of IObject and IObject2 over a
// ReferenceCounter block that it allocates. Concrete classes derive from
// Object and from their interface; they are created with new, start at
// count 0, are owned through SmartPtr and delete themselves when the last
// reference goes. Only Release deletes: the destructor is protected here and
// non-public in every class derived from Object, so a delete, or an object on
// the stack, does not compile outside the class.
//
// Example:
//   SmartPtr<IResultConverter> converter(new PosixResultPassFail);  // count 1
//   converter.Reset();                                 // 0: deleted by Release
//
// Counting is atomic and safe from any thread.
#ifndef KIVPLR_OBJECT_H
#define KIVPLR_OBJECT_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject2.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API Object : public virtual IObject, public virtual IObject2
{
public:
    Object();

    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    std::uint32_t AddRef() override;
    /// A decrement that yields anything but 0 (also one that wraps below 0)
    /// destroys nothing.
    std::uint32_t Release() override;
    std::uint32_t GetReferenceCount() override;
    /// Sets \p result to 501 and hands over to QueryInterfaceImpl. A null
    /// \p result reference is fatal, here and in QueryInterfaceImpl.
    bool QueryInterface(const Uuid* interfaceId, void** object, _Result& result) override;
    ReferenceCounter* GetReferenceCounter() override;

    /// The overridable step behind QueryInterface; answers 501 here.
    virtual bool QueryInterfaceImpl(const Uuid* interfaceId, void** object, _Result& result);

protected:
    /// Drops the object's hold on its count block. Run only by the last
    /// Release, through the virtual destructor of the most derived class.
    ~Object() override;

private:
    ReferenceCounter* counter;
};

} // namespace KivPlr

#endif

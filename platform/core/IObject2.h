// SPDX-License-Identifier: Apache-2.0
// IObject2.h - adds access to the reference-count block behind an object.
//
// A holder that must learn later whether an object still lives keeps the
// block (Hold) and promotes itself with IncrementUnlessZero.
//
// Example:
//   #include <KivPlr/core/ReferenceCounter.h>
//   class Thing : public Object {};  // any object
//   SmartPtr<IObject2> object(new Thing);
//   ReferenceCounter* block = object->GetReferenceCounter();
//   block->Hold();
//   object.Reset();                                   // the last Release: gone
//   bool alive = block->IncrementUnlessZero() != 0;   // false: too late
//   block->Unhold();                                  // the last hold frees the block
#ifndef KIVPLR_IOBJECT2_H
#define KIVPLR_IOBJECT2_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>

namespace KivPlr {

class ReferenceCounter;

class KIVPLR_API IObject2 : public virtual IObject
{
public:
    /// The object's count block, unchanged; it outlives the object while held.
    virtual ReferenceCounter* GetReferenceCounter() = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IObject2() override = default;
};

} // namespace KivPlr

#endif

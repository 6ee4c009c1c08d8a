// SPDX-License-Identifier: Apache-2.0
// IObject2.h - adds access to the reference-count block behind an object.
//
// A holder that must learn later whether an object still lives keeps the
// block (Hold) and promotes itself with IncrementUnlessZero:
//
//   ReferenceCounter* block = object->GetReferenceCounter();
//   block->Hold();
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
};

} // namespace KivPlr

#endif

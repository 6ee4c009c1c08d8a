// SPDX-License-Identifier: Apache-2.0
// ReferenceCounter.h - the count block behind every platform object.
//
// Object allocates one block per object and owns it together with whoever
// holds it. The block keeps two words, reached only through the operations
// below: the object's strong count (0 for a new object) and the number of
// holders of the block itself (1 at first: the object's own hold). A party
// that called GetReferenceCounter can Hold the block and later promote itself
// with IncrementUnlessZero, which fails once the object is gone.
//
// Example:
//   class Thing : public Object {};  // any object
//   SmartPtr<IObject2> object(new Thing);
//   ReferenceCounter* block = object->GetReferenceCounter();
//   block->Hold();
//   IObject2* promoted = block->IncrementUnlessZero() ? object.Get() : nullptr;
//   if (promoted) {
//       promoted->Release();  // it was alive and counted for us; done with it
//   }
//   block->Unhold();
//
// Every read-modify-write is atomic with full ordering; any thread may use it.
#ifndef KIVPLR_REFERENCECOUNTER_H
#define KIVPLR_REFERENCECOUNTER_H

#include <KivPlr/core/Export.h>

#include <cstdint>

namespace KivPlr {

class KIVPLR_API ReferenceCounter
{
public:
    ReferenceCounter();

    /// Adds 1 to the strong count; returns the new value.
    std::uint32_t Increment();
    /// Subtracts 1 from the strong count (wrapping below 0); returns the new value.
    std::uint32_t Decrement();
    /// Decrements; returns 1 when the new value is 0, else 0.
    std::uint32_t ReleaseTest();
    /// The strong count as it is now; only a snapshot.
    std::uint32_t Read() const;
    /// How many parties hold the block as it is now; only a snapshot.
    std::uint32_t ReadHolders() const;
    /// Adds 1 unless the count is 0; returns 1 on success, 0 if it was 0.
    std::uint32_t IncrementUnlessZero();
    /// Adds 1 to the holders of the block; returns the new value.
    std::uint32_t Hold();
    /// Drops one hold; the last one frees the block (do not touch it after).
    void Unhold();

    ReferenceCounter(const ReferenceCounter&) = delete;
    ReferenceCounter& operator=(const ReferenceCounter&) = delete;

private:
    // The last Unhold frees the block; nobody else may.
    ~ReferenceCounter() = default;

    std::uint32_t references;
    std::uint32_t holders;
};

} // namespace KivPlr

#endif

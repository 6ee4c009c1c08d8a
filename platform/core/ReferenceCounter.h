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
// The operations are inline: each is one atomic add or subtract on the word
// (a lock-prefixed instruction on x86-64, a load/store-exclusive loop on
// ARM), so counting a reference costs no call into the library. Only
// IncrementUnlessZero needs a compare-and-swap loop: it must not raise a count
// that has already reached 0.
#ifndef KIVPLR_REFERENCECOUNTER_H
#define KIVPLR_REFERENCECOUNTER_H

#include <KivPlr/core/Export.h>

#include <atomic>
#include <cstdint>

namespace KivPlr {

class KIVPLR_API ReferenceCounter
{
public:
    ReferenceCounter() : references(0), holders(1) {}

    /// Adds 1 to the strong count; returns the new value.
    std::uint32_t Increment() { return references.fetch_add(1, std::memory_order_seq_cst) + 1; }
    /// Subtracts 1 from the strong count (wrapping below 0); returns the new value.
    std::uint32_t Decrement() { return references.fetch_sub(1, std::memory_order_seq_cst) - 1; }
    /// Decrements; returns 1 when the new value is 0, else 0. A decrement
    /// that wraps below 0 gives 0xffffffff, not 0.
    std::uint32_t ReleaseTest() { return Decrement() == 0 ? 1 : 0; }
    /// The strong count as it is now; only a snapshot.
    std::uint32_t Read() const { return references.load(std::memory_order_relaxed); }
    /// How many parties hold the block as it is now; only a snapshot.
    std::uint32_t ReadHolders() const { return holders.load(std::memory_order_relaxed); }
    /// Adds 1 unless the count is 0; returns 1 on success, 0 if it was 0.
    std::uint32_t IncrementUnlessZero()
    {
        std::uint32_t seen = references.load(std::memory_order_relaxed);
        do {
            if (seen == 0)
                return 0;
        } while (!references.compare_exchange_weak(seen, seen + 1, std::memory_order_seq_cst,
                                                   std::memory_order_relaxed));
        return 1;
    }
    /// Adds 1 to the holders of the block; returns the new value.
    std::uint32_t Hold() { return holders.fetch_add(1, std::memory_order_seq_cst) + 1; }
    /// Drops one hold; the last one frees the block (do not touch it after).
    void Unhold()
    {
        if (holders.fetch_sub(1, std::memory_order_seq_cst) == 1)
            delete this;
    }

    ReferenceCounter(const ReferenceCounter&) = delete;
    ReferenceCounter& operator=(const ReferenceCounter&) = delete;

private:
    // The last Unhold frees the block; nobody else may.
    ~ReferenceCounter() = default;

    // Two 32-bit words, as before: std::atomic of a 32-bit integer has its
    // size and alignment on every target we build for (checked below).
    std::atomic<std::uint32_t> references;
    std::atomic<std::uint32_t> holders;
};

static_assert(sizeof(std::atomic<std::uint32_t>) == sizeof(std::uint32_t),
              "the count words keep their size");
static_assert(std::atomic<std::uint32_t>::is_always_lock_free,
              "counting never takes a lock");

} // namespace KivPlr

#endif

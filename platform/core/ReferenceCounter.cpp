// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/ReferenceCounter.h>

namespace KivPlr {

namespace {

// Compare-and-swap loop: read n, try to store n + delta, repeat until the
// swap succeeds, and return the value written.
std::uint32_t AddAndFetch(std::uint32_t& word, std::uint32_t delta)
{
    std::uint32_t seen = __atomic_load_n(&word, __ATOMIC_RELAXED);
    std::uint32_t wanted;
    do {
        wanted = seen + delta;
    } while (!__atomic_compare_exchange_n(&word, &seen, wanted, false, __ATOMIC_SEQ_CST,
                                          __ATOMIC_RELAXED));
    return wanted;
}

} // namespace

ReferenceCounter::ReferenceCounter() : references(0), holders(1) {}

std::uint32_t ReferenceCounter::Increment()
{
    return AddAndFetch(references, 1);
}

std::uint32_t ReferenceCounter::Decrement()
{
    return AddAndFetch(references, static_cast<std::uint32_t>(-1));
}

std::uint32_t ReferenceCounter::ReleaseTest()
{
    return Decrement() == 0 ? 1 : 0;
}

std::uint32_t ReferenceCounter::Read() const
{
    return __atomic_load_n(&references, __ATOMIC_RELAXED);
}

std::uint32_t ReferenceCounter::ReadHolders() const
{
    return __atomic_load_n(&holders, __ATOMIC_RELAXED);
}

std::uint32_t ReferenceCounter::IncrementUnlessZero()
{
    std::uint32_t seen = __atomic_load_n(&references, __ATOMIC_RELAXED);
    do {
        if (seen == 0)
            return 0;
    } while (!__atomic_compare_exchange_n(&references, &seen, seen + 1, false, __ATOMIC_SEQ_CST,
                                          __ATOMIC_RELAXED));
    return 1;
}

std::uint32_t ReferenceCounter::Hold()
{
    return AddAndFetch(holders, 1);
}

void ReferenceCounter::Unhold()
{
    if (AddAndFetch(holders, static_cast<std::uint32_t>(-1)) == 0)
        delete this;
}

} // namespace KivPlr

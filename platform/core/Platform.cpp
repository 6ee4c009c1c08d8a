// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/Platform.h>

#include <KivPlr/core/FatalError.h>
#include <KivPlr/core/SmartPtr.h>

namespace KivPlr {

namespace {

// Released by its static destructor at process exit.
SmartPtr<IPlatform> installedInstance;

std::int32_t AtomicAdd(std::int32_t& value, std::int32_t delta)
{
    if (IsNullReference(&value))
        FatalError(L"Platform: value NULL reference.");
    std::int32_t seen = __atomic_load_n(&value, __ATOMIC_RELAXED);
    std::int32_t wanted;
    do {
        // Wrap-around like the hardware does, without signed overflow.
        wanted = static_cast<std::int32_t>(static_cast<std::uint32_t>(seen) +
                                           static_cast<std::uint32_t>(delta));
    } while (!__atomic_compare_exchange_n(&value, &seen, wanted, false, __ATOMIC_SEQ_CST,
                                          __ATOMIC_RELAXED));
    return wanted;
}

} // namespace

std::int32_t Platform::AtomicIncrement(std::int32_t& value)
{
    return AtomicAdd(value, 1);
}

std::int32_t Platform::AtomicDecrement(std::int32_t& value)
{
    return AtomicAdd(value, -1);
}

void Platform::SetInstance(IPlatform* platform)
{
    installedInstance = platform;
}

IPlatform* Platform::GetInstance()
{
    return installedInstance.Get();
}

void Platform::ClearInstance()
{
    installedInstance.Reset();
}

} // namespace KivPlr

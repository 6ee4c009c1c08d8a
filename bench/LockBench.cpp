// SPDX-License-Identifier: Apache-2.0
// An uncontended lock and unlock: ILock from the platform factory against
// std::mutex, and the library's ScopedLock against std::lock_guard.
// scripts/bench pairs the runs by name: <figure>_Project against
// <figure>_<anchor>.
#include <KivPlr/core/LinuxPlatform.h>
#include <KivPlr/core/Platform.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/sync/ILock.h>
#include <KivPlr/sync/ScopedLock.h>

#include <benchmark/benchmark.h>

#include <mutex>
#include <type_traits>

namespace {

KivPlr::SmartPtr<KivPlr::ILock> MakeLock()
{
    if (KivPlr::Platform::GetInstance() == nullptr)
        KivPlr::Platform::SetInstance(new KivPlr::LinuxPlatform);
    KivPlr::SmartPtr<KivPlr::IPlatform> platform(KivPlr::Platform::GetInstance());
    return KivPlr::SmartPtr<KivPlr::ILock>(platform->CreateLock());
}

void LockUnlock_Project(benchmark::State& state)
{
    KivPlr::SmartPtr<KivPlr::ILock> lock = MakeLock();
    for (auto _ : state) {
        lock->Lock();
        lock->Unlock();
    }
}
BENCHMARK(LockUnlock_Project);

void LockUnlock_StdMutex(benchmark::State& state)
{
    std::mutex mutex;
    for (auto _ : state) {
        mutex.lock();
        benchmark::ClobberMemory();
        mutex.unlock();
    }
}
BENCHMARK(LockUnlock_StdMutex);

// ScopedLock is taking its lock by reference instead of through a SmartPtr
// copy; this builds with either constructor until both sides have landed.
template <typename Scoped>
void HoldEachIteration(benchmark::State& state, const KivPlr::SmartPtr<KivPlr::ILock>& lock)
{
    for (auto _ : state) {
        if constexpr (std::is_constructible_v<Scoped, KivPlr::ILock&>) {
            Scoped held(*lock);
            benchmark::ClobberMemory();
        } else {
            Scoped held(lock);
            benchmark::ClobberMemory();
        }
    }
}

void ScopedLock_Project(benchmark::State& state)
{
    KivPlr::SmartPtr<KivPlr::ILock> lock = MakeLock();
    HoldEachIteration<KivPlr::ScopedLock>(state, lock);
}
BENCHMARK(ScopedLock_Project);

void ScopedLock_StdLockGuard(benchmark::State& state)
{
    std::mutex mutex;
    for (auto _ : state) {
        std::lock_guard<std::mutex> held(mutex);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(ScopedLock_StdLockGuard);

} // namespace

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

void ScopedLock_Project(benchmark::State& state)
{
    KivPlr::SmartPtr<KivPlr::ILock> lock = MakeLock();
    for (auto _ : state) {
        KivPlr::ScopedLock held(*lock);
        benchmark::ClobberMemory();
    }
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

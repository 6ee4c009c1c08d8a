// SPDX-License-Identifier: Apache-2.0
// The cost of owning platform objects: every SmartPtr copy is an atomic
// increment and decrement on the object's count block.
#include <KivPlr/core/Object.h>
#include <KivPlr/core/Platform.h>
#include <KivPlr/core/SmartPtr.h>

#include <benchmark/benchmark.h>

namespace {

class Counted : public KivPlr::Object
{
};

void BM_SmartPtrCopy(benchmark::State& state)
{
    KivPlr::SmartPtr<KivPlr::IObject> original(new Counted);
    for (auto _ : state) {
        KivPlr::SmartPtr<KivPlr::IObject> copy(original);
        benchmark::DoNotOptimize(copy.Get());
    }
}
BENCHMARK(BM_SmartPtrCopy);

void BM_CreateAndRelease(benchmark::State& state)
{
    for (auto _ : state) {
        KivPlr::SmartPtr<KivPlr::IObject> object(new Counted);
        benchmark::DoNotOptimize(object.Get());
    }
}
BENCHMARK(BM_CreateAndRelease);

} // namespace

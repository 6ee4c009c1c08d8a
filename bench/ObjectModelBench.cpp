// SPDX-License-Identifier: Apache-2.0
// The cost of owning platform objects, beside the anchors it is measured
// against: a SmartPtr copy and its destruction (one increment, one
// decrement) against boost::intrusive_ptr on a class whose count sits in a
// virtual base, as ours does, and against std::shared_ptr. scripts/bench
// pairs the runs by name: <figure>_Project against <figure>_<anchor>.
#include <KivPlr/core/Object.h>
#include <KivPlr/core/SmartPtr.h>

#include <benchmark/benchmark.h>
#include <boost/intrusive_ptr.hpp>

#include <atomic>
#include <memory>
#include <thread>

namespace {

// libstdc++'s shared_ptr skips its atomic instructions while the process has
// never started a thread; the platform's users always have. One thread,
// started and joined before main, puts every anchor on the atomic path.
const bool gMultiThreaded = [] {
    std::thread([] {}).join();
    return true;
}();

class Counted : public KivPlr::Object
{
};

// The anchor's counted object: the count lives in a virtual base, so every
// access goes through the virtual-base offset just like IObject's.
class AnchorCount
{
public:
    virtual ~AnchorCount() = default;
    std::atomic<long> count{0};
};

class AnchorObject : public virtual AnchorCount
{
};

void intrusive_ptr_add_ref(AnchorCount* object)
{
    object->count.fetch_add(1, std::memory_order_seq_cst);
}

void intrusive_ptr_release(AnchorCount* object)
{
    if (object->count.fetch_sub(1, std::memory_order_seq_cst) == 1)
        delete object;
}

void SmartPtrCopy_Project(benchmark::State& state)
{
    KivPlr::SmartPtr<KivPlr::IObject> original(new Counted);
    for (auto _ : state) {
        KivPlr::SmartPtr<KivPlr::IObject> copy(original);
        benchmark::DoNotOptimize(copy.Get());
    }
}
BENCHMARK(SmartPtrCopy_Project);

void SmartPtrCopy_BoostIntrusivePtr(benchmark::State& state)
{
    boost::intrusive_ptr<AnchorCount> original(new AnchorObject);
    for (auto _ : state) {
        boost::intrusive_ptr<AnchorCount> copy(original);
        benchmark::DoNotOptimize(copy.get());
    }
}
BENCHMARK(SmartPtrCopy_BoostIntrusivePtr);

void SmartPtrCopy_SharedPtr(benchmark::State& state)
{
    std::shared_ptr<AnchorObject> original = std::make_shared<AnchorObject>();
    for (auto _ : state) {
        std::shared_ptr<AnchorObject> copy(original);
        benchmark::DoNotOptimize(copy.get());
    }
}
BENCHMARK(SmartPtrCopy_SharedPtr);

} // namespace

// SPDX-License-Identifier: Apache-2.0
#include <KivWsd/ReplyLimiter.h>

#include <KivWsd/WsdLimits.h>

#include <algorithm>

namespace KivWsd {

namespace {

constexpr std::uint64_t UnitsPerToken = 1000000000;

} // namespace

ReplyLimiter::ReplyLimiter() : latest(0)
{
    total.units = WsdLimits::TotalBurst * UnitsPerToken;
}

void ReplyLimiter::Refill(Bucket& bucket, std::uint64_t now, unsigned perSecond, unsigned burst)
{
    const std::uint64_t full = burst * UnitsPerToken;
    // A bucket empty this long ago is full again; the cap keeps the product
    // below from overflowing however long the pause was.
    const std::uint64_t fillTime = 1000000000ULL * burst / perSecond + 1;
    std::uint64_t elapsed = std::min(now - bucket.lastRefill, fillTime);
    // Nanoseconds times tokens per second gives billionths of a token.
    bucket.units = std::min(full, bucket.units + elapsed * perSecond);
    bucket.lastRefill = now;
}

bool ReplyLimiter::Allow(const std::string& sourceAddress, std::uint64_t nowNanoseconds)
{
    latest = std::max(latest, nowNanoseconds);
    const std::uint64_t now = latest;

    auto found = sources.find(sourceAddress);
    if (found == sources.end()) {
        if (sources.size() >= WsdLimits::MaximumTrackedSources) {
            sources.erase(recency.back());
            recency.pop_back();
        }
        recency.push_front(sourceAddress);
        Source source;
        source.bucket.units = WsdLimits::PerSourceBurst * UnitsPerToken;
        source.bucket.lastRefill = now;
        source.recency = recency.begin();
        found = sources.emplace(sourceAddress, source).first;
    } else {
        recency.splice(recency.begin(), recency, found->second.recency);
    }

    Bucket& own = found->second.bucket;
    Refill(own, now, WsdLimits::PerSourceAnswersPerSecond, WsdLimits::PerSourceBurst);
    Refill(total, now, WsdLimits::TotalAnswersPerSecond, WsdLimits::TotalBurst);
    if (own.units < UnitsPerToken || total.units < UnitsPerToken)
        return false;
    own.units -= UnitsPerToken;
    total.units -= UnitsPerToken;
    return true;
}

std::size_t ReplyLimiter::TrackedSources() const
{
    return sources.size();
}

} // namespace KivWsd

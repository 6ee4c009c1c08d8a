// SPDX-License-Identifier: Apache-2.0
// ReplyLimiter.h - how many answers may go out: a token bucket per source
// address (WsdLimits::PerSourceBurst, refilled at PerSourceAnswersPerSecond)
// and one for all sources together (TotalBurst, TotalAnswersPerSecond). The
// table of sources holds at most WsdLimits::MaximumTrackedSources; the least
// recently seen one goes first.
//
// Owned by the responder's event loop; one thread at a time. The caller
// passes the time (a steady clock in nanoseconds), so tests need no clock.
//
// Example:
//   #include <chrono>
//   KivWsd::ReplyLimiter limiter;
//   auto now = std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch());
//   bool answer = limiter.Allow("192.0.2.9", static_cast<std::uint64_t>(now.count()));
#ifndef KIV_WSD_REPLYLIMITER_H
#define KIV_WSD_REPLYLIMITER_H

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <unordered_map>

namespace KivWsd {

class ReplyLimiter
{
public:
    /// No source seen yet; every bucket starts full.
    ReplyLimiter();

    /// True when an answer to \p sourceAddress may go out at \p nowNanoseconds:
    /// then it takes one token from the source's bucket and one from the
    /// total's. False takes nothing. A time earlier than one seen before
    /// counts as that one.
    bool Allow(const std::string& sourceAddress, std::uint64_t nowNanoseconds);

    /// Sources in the table (for tests and statistics).
    std::size_t TrackedSources() const;

private:
    struct Bucket
    {
        // Tokens in billionths: a refill of any number of nanoseconds is a
        // whole number of them, so frequent calls lose nothing to rounding.
        std::uint64_t units = 0;
        std::uint64_t lastRefill = 0;
    };
    struct Source
    {
        Bucket bucket;
        std::list<std::string>::iterator recency;
    };

    static void Refill(Bucket& bucket, std::uint64_t now, unsigned perSecond, unsigned burst);

    Bucket total;
    std::uint64_t latest;
    std::unordered_map<std::string, Source> sources;
    // Most recently seen first.
    std::list<std::string> recency;
};

} // namespace KivWsd

#endif

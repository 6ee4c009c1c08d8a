// SPDX-License-Identifier: Apache-2.0
// MessageIdCache.h - remembers the message IDs answered lately, so that a
// probe sent several times (as the protocol asks for UDP) or replayed is
// answered once: the last WsdLimits::RememberedMessageIds, each for
// WsdLimits::MessageIdLifetimeSeconds.
//
// Owned by the responder's event loop; one thread at a time. The caller
// passes the time (a steady clock in nanoseconds).
//
// Example:
//   #include <chrono>
//   KivWsd::MessageIdCache answered;
//   auto now = std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch());
//   bool answer = answered.FirstTime("urn:uuid:0b7e2c1a-5d3f-4c2e-9a61-3f0d2b8c4e73", static_cast<std::uint64_t>(now.count()));
#ifndef KIV_WSD_MESSAGEIDCACHE_H
#define KIV_WSD_MESSAGEIDCACHE_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <unordered_set>

namespace KivWsd {

class MessageIdCache
{
public:
    MessageIdCache();

    /// True when \p messageId was not seen in the remembered window before
    /// \p nowNanoseconds; it is remembered from now on. False for a repeat.
    /// A time earlier than one seen before counts as that one.
    bool FirstTime(const std::string& messageId, std::uint64_t nowNanoseconds);

    /// IDs remembered now (for tests).
    std::size_t Size() const;

private:
    void Expire(std::uint64_t now);

    struct Entry
    {
        std::string messageId;
        std::uint64_t seen;
    };
    std::uint64_t latest;
    // Oldest first.
    std::deque<Entry> entries;
    std::unordered_set<std::string> ids;
};

} // namespace KivWsd

#endif

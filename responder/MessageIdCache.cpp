// SPDX-License-Identifier: Apache-2.0
#include <KivWsd/MessageIdCache.h>

#include <KivWsd/WsdLimits.h>

#include <algorithm>

namespace KivWsd {

MessageIdCache::MessageIdCache() : latest(0) {}

void MessageIdCache::Expire(std::uint64_t now)
{
    const std::uint64_t lifetime = WsdLimits::MessageIdLifetimeSeconds * 1000000000ULL;
    while (!entries.empty() && now - entries.front().seen >= lifetime) {
        ids.erase(entries.front().messageId);
        entries.pop_front();
    }
}

bool MessageIdCache::FirstTime(const std::string& messageId, std::uint64_t nowNanoseconds)
{
    latest = std::max(latest, nowNanoseconds);
    Expire(latest);
    if (!ids.insert(messageId).second)
        return false;
    entries.push_back({messageId, latest});
    if (entries.size() > WsdLimits::RememberedMessageIds) {
        ids.erase(entries.front().messageId);
        entries.pop_front();
    }
    return true;
}

std::size_t MessageIdCache::Size() const
{
    return ids.size();
}

} // namespace KivWsd

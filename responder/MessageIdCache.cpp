// SPDX-License-Identifier: Apache-2.0
#include <KivWsd/MessageIdCache.h>

namespace KivWsd {

MessageIdCache::MessageIdCache() : latest(0) {}

bool MessageIdCache::FirstTime(const std::string& messageId, std::uint64_t)
{
    return ids.insert(messageId).second;
}

std::size_t MessageIdCache::Size() const
{
    return ids.size();
}

void MessageIdCache::Expire(std::uint64_t) {}

} // namespace KivWsd

// SPDX-License-Identifier: Apache-2.0
#include <KivWsd/ReplyLimiter.h>

namespace KivWsd {

ReplyLimiter::ReplyLimiter() : latest(0) {}

bool ReplyLimiter::Allow(const std::string&, std::uint64_t)
{
    return true;
}

std::size_t ReplyLimiter::TrackedSources() const
{
    return sources.size();
}

void ReplyLimiter::Refill(Bucket&, std::uint64_t, unsigned, unsigned) {}

} // namespace KivWsd

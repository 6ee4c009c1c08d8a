// SPDX-License-Identifier: Apache-2.0
// ProbeMatcher.h - decides whether a target service answers a Probe: every
// type of the probe must be one of the target's (as qualified names), and
// every scope of the probe must match one of the target's by the probe's
// MatchBy rule.
//
// Stateless; any thread.
//
// Example:
//   KivWsd::WsdMessage probe;   // as WsdReader read it
//   std::vector<KivWsd::TargetService> targets(2);
//   std::vector<KivWsd::TargetService> matches;
//   for (const KivWsd::TargetService& target : targets)
//       if (KivWsd::ProbeMatcher::Matches(probe, target))
//           matches.push_back(target);
#ifndef KIV_WSD_PROBEMATCHER_H
#define KIV_WSD_PROBEMATCHER_H

#include <KivWsd/TargetService.h>
#include <KivWsd/WsdMessage.h>

#include <string>

namespace KivWsd {

class ProbeMatcher
{
public:
    /// True when \p target matches \p probe. An empty Types or Scopes list
    /// of the probe matches every target. MatchBy absent or the version's
    /// rfc3986 URI (for 2005/04 also its rfc2396 URI): a probe scope
    /// matches a target scope with the same scheme and authority (compared
    /// without regard to case) whose path starts with the probe's path
    /// segment by segment; query and fragment are not compared, and a scope
    /// with a "." or ".." segment matches nothing. strcmp0: the same bytes.
    /// Any other MatchBy matches nothing.
    static bool Matches(const WsdMessage& probe, const TargetService& target);

    /// The URI-prefix rule for one pair: \p probeScope matches \p targetScope.
    static bool ScopeMatchesRfc3986(const std::string& probeScope, const std::string& targetScope);
};

} // namespace KivWsd

#endif

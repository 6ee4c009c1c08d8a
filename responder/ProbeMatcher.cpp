// SPDX-License-Identifier: Apache-2.0
#include <KivWsd/ProbeMatcher.h>

namespace KivWsd {

bool ProbeMatcher::Matches(const WsdMessage&, const TargetService&)
{
    return false;
}

bool ProbeMatcher::ScopeMatchesRfc3986(const std::string&, const std::string&)
{
    return false;
}

} // namespace KivWsd

// SPDX-License-Identifier: Apache-2.0
// FoundUnits.h - the units that answered a browse, one per endpoint
// address however many answers (versions, address families, interfaces)
// named it, and the text discovery-browse prints for them.
//
// Owned by the browse run that feeds it; one thread.
//
// Example:
//   #include <KivWsd/WsdMessage.h>
//   #include <cstdio>
//   KivWsd::WsdMessage answer;  // a ProbeMatches that WsdReader read
//   KivBrowse::FoundUnits units;
//   units.Add(answer);
//   std::fputs(units.Report().c_str(), stdout);
#ifndef KIV_BROWSE_FOUNDUNITS_H
#define KIV_BROWSE_FOUNDUNITS_H

#include <KivWsd/TargetService.h>
#include <KivWsd/WsdMessage.h>
#include <KivWsd/WsdVersion.h>

#include <string>
#include <vector>

namespace KivBrowse {

class FoundUnits
{
public:
    /// Takes every target of \p answer. A target already known by its
    /// endpoint address gains the transport addresses it did not have yet;
    /// types, scopes, metadata version and metadata come from the answer
    /// with the highest metadata version (the first of equal ones), and a
    /// metadata text once seen stays.
    void Add(const KivWsd::WsdMessage& answer);

    bool Empty() const { return units.empty(); }
    std::size_t Count() const { return units.size(); }

    /// Per unit, in the order they first answered: the endpoint address on
    /// a line of its own, then indented lines for types, scopes, addresses,
    /// metadata version, the versions that answered, and the decoded
    /// metadata summary ("metadata: none" when no answer carried any).
    std::string Report() const;

    /// \p type as a person reads it: "cpp:Local" in the project's
    /// namespace, "Local" in none, "{namespace}Local" in any other.
    static std::string Shown(const KivWsd::QualifiedName& type);

private:
    struct Unit
    {
        KivWsd::TargetService target;
        bool answered2005 = false;
        bool answered2009 = false;
    };
    std::vector<Unit> units;
};

} // namespace KivBrowse

#endif

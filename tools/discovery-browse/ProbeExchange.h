// SPDX-License-Identifier: Apache-2.0
// ProbeExchange.h - one browse on the network: sends the probes the
// options ask for (each version, each interface and address family, or
// straight to one address) from a fresh port with TTL and hop limit 1, and
// collects the ProbeMatches that answer them until the timeout.
//
// Made and run once by main(); one thread.
//
// Example:
//   #include <KivBrowse/BrowseOptions.h>
//   #include <KivBrowse/FoundUnits.h>
//   KivBrowse::BrowseOptions options;  // parsed from the command line
//   KivBrowse::FoundUnits units;
//   KivBrowse::ProbeExchange exchange;
//   std::string error;
//   bool sent = exchange.Run(options, units, error);
//   bool found = sent && !units.Empty();
#ifndef KIV_BROWSE_PROBEEXCHANGE_H
#define KIV_BROWSE_PROBEEXCHANGE_H

#include <KivBrowse/BrowseOptions.h>
#include <KivBrowse/FoundUnits.h>

#include <string>
#include <vector>

namespace KivBrowse {

class ProbeExchange
{
public:
    /// Sends and collects. False with \p error when no probe could be sent
    /// at all (no such interface, no usable interface, no socket); a probe
    /// that one interface refuses is reported on standard error and the
    /// others go on. Answers to other probes, and datagrams that are not
    /// well-formed WS-Discovery, are ignored.
    bool Run(const BrowseOptions& options, FoundUnits& units, std::string& error);

    /// Every answer taken, as received, in arrival order.
    const std::vector<std::string>& Answers() const { return answers; }

private:
    std::vector<std::string> answers;
};

} // namespace KivBrowse

#endif

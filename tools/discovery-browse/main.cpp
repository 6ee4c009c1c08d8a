// SPDX-License-Identifier: Apache-2.0
// discovery-browse - finds the units on the network with a WS-Discovery
// Probe and prints what each one publishes (see discovery-browse(1)).
//
// Exit status: 0 when at least one unit answered (and for --help and
// --version), 1 when none did or no probe could be sent, 2 on a wrong
// command line.

#include <KivBrowse/BrowseOptions.h>
#include <KivBrowse/FoundUnits.h>
#include <KivBrowse/ProbeExchange.h>

#include <cstdio>

namespace {

const int ExitFound = 0;
const int ExitNothing = 1;

} // namespace

int main(int argc, char** argv)
{
    KivBrowse::BrowseOptions options;
    if (!options.Parse(argc, argv)) {
        std::fprintf(stderr, "discovery-browse: %s\n%s", options.Problem().c_str(), KivBrowse::BrowseOptions::Usage);
        return KivBrowse::BrowseOptions::UsageExitStatus;
    }
    if (options.Asked() == KivBrowse::BrowseOptions::Request::Help) {
        std::fputs(KivBrowse::BrowseOptions::Usage, stdout);
        return ExitFound;
    }
    if (options.Asked() == KivBrowse::BrowseOptions::Request::Version) {
        std::printf("discovery-browse %s\n", KIV_VERSION);
        return ExitFound;
    }

    KivBrowse::FoundUnits units;
    KivBrowse::ProbeExchange exchange;
    std::string error;
    if (!exchange.Run(options, units, error)) {
        std::fprintf(stderr, "discovery-browse: %s\n", error.c_str());
        return ExitNothing;
    }
    if (options.RawXml()) {
        for (const std::string& answer : exchange.Answers())
            std::printf("%s\n", answer.c_str());
    } else {
        std::fputs(units.Report().c_str(), stdout);
    }
    if (units.Empty()) {
        std::fprintf(stderr, "discovery-browse: no unit answered within %.3g s\n",
                     options.TimeoutMilliseconds() / 1000.0);
        return ExitNothing;
    }
    return ExitFound;
}

// SPDX-License-Identifier: Apache-2.0
// The reference status collector: writes the status snapshot of the machine
// it runs on (see docs/operations.md). Exit status 0 when the snapshot was
// written, 1 when it could not be collected or written (the previous one then
// stays) or when something other than a regular file is at its path (that is
// left alone), 2 for a command line it does not understand.

#include <StatusCollector/CollectorOptions.h>
#include <StatusCollector/StatusCollector.h>
#include <StatusCollector/StatusDocument.h>

#include <cstdio>
#include <string>
#include <vector>

using namespace KivCollector;

namespace {

void Say(const CollectorOptions& options, const std::string& line)
{
    if (!options.Quiet())
        std::fprintf(stderr, "statuscollector: %s\n", line.c_str());
}

} // namespace

int main(int argc, char** argv)
{
    CollectorOptions options;
    if (!options.Parse(argc, argv)) {
        Say(options, options.Problem());
        Say(options, CollectorOptions::Usage);
        return CollectorOptions::UsageExitStatus;
    }
    if (options.Asked() != CollectorOptions::Request::Collect) {
        std::fputs(options.Answer().c_str(), stdout);
        return 0;
    }
    CollectedStatus status;
    std::vector<std::string> warnings;
    std::string fault;
    // Checked first and reported without "the previous snapshot stays": what
    // occupies the path is not a snapshot, and it is left as it is.
    if (!StatusCollector::CheckOutputPath(options.OutputFile(), fault)) {
        Say(options, fault);
        return 1;
    }
    bool collected = StatusCollector().Collect(status, warnings, fault);
    for (const std::string& warning : warnings)
        Say(options, warning);
    if (!collected || !StatusCollector::Publish(StatusDocument::Render(status), options.OutputFile(), fault)) {
        Say(options, fault + "; the previous snapshot stays");
        return 1;
    }
    Say(options, "wrote " + options.OutputFile() + ": " + std::to_string(status.networkDevices.size()) +
                     " network devices, " + std::to_string(status.outputs.size()) + " outputs, model code " +
                     std::to_string(status.modelCode));
    return 0;
}

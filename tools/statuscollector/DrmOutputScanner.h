// SPDX-License-Identifier: Apache-2.0
// DrmOutputScanner.h - lists the display connectors of the machine's
// graphics devices as status outputs: one per connector under
// /sys/class/drm, numbered from 1 in name order, connected or not.
//
// The collector makes one on the stack; tests point it at a directory of
// their own. Any thread may use it.
//
// Example:
//   std::vector<CollectedStatus::Output> outputs;
//   std::string fault;
//   if (!DrmOutputScanner().Scan(outputs, fault))
//       std::fprintf(stderr, "%s\n", fault.c_str());
//   // card0-DP-1 (disconnected), card0-HDMI-A-1 (connected): {1, kind 1}, {2, kind 0}
#ifndef KIV_TOOLS_DRMOUTPUTSCANNER_H
#define KIV_TOOLS_DRMOUTPUTSCANNER_H

#include <StatusCollector/CollectedStatus.h>

#include <string>
#include <vector>

namespace KivCollector {

class DrmOutputScanner
{
public:
    /// Where the kernel lists its graphics devices and their connectors.
    static constexpr const char* KernelDrmDirectory = "/sys/class/drm";

    explicit DrmOutputScanner(std::string directory = KernelDrmDirectory);

    /// Replaces \p outputs by one entry per connector in the directory. A
    /// connector is an entry named "card<digits>-<connector name>"; other
    /// entries ("card0", "renderD128", "version") are skipped. Connectors are
    /// numbered from 1 in byte order of their names; kind 0 when the
    /// connector's "status" file reads "connected" (a trailing line feed is
    /// ignored), 1 for any other text or an unreadable file; rows and
    /// columns 1. A missing directory means a machine without graphics
    /// devices: no outputs, and true. Any other failure to read the
    /// directory answers false with \p fault; \p outputs is then empty.
    bool Scan(std::vector<CollectedStatus::Output>& outputs, std::string& fault) const;

    /// True for a connector name: "card", one or more digits, "-", and at
    /// least one more character.
    static bool IsConnectorName(const std::string& name);

private:
    std::string directory;
};

} // namespace KivCollector

#endif

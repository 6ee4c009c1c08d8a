// SPDX-License-Identifier: Apache-2.0
// Fuzz target of VpSts::CStatus::Load: any bytes as the status file. Checks
// that a failed load leaves the record exactly as it was (null device texts
// included), that a successful one respects the limits, and that every
// message names the file.

#include <VpSts/CStatus.h>
#include "FuzzWorkspace.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace {

/// A device text with null kept apart from "".
std::string Describe(const char* text)
{
    return text == nullptr ? std::string("\x01null", 5) : "=" + std::string(text);
}

struct Snapshot
{
    std::vector<std::string> values;

    explicit Snapshot(const VpSts::CStatus& status)
    {
        values = {std::to_string(status.modelCode), status.dateTime, status.upTime, status.identifier};
        unsigned int index = 0;
        for (; status.networkDeviceList[index] != nullptr; ++index) {
            const VpSts::CNetworkDevice* device = status.networkDeviceList[index];
            values.push_back("device " + std::to_string(device->deviceNumber));
            for (const char* text : {device->name, device->macAddress, device->ipv4Address, device->ipv6Address,
                                     device->gateway, device->subnet}) {
                FUZZ_CHECK(text == nullptr || std::string(text).size() <= VpSts::CStatus::MaximumTextBytes);
                values.push_back(Describe(text));
            }
        }
        FUZZ_CHECK(index == status.networkDeviceList.Count());
        FUZZ_CHECK(index <= VpSts::CStatus::MaximumNetworkDevices);
        for (index = 0; status.outputList[index] != nullptr; ++index) {
            const VpSts::COutput* output = status.outputList[index];
            values.push_back("output " + std::to_string(output->outputNumber) + " " +
                             std::to_string(output->outputKind) + " " + std::to_string(output->translationRows) +
                             " " + std::to_string(output->translationColumns));
        }
        FUZZ_CHECK(index == status.outputList.Count());
        FUZZ_CHECK(index <= VpSts::CStatus::MaximumOutputs);
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FuzzWorkspace workspace;
    static VpSts::CStatus status;
    workspace.Write("status.xml", data, size);
    std::string file = workspace.Path() + "/status.xml";
    Snapshot before(status);
    bool loaded = status.Load(file.c_str());
    Snapshot after(status);
    if (!loaded) {
        FUZZ_CHECK(before.values == after.values);
        FUZZ_CHECK(!status.ErrorMessages().empty());
        for (const std::string& message : status.ErrorMessages())
            FUZZ_CHECK(message.compare(0, file.size(), file) == 0);
    } else {
        FUZZ_CHECK(status.ErrorMessages().empty());
        FUZZ_CHECK(size <= VpSts::CStatus::MaximumFileBytes);
    }
    return 0;
}

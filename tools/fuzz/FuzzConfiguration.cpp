// SPDX-License-Identifier: Apache-2.0
// Fuzz target of VpCfg::CConfig::LoadResources: any bytes as configuration.xml.
// Checks that a failed load leaves the record exactly as it was, that a
// successful one respects the limits, and that every message names the file.

#include <VpCfg/CConfig.h>
#include "FuzzWorkspace.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace {

struct Snapshot
{
    std::vector<std::string> texts;
    std::uint32_t thresholdLow;
    std::uint32_t thresholdHigh;
    std::vector<std::pair<std::uint32_t, std::uint16_t>> services;

    explicit Snapshot(const VpCfg::CConfig& config)
        : texts{config.descriptionText, config.timeZoneName, config.computerName, config.formatVersion,
                config.owner,           config.siteLocation, config.domainName,   config.productPrefix},
          thresholdLow(config.thresholdLow), thresholdHigh(config.thresholdHigh)
    {
        for (unsigned int index = 0; config.serviceList[index] != nullptr; ++index)
            services.emplace_back(config.serviceList[index]->serviceKind, config.serviceList[index]->servicePort);
        FUZZ_CHECK(services.size() == config.serviceList.Count());
    }

    bool operator==(const Snapshot& other) const
    {
        return texts == other.texts && thresholdLow == other.thresholdLow && thresholdHigh == other.thresholdHigh &&
               services == other.services;
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FuzzWorkspace workspace;
    static VpCfg::CConfig config;
    workspace.Write("configuration.xml", data, size);
    Snapshot before(config);
    bool loaded = config.LoadResources(workspace.Path().c_str());
    Snapshot after(config);
    std::string file = workspace.Path() + "/configuration.xml";
    if (!loaded) {
        FUZZ_CHECK(before == after);
        FUZZ_CHECK(!config.ErrorMessages().empty());
        for (const std::string& message : config.ErrorMessages())
            FUZZ_CHECK(message.compare(0, file.size(), file) == 0);
    } else {
        FUZZ_CHECK(config.ErrorMessages().empty());
        FUZZ_CHECK(size <= VpCfg::CConfig::MaximumFileBytes);
        FUZZ_CHECK(after.services.size() <= VpCfg::CConfig::MaximumServices);
        for (const std::string& text : after.texts)
            FUZZ_CHECK(text.size() <= VpCfg::CConfig::MaximumTextBytes);
    }
    return 0;
}

// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataStatusNetwork.h>

#include <sstream>

namespace KivConfig {

MetadataStatusNetwork::MetadataStatusNetwork(const VpSts::CStatus& status) : status(status)
{
}

void MetadataStatusNetwork::Refresh()
{
    std::ostringstream fragment;
    fragment << "<Network>";
    for (unsigned int index = 0;; ++index) {
        const VpSts::CNetworkDevice* device = status.networkDeviceList[index];
        if (device == nullptr)
            break;
        // The attribute quotes keep their backslashes: discovery clients of
        // the family parse exactly this form.
        fragment << R"(<NetworkDevice number=\")"
                 << static_cast<unsigned long>(device->deviceNumber) << R"(\">)";
        // Element name and value, in the order the clients read them.
        const char* const texts[][2] = {{"Name", device->name},
                                        {"MAC", device->macAddress},
                                        {"IPv4", device->ipv4Address},
                                        {"IPv6", device->ipv6Address},
                                        {"Gateway", device->gateway},
                                        {"Subnet", device->subnet}};
        for (const auto& text : texts)
            WriteElement(fragment, text[0], text[1]);
        fragment << "</NetworkDevice>";
    }
    fragment << "</Network>";
    AcceptFragment(fragment.str());
}

} // namespace KivConfig

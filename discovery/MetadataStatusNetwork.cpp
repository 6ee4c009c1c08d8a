// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataStatusNetwork.h>

namespace KivConfig {

MetadataStatusNetwork::MetadataStatusNetwork(const VpSts::CStatus& status) : status(status)
{
}

void MetadataStatusNetwork::Refresh()
{
    Fragment fragment(512);
    fragment.Append("<Network>");
    for (unsigned int index = 0;; ++index) {
        const VpSts::CNetworkDevice* device = status.networkDeviceList[index];
        if (device == nullptr)
            break;
        // The attribute quotes keep their backslashes: discovery clients of
        // the family parse exactly this form.
        fragment.Append(R"(<NetworkDevice number=\")")
            .AppendNumber(device->deviceNumber)
            .Append(R"(\">)");
        // Element name and value, in the order the clients read them.
        const char* const texts[][2] = {{"Name", device->name},
                                        {"MAC", device->macAddress},
                                        {"IPv4", device->ipv4Address},
                                        {"IPv6", device->ipv6Address},
                                        {"Gateway", device->gateway},
                                        {"Subnet", device->subnet}};
        for (const auto& text : texts)
            WriteElement(fragment, text[0], text[1]);
        fragment.Append("</NetworkDevice>");
    }
    fragment.Append("</Network>");
    AcceptFragment(fragment.Text());
}

} // namespace KivConfig

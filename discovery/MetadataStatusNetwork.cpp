// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataStatusNetwork.h>

namespace KivConfig {

MetadataStatusNetwork::MetadataStatusNetwork(const VpSts::CStatus& status) : status(status)
{
}

void MetadataStatusNetwork::Refresh()
{
    Fragment fragment(*this);
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
        // The elements in the order the clients read them.
        WriteTagged(fragment, "<Name>", "</Name>", device->name);
        WriteTagged(fragment, "<MAC>", "</MAC>", device->macAddress);
        WriteTagged(fragment, "<IPv4>", "</IPv4>", device->ipv4Address);
        WriteTagged(fragment, "<IPv6>", "</IPv6>", device->ipv6Address);
        WriteTagged(fragment, "<Gateway>", "</Gateway>", device->gateway);
        WriteTagged(fragment, "<Subnet>", "</Subnet>", device->subnet);
        fragment.Append("</NetworkDevice>");
    }
    fragment.Append("</Network>");
    AcceptFragment(fragment);
}

} // namespace KivConfig

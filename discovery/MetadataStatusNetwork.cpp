#include "MetadataStatusNetwork.h"

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
        fragment << "<Name>";
        WriteValue(fragment, device->name);
        fragment << "</Name><MAC>";
        WriteValue(fragment, device->macAddress);
        fragment << "</MAC><IPv4>";
        WriteValue(fragment, device->ipv4Address);
        fragment << "</IPv4><IPv6>";
        WriteValue(fragment, device->ipv6Address);
        fragment << "</IPv6><Gateway>";
        WriteValue(fragment, device->gateway);
        fragment << "</Gateway><Subnet>";
        WriteValue(fragment, device->subnet);
        fragment << "</Subnet></NetworkDevice>";
    }
    fragment << "</Network>";
    AcceptFragment(fragment.str());
}

} // namespace KivConfig

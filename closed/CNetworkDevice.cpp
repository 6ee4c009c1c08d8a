// SPDX-License-Identifier: Apache-2.0
#include <VpSts/CNetworkDevice.h>

namespace VpSts {

CNetworkDevice::CNetworkDevice(std::uint32_t number)
    : deviceNumber(number), name(nullptr), macAddress(nullptr), ipv4Address(nullptr), ipv6Address(nullptr),
      gateway(nullptr), subnet(nullptr)
{
}

void CNetworkDevice::SetText(TextField field, const std::string& value)
{
    const char** fields[TextFieldCount] = {&name, &macAddress, &ipv4Address, &ipv6Address, &gateway, &subnet};
    if (field < Name || field >= TextFieldCount)
        return;
    storage[field] = value;
    *fields[field] = storage[field].c_str();
}

} // namespace VpSts

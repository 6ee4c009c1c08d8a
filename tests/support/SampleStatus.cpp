// SPDX-License-Identifier: Apache-2.0
#include <KivTest/SampleStatus.h>

namespace KivTest {

std::string SampleStatusXml(std::uint32_t modelCode, const std::string& ipv4)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<status>\n"
           "  <modelCode>" + std::to_string(modelCode) + "</modelCode>\n"
           "  <networkDevices>\n"
           "    <networkDevice number=\"1\">\n"
           "      <name>eth0</name>\n"
           "      <mac>00:11:22:33:44:55</mac>\n"
           "      <ipv4>" + ipv4 + "</ipv4>\n"
           "      <ipv6>2001:db8::10</ipv6>\n"
           "      <gateway>192.0.2.1</gateway>\n"
           "      <subnet>255.255.255.0</subnet>\n"
           "    </networkDevice>\n"
           "  </networkDevices>\n"
           "  <outputs>\n"
           "    <output number=\"1\" kind=\"0\" rows=\"2\" columns=\"4\"/>\n"
           "  </outputs>\n"
           "</status>\n";
}

} // namespace KivTest

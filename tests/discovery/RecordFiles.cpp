// SPDX-License-Identifier: Apache-2.0
#include "RecordFiles.h"

#include <KivTest/SampleStatus.h>
#include <KivTest/TemporaryDirectory.h>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace KivTest {

RecordFiles::RecordFiles(const std::string& directory)
    : configurationDirectory(directory + "/configuration"), statusFile(directory + "/status.xml")
{
    mkdir(configurationDirectory.c_str(), 0755);
}

void RecordFiles::LoadConfiguration(VpCfg::CConfig& config, const std::string& computerName,
                                    const ServiceEntries& services)
{
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<configuration>\n"
                       "  <description>Wall</description>\n"
                       "  <timeZone>Europe/Zurich</timeZone>\n"
                       "  <computerName>" +
                       computerName + "</computerName>\n  <services>\n";
    for (const auto& [kind, port] : services)
        text += "    <service kind=\"" + std::to_string(kind) + "\" port=\"" +
                std::to_string(port) + "\"/>\n";
    text += "  </services>\n</configuration>\n";
    ASSERT_TRUE(WriteFile(configurationDirectory + "/configuration.xml", text));
    ASSERT_TRUE(config.LoadResources(configurationDirectory.c_str())) << config.ErrorMessage();
}

void RecordFiles::LoadStatus(VpSts::CStatus& status, std::uint32_t modelCode)
{
    std::string text = SampleStatusXml(modelCode);
    ASSERT_TRUE(WriteFile(statusFile, text));
    ASSERT_TRUE(status.Load(statusFile.c_str())) << status.ErrorMessage();
}

std::string ExpectedMetadata(const std::string& computerName, const char* productFamily)
{
    return R"(<cpp:Config><Description>Wall</Description><TimeZone>Europe/Zurich</TimeZone>)"
           R"(<ComputerName>)" +
           computerName +
           R"(</ComputerName></cpp:Config>)"
           R"(<cpp:State><ProductFamily>)" +
           productFamily +
           R"(</ProductFamily>)"
           R"(<Network><NetworkDevice number=\"1\"><Name>eth0</Name><MAC>00:11:22:33:44:55</MAC>)"
           R"(<IPv4>192.0.2.10</IPv4><IPv6>2001:db8::10</IPv6><Gateway>192.0.2.1</Gateway>)"
           R"(<Subnet>255.255.255.0</Subnet></NetworkDevice></Network>)"
           R"(<Outputs><Output number=\"1\" i:type=\"Cablor6Type\"><TranslationTable>)"
           R"(<Rows>2</Rows><Columns>4</Columns></TranslationTable></Output></Outputs>)"
           R"(</cpp:State><cpp:DiscoveryVersion>1</cpp:DiscoveryVersion>)";
}

} // namespace KivTest

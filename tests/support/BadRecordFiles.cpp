// SPDX-License-Identifier: Apache-2.0
#include <KivTest/BadRecordFiles.h>

#include <KivTest/TemporaryDirectory.h>

namespace KivTest {

namespace {

const std::string Declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

std::string Configuration(const std::string& body)
{
    return Declaration + "<configuration>\n" + body + "</configuration>\n";
}

std::string Status(const std::string& body)
{
    return Declaration + "<status>\n" + body + "</status>\n";
}

std::vector<BadRecordFile> MakeSamples()
{
    using Kind = BadRecordFile::Kind;
    const std::string services = "  <services>\n";
    std::vector<BadRecordFile> samples = {
        {"port above 16 bits", Kind::Configuration,
         Configuration(services + "    <service kind=\"0\" port=\"70000\"/>\n  </services>\n"),
         "4:5: attribute port of service: 70000 is out of range 0..65535"},
        {"port with a sign", Kind::Configuration,
         Configuration(services + "    <service kind=\"0\" port=\"+80\"/>\n  </services>\n"),
         "4:5: attribute port of service: \"+80\" is not an unsigned decimal number"},
        {"empty kind", Kind::Configuration,
         Configuration(services + "    <service kind=\"\" port=\"80\"/>\n  </services>\n"),
         "4:5: attribute kind of service: empty value is not a number"},
        {"missing kind", Kind::Configuration,
         Configuration(services + "    <service port=\"80\"/>\n  </services>\n"),
         "4:5: attribute kind of service is missing"},
        {"time zone twice", Kind::Configuration,
         Configuration("  <timeZone>UTC</timeZone>\n  <timeZone>UTC</timeZone>\n"),
         "4:3: element timeZone of configuration is given twice (first at 3:3)"},
        {"computer name holding an element", Kind::Configuration,
         Configuration("  <computerName>unit-<b>1</b></computerName>\n"),
         "3:22: element computerName must hold text, not the element b"},
        {"invalid UTF-8", Kind::Configuration, Configuration("  <description>caf\xC3(</description>\n"),
         "3:19: invalid UTF-8 sequence starting with byte 0xC3"},
        {"forbidden control character", Kind::Configuration,
         Configuration("  <description>\xC3\xA9t\xC3\xA9\x01</description>\n"),
         "3:19: character U+0001 is not allowed in XML"},
        {"reference to a forbidden character", Kind::Configuration,
         Configuration("  <description>bell &#7;</description>\n"),
         "3:21: character reference &#7; stands for U+0007, which XML does not allow"},
        {"unknown entity", Kind::Configuration, Configuration("  <owner>&nbsp;</owner>\n"),
         "3:10: unknown entity reference &nbsp;"},
        {"mismatched end tag", Kind::Configuration, Configuration("  <owner>ops</ownr>\n"),
         "3:15: malformed XML: start-end tags mismatch"},
        {"wrong root element", Kind::Configuration, Declaration + "\n<config/>\n",
         "3:1: root element is config, expected configuration"},
        {"threshold in hexadecimal", Kind::Configuration, Configuration("  <thresholdLow>0x28</thresholdLow>\n"),
         "3:3: element thresholdLow: \"0x28\" is not an unsigned decimal number"},
        {"attribute given twice", Kind::Configuration,
         Configuration(services + "    <service kind=\"0\" port=\"80\" port=\"81\"/>\n  </services>\n"),
         "4:5: attribute port of service is given twice"},
        {"document type declaration", Kind::Configuration,
         Declaration + "<!DOCTYPE configuration>\n<configuration/>\n",
         "2:1: document type declarations are not supported"},
        {"output without rows", Kind::Status,
         Status("  <outputs>\n    <output number=\"1\" kind=\"0\" columns=\"4\"/>\n  </outputs>\n"),
         "4:5: attribute rows of output is missing"},
        {"device without number", Kind::Status,
         Status("  <networkDevices>\n    <networkDevice><name>eth0</name></networkDevice>\n  </networkDevices>\n"),
         "4:5: attribute number of networkDevice is missing"},
        {"model code above 32 bits", Kind::Status, Status("  <modelCode>4294967296</modelCode>\n"),
         "3:3: element modelCode: 4294967296 is out of range 0..4294967295"},
        {"model code with spaces", Kind::Status, Status("  <modelCode> 3 </modelCode>\n"),
         "3:3: element modelCode: \" 3 \" is not an unsigned decimal number"},
        {"device name twice", Kind::Status,
         Status("  <networkDevices>\n    <networkDevice number=\"1\">\n      <name>a</name>\n"
                "      <name>b</name>\n    </networkDevice>\n  </networkDevices>\n"),
         "6:7: element name of networkDevice is given twice (first at 5:7)"},
        {"second root element", Kind::Status, Status("") + "<status/>\n",
         "4:1: a second element after the root element"},
    };
    return samples;
}

} // namespace

const std::vector<BadRecordFile>& BadRecordFiles()
{
    static const std::vector<BadRecordFile> samples = MakeSamples();
    return samples;
}

std::string WriteBadRecordFile(const std::string& directory, const BadRecordFile& sample)
{
    std::string file =
        directory + (sample.kind == BadRecordFile::Configuration ? "/configuration.xml" : "/status.xml");
    WriteFile(file, sample.content);
    return file;
}

} // namespace KivTest

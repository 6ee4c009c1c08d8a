// SPDX-License-Identifier: Apache-2.0
#include <VpCfg/CConfig.h>

#include <KivClosed/XmlRecordReader.h>

#include <utility>

namespace VpCfg {

namespace {

using KivClosed::XmlRecordReader;

const std::uint32_t DefaultThresholdLow = 40;
const std::uint32_t DefaultThresholdHigh = 55;
const std::uint32_t LargestPort = 65535;
const std::uint32_t LargestNumber = 4294967295u;

/// The text elements with their defaults, in the order of CConfig's text fields.
struct TextElement
{
    const char* element;
    const char* defaultValue;
};

const TextElement TextElements[] = {
    {"description", ""},          {"timeZone", "Europe/Zurich"}, {"computerName", "trxDefault"},
    {"formatVersion", "1.0"},     {"owner", "nil"},              {"siteLocation", "unspecified"},
    {"domainName", "localdomain"}, {"productPrefix", "TRX"},
};

template <typename Texts>
void FillDefaults(Texts& texts)
{
    for (std::size_t index = 0; index < texts.size(); ++index)
        texts[index] = TextElements[index].defaultValue;
}

void ReadServices(XmlRecordReader& reader, pugi::xml_node root, CServiceList& services)
{
    pugi::xml_node list = reader.SingleChild(root, "services");
    if (!list)
        return;
    for (pugi::xml_node service : reader.RepeatedChildren(list, "service", CConfig::MaximumServices)) {
        std::uint32_t kind = 0;
        std::uint32_t port = 0;
        bool kindRead = reader.ReadNumberAttribute(service, "kind", LargestNumber, kind);
        bool portRead = reader.ReadNumberAttribute(service, "port", LargestPort, port);
        if (kindRead && portRead)
            services.Add(CServiceEntry(kind, static_cast<std::uint16_t>(port)));
    }
}

} // namespace

CConfig::CConfig()
    : descriptionText(nullptr), timeZoneName(nullptr), computerName(nullptr), formatVersion(nullptr),
      owner(nullptr), siteLocation(nullptr), domainName(nullptr), thresholdLow(0), thresholdHigh(0),
      productPrefix(nullptr)
{
    static_assert(sizeof TextElements / sizeof TextElements[0] == std::tuple_size<Texts>::value,
                  "one default per text field");
    Texts defaults;
    FillDefaults(defaults);
    CServiceList noServices;
    Adopt(defaults, DefaultThresholdLow, DefaultThresholdHigh, noServices);
}

CConfig::~CConfig() = default;

bool CConfig::LoadResources(const char* path)
{
    if (path == nullptr) {
        errors.assign(1, "no configuration directory given");
        return false;
    }
    XmlRecordReader reader(std::string(path) + "/configuration.xml", MaximumFileBytes, MaximumTextBytes);
    Texts newTexts;
    FillDefaults(newTexts);
    std::uint32_t low = DefaultThresholdLow;
    std::uint32_t high = DefaultThresholdHigh;
    CServiceList services;
    pugi::xml_node root = reader.Open("configuration");
    if (root) {
        for (std::size_t index = 0; index < newTexts.size(); ++index) {
            pugi::xml_node element = reader.SingleChild(root, TextElements[index].element);
            if (element)
                reader.ReadText(element, newTexts[index]);
        }
        pugi::xml_node lowElement = reader.SingleChild(root, "thresholdLow");
        if (lowElement)
            reader.ReadNumber(lowElement, LargestNumber, low);
        pugi::xml_node highElement = reader.SingleChild(root, "thresholdHigh");
        if (highElement)
            reader.ReadNumber(highElement, LargestNumber, high);
        ReadServices(reader, root, services);
    }
    if (!reader.Succeeded()) {
        errors = reader.Errors();
        return false;
    }
    Adopt(newTexts, low, high, services);
    errors.clear();
    return true;
}

void CConfig::Adopt(Texts& newTexts, std::uint32_t low, std::uint32_t high, CServiceList& services)
{
    texts.swap(newTexts);
    descriptionText = texts[0].c_str();
    timeZoneName = texts[1].c_str();
    computerName = texts[2].c_str();
    formatVersion = texts[3].c_str();
    owner = texts[4].c_str();
    siteLocation = texts[5].c_str();
    domainName = texts[6].c_str();
    productPrefix = texts[7].c_str();
    thresholdLow = low;
    thresholdHigh = high;
    serviceList.Swap(services);
}

const std::vector<std::string>& CConfig::ErrorMessages() const
{
    return errors;
}

std::string CConfig::ErrorMessage() const
{
    return XmlRecordReader::Join(errors);
}

} // namespace VpCfg

// SPDX-License-Identifier: Apache-2.0
#include <VpCfg/CConfig.h>

#include <KivClosed/XmlRecordReader.h>

#include <algorithm>
#include <type_traits>
#include <utility>

namespace VpCfg {

namespace {

using KivClosed::XmlRecordReader;

const std::uint32_t DefaultThresholdLow = 40;
const std::uint32_t DefaultThresholdHigh = 55;
const std::uint32_t LargestPort = 65535;
const std::uint32_t LargestNumber = 4294967295u;

/// The defaults of CConfig's text fields, in their order.
const char* const TextDefaults[] = {"", "Europe/Zurich", "trxDefault", "1.0", "nil", "unspecified", "localdomain",
                                    "TRX"};
const std::size_t TextCount = sizeof TextDefaults / sizeof TextDefaults[0];
using RecordTexts = std::array<std::string, TextCount>;

/// The elements of the file; the text elements come first, in the order of
/// CConfig's text fields.
enum ConfigurationElement
{
    Root,
    FirstText,
    ThresholdLow = FirstText + TextCount,
    ThresholdHigh,
    Services,
    Service,
    ElementCount
};

const XmlRecordReader::Element Elements[ElementCount] = {
    {"configuration", XmlRecordReader::NoParent, XmlRecordReader::Children, 1, 0, false},
    {"description", Root, XmlRecordReader::Text, 1, 0, false},
    {"timeZone", Root, XmlRecordReader::Text, 1, 0, false},
    {"computerName", Root, XmlRecordReader::Text, 1, 0, false},
    {"formatVersion", Root, XmlRecordReader::Text, 1, 0, false},
    {"owner", Root, XmlRecordReader::Text, 1, 0, false},
    {"siteLocation", Root, XmlRecordReader::Text, 1, 0, false},
    {"domainName", Root, XmlRecordReader::Text, 1, 0, false},
    {"productPrefix", Root, XmlRecordReader::Text, 1, 0, false},
    {"thresholdLow", Root, XmlRecordReader::Number, 1, LargestNumber, false},
    {"thresholdHigh", Root, XmlRecordReader::Number, 1, LargestNumber, false},
    {"services", Root, XmlRecordReader::Children, 1, 0, false},
    {"service", Services, XmlRecordReader::Children, CConfig::MaximumServices, 0, false},
};

void FillDefaults(RecordTexts& texts)
{
    std::copy(TextDefaults, TextDefaults + TextCount, texts.begin());
}

/// Builds a fresh record while the file is parsed.
class ConfigurationReader : public XmlRecordReader
{
public:
    explicit ConfigurationReader(std::string path)
        : XmlRecordReader(std::move(path), CConfig::MaximumFileBytes, CConfig::MaximumTextBytes, Elements,
                          ElementCount)
    {
        FillDefaults(texts);
    }

    RecordTexts texts;
    std::uint32_t low = DefaultThresholdLow;
    std::uint32_t high = DefaultThresholdHigh;
    CServiceList services;

protected:
    void ElementStarted(int element, const char* const* attributes) override
    {
        if (element != Service)
            return;
        std::uint32_t kind = 0;
        std::uint32_t port = 0;
        bool kindRead = ReadNumberAttribute(attributes, "kind", LargestNumber, kind);
        bool portRead = ReadNumberAttribute(attributes, "port", LargestPort, port);
        if (kindRead && portRead)
            services.Add(CServiceEntry(kind, static_cast<std::uint16_t>(port)));
    }

    void TextRead(int element, std::string& text) override { texts[element - FirstText].swap(text); }

    void NumberRead(int element, std::uint32_t value) override { (element == ThresholdLow ? low : high) = value; }
};

} // namespace

CConfig::CConfig()
    : descriptionText(nullptr), timeZoneName(nullptr), computerName(nullptr), formatVersion(nullptr),
      owner(nullptr), siteLocation(nullptr), domainName(nullptr), thresholdLow(0), thresholdHigh(0),
      productPrefix(nullptr), lastGoodFile(new KivClosed::LastGoodFile)
{
    static_assert(std::is_same<RecordTexts, Texts>::value, "one default per text field");
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
    ConfigurationReader reader(std::string(path) + "/configuration.xml");
    XmlRecordReader::Outcome outcome = reader.Load(*lastGoodFile);
    if (outcome == XmlRecordReader::Failed) {
        errors = reader.Errors();
        return false;
    }
    // An unchanged file is the one the record holds already; entries handed
    // out before stay the same.
    if (outcome == XmlRecordReader::Parsed)
        Adopt(reader.texts, reader.low, reader.high, reader.services);
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

// SPDX-License-Identifier: Apache-2.0
#include <VpSts/CStatus.h>

#include <KivClosed/XmlRecordReader.h>

#include <algorithm>
#include <memory>
#include <type_traits>
#include <utility>

namespace VpSts {

namespace {

using KivClosed::XmlRecordReader;

const std::uint32_t LargestNumber = 4294967295u;

/// The defaults of CStatus's text fields, in their order.
const char* const TextDefaults[] = {"2000-01-01T00:00:00", "P0S", "0x0000000000000000"};
const std::size_t TextCount = sizeof TextDefaults / sizeof TextDefaults[0];
using RecordTexts = std::array<std::string, TextCount>;

/// The elements of the file; the text elements of status and of
/// networkDevice each come in the order of their fields.
enum StatusElement
{
    Root,
    FirstText,
    ModelCode = FirstText + TextCount,
    NetworkDevices,
    NetworkDevice,
    FirstDeviceText,
    Outputs = FirstDeviceText + CNetworkDevice::TextFieldCount,
    Output,
    ElementCount
};

const XmlRecordReader::Element Elements[ElementCount] = {
    {"status", XmlRecordReader::NoParent, XmlRecordReader::Children, 1, 0, false},
    {"dateTime", Root, XmlRecordReader::Text, 1, 0, false},
    {"upTime", Root, XmlRecordReader::Text, 1, 0, false},
    {"identifier", Root, XmlRecordReader::Text, 1, 0, false},
    {"modelCode", Root, XmlRecordReader::Number, 1, LargestNumber, false},
    {"networkDevices", Root, XmlRecordReader::Children, 1, 0, false},
    {"networkDevice", NetworkDevices, XmlRecordReader::Children, CStatus::MaximumNetworkDevices, 0, false},
    {"name", NetworkDevice, XmlRecordReader::Text, 1, 0, false},
    {"mac", NetworkDevice, XmlRecordReader::Text, 1, 0, false},
    {"ipv4", NetworkDevice, XmlRecordReader::Text, 1, 0, false},
    {"ipv6", NetworkDevice, XmlRecordReader::Text, 1, 0, false},
    {"gateway", NetworkDevice, XmlRecordReader::Text, 1, 0, false},
    {"subnet", NetworkDevice, XmlRecordReader::Text, 1, 0, false},
    {"outputs", Root, XmlRecordReader::Children, 1, 0, false},
    {"output", Outputs, XmlRecordReader::Children, CStatus::MaximumOutputs, 0, false},
};

void FillDefaults(RecordTexts& texts)
{
    std::copy(TextDefaults, TextDefaults + TextCount, texts.begin());
}

/// Builds a fresh record while the file is parsed.
class StatusReader : public XmlRecordReader
{
public:
    explicit StatusReader(std::string path)
        : XmlRecordReader(std::move(path), CStatus::MaximumFileBytes, CStatus::MaximumTextBytes, Elements,
                          ElementCount)
    {
        FillDefaults(texts);
    }

    RecordTexts texts;
    std::uint32_t model = CStatus::UnknownModel;
    CNetworkDeviceList devices;
    COutputList outputs;

protected:
    void ElementStarted(int element, const char* const* attributes) override
    {
        if (element == NetworkDevice) {
            std::uint32_t number = 0;
            deviceNumbered = ReadNumberAttribute(attributes, "number", LargestNumber, number);
            device = std::make_unique<CNetworkDevice>(number);
        } else if (element == Output) {
            std::uint32_t number = 0;
            std::uint32_t kind = 0;
            std::uint32_t rows = 0;
            std::uint32_t columns = 0;
            // Each attribute is read even after a fault, so that one load
            // names every fault of the element.
            bool numberRead = ReadNumberAttribute(attributes, "number", LargestNumber, number);
            bool kindRead = ReadNumberAttribute(attributes, "kind", LargestNumber, kind);
            bool rowsRead = ReadNumberAttribute(attributes, "rows", LargestNumber, rows);
            bool columnsRead = ReadNumberAttribute(attributes, "columns", LargestNumber, columns);
            if (numberRead && kindRead && rowsRead && columnsRead)
                outputs.Add(COutput(number, kind, rows, columns));
        }
    }

    void TextRead(int element, std::string& text) override
    {
        if (element >= FirstDeviceText && element < Outputs)
            device->SetText(static_cast<CNetworkDevice::TextField>(element - FirstDeviceText), text);
        else
            texts[static_cast<std::size_t>(element - FirstText)].swap(text);
    }

    void NumberRead(int, std::uint32_t value) override { model = value; }

    void ElementEnded(int element) override
    {
        if (element == NetworkDevice && deviceNumbered)
            devices.Add(std::move(device));
    }

private:
    std::unique_ptr<CNetworkDevice> device;
    bool deviceNumbered = false;
};

} // namespace

CStatus::CStatus()
    : modelCode(UnknownModel), dateTime(nullptr), upTime(nullptr), identifier(nullptr),
      lastGoodFile(new KivClosed::LastGoodFile)
{
    static_assert(std::is_same<RecordTexts, Texts>::value, "one default per text field");
    Texts defaults;
    FillDefaults(defaults);
    CNetworkDeviceList noDevices;
    COutputList noOutputs;
    Adopt(defaults, UnknownModel, noDevices, noOutputs);
}

CStatus::~CStatus() = default;

bool CStatus::Load(const char* path)
{
    if (path == nullptr) {
        errors.assign(1, "no status file given");
        return false;
    }
    StatusReader reader(path);
    XmlRecordReader::Outcome outcome = reader.Load(*lastGoodFile);
    if (outcome == XmlRecordReader::Failed) {
        errors = reader.Errors();
        return false;
    }
    // An unchanged file is the one the record holds already; entries handed
    // out before stay the same.
    if (outcome == XmlRecordReader::Parsed)
        Adopt(reader.texts, reader.model, reader.devices, reader.outputs);
    errors.clear();
    return true;
}

void CStatus::Adopt(Texts& newTexts, std::uint32_t model, CNetworkDeviceList& devices, COutputList& outputs)
{
    texts.swap(newTexts);
    dateTime = texts[0].c_str();
    upTime = texts[1].c_str();
    identifier = texts[2].c_str();
    modelCode = model;
    networkDeviceList.Swap(devices);
    outputList.Swap(outputs);
}

const std::vector<std::string>& CStatus::ErrorMessages() const
{
    return errors;
}

std::string CStatus::ErrorMessage() const
{
    return XmlRecordReader::Join(errors);
}

} // namespace VpSts

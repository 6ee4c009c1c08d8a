// SPDX-License-Identifier: Apache-2.0
#include <VpSts/CStatus.h>

#include <KivClosed/XmlRecordReader.h>

#include <memory>

namespace VpSts {

namespace {

using KivClosed::XmlRecordReader;

const std::uint32_t LargestNumber = 4294967295u;

/// The text elements with their defaults, in the order of CStatus's text fields.
struct TextElement
{
    const char* element;
    const char* defaultValue;
};

const TextElement TextElements[] = {
    {"dateTime", "2000-01-01T00:00:00"},
    {"upTime", "P0S"},
    {"identifier", "0x0000000000000000"},
};

/// The child elements of networkDevice, in the order of CNetworkDevice::TextField.
const char* const DeviceTextElements[CNetworkDevice::TextFieldCount] = {"name",     "mac",     "ipv4",
                                                                         "ipv6",     "gateway", "subnet"};

template <typename Texts>
void FillDefaults(Texts& texts)
{
    for (std::size_t index = 0; index < texts.size(); ++index)
        texts[index] = TextElements[index].defaultValue;
}

void ReadNetworkDevices(XmlRecordReader& reader, pugi::xml_node root, CNetworkDeviceList& devices)
{
    pugi::xml_node list = reader.SingleChild(root, "networkDevices");
    if (!list)
        return;
    for (pugi::xml_node element :
         reader.RepeatedChildren(list, "networkDevice", CStatus::MaximumNetworkDevices)) {
        std::uint32_t number = 0;
        bool numberRead = reader.ReadNumberAttribute(element, "number", LargestNumber, number);
        auto device = std::make_unique<CNetworkDevice>(number);
        for (int field = CNetworkDevice::Name; field < CNetworkDevice::TextFieldCount; ++field) {
            pugi::xml_node textElement = reader.SingleChild(element, DeviceTextElements[field]);
            std::string text;
            if (textElement && reader.ReadText(textElement, text))
                device->SetText(static_cast<CNetworkDevice::TextField>(field), text);
        }
        if (numberRead)
            devices.Add(std::move(device));
    }
}

void ReadOutputs(XmlRecordReader& reader, pugi::xml_node root, COutputList& outputs)
{
    pugi::xml_node list = reader.SingleChild(root, "outputs");
    if (!list)
        return;
    for (pugi::xml_node element : reader.RepeatedChildren(list, "output", CStatus::MaximumOutputs)) {
        std::uint32_t number = 0;
        std::uint32_t kind = 0;
        std::uint32_t rows = 0;
        std::uint32_t columns = 0;
        // Each attribute is read even after a fault, so that one load names
        // every fault of the element.
        bool numberRead = reader.ReadNumberAttribute(element, "number", LargestNumber, number);
        bool kindRead = reader.ReadNumberAttribute(element, "kind", LargestNumber, kind);
        bool rowsRead = reader.ReadNumberAttribute(element, "rows", LargestNumber, rows);
        bool columnsRead = reader.ReadNumberAttribute(element, "columns", LargestNumber, columns);
        if (numberRead && kindRead && rowsRead && columnsRead)
            outputs.Add(COutput(number, kind, rows, columns));
    }
}

} // namespace

CStatus::CStatus() : modelCode(UnknownModel), dateTime(nullptr), upTime(nullptr), identifier(nullptr)
{
    static_assert(sizeof TextElements / sizeof TextElements[0] == std::tuple_size<Texts>::value,
                  "one default per text field");
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
    XmlRecordReader reader(path, MaximumFileBytes, MaximumTextBytes);
    Texts newTexts;
    FillDefaults(newTexts);
    std::uint32_t model = UnknownModel;
    CNetworkDeviceList devices;
    COutputList outputs;
    pugi::xml_node root = reader.Open("status");
    if (root) {
        pugi::xml_node modelElement = reader.SingleChild(root, "modelCode");
        if (modelElement)
            reader.ReadNumber(modelElement, LargestNumber, model);
        ReadNetworkDevices(reader, root, devices);
        ReadOutputs(reader, root, outputs);
        for (std::size_t index = 0; index < newTexts.size(); ++index) {
            pugi::xml_node element = reader.SingleChild(root, TextElements[index].element);
            if (element)
                reader.ReadText(element, newTexts[index]);
        }
    }
    if (!reader.Succeeded()) {
        errors = reader.Errors();
        return false;
    }
    Adopt(newTexts, model, devices, outputs);
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

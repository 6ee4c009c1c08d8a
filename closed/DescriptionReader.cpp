// SPDX-License-Identifier: Apache-2.0
#include <KivDiscoveryClient/DescriptionReader.h>

#include <KivClosed/XmlRecordReader.h>

#include <cstdint>

namespace KivDiscoveryClient {

namespace {

using KivClosed::XmlRecordReader;

const std::uint32_t LargestPort = 65535;
const std::size_t NoTextLimit = SIZE_MAX;

std::vector<std::string> ReadTexts(XmlRecordReader& reader, pugi::xml_node root, const char* element)
{
    std::vector<std::string> texts;
    for (pugi::xml_node child : reader.RepeatedChildren(root, element, SIZE_MAX)) {
        std::string text;
        if (reader.ReadText(child, text))
            texts.push_back(text);
    }
    return texts;
}

} // namespace

DescriptionReader::DescriptionReader() : port(0) {}

DescriptionReader::~DescriptionReader() = default;

bool DescriptionReader::Load(const char* path)
{
    if (path == nullptr) {
        errors.assign(1, "no description file given");
        return false;
    }
    XmlRecordReader reader(path, MaximumFileBytes, NoTextLimit);
    std::string newName;
    std::vector<std::string> newTypes;
    std::vector<std::string> newScopes;
    std::uint32_t newPort = 0;
    std::string newMetaData;
    pugi::xml_node root = reader.Open("service");
    if (root) {
        reader.ReadTextAttribute(root, "name", newName);
        newTypes = ReadTexts(reader, root, "type");
        newScopes = ReadTexts(reader, root, "scope");
        pugi::xml_node portElement = reader.SingleChild(root, "port");
        if (portElement)
            reader.ReadNumber(portElement, LargestPort, newPort);
        else
            reader.Fail(root, "element port of service is missing");
        pugi::xml_node metaDataElement = reader.SingleChild(root, "metadata");
        if (metaDataElement)
            reader.ReadText(metaDataElement, newMetaData);
    }
    if (!reader.Succeeded()) {
        errors = reader.Errors();
        return false;
    }
    name.swap(newName);
    types.swap(newTypes);
    scopes.swap(newScopes);
    port = static_cast<std::uint16_t>(newPort);
    metaData.swap(newMetaData);
    errors.clear();
    return true;
}

const std::vector<std::string>& DescriptionReader::ErrorMessages() const
{
    return errors;
}

std::string DescriptionReader::ErrorMessage() const
{
    return XmlRecordReader::Join(errors);
}

const std::string& DescriptionReader::Name() const
{
    return name;
}

const std::vector<std::string>& DescriptionReader::Types() const
{
    return types;
}

const std::vector<std::string>& DescriptionReader::Scopes() const
{
    return scopes;
}

std::uint16_t DescriptionReader::Port() const
{
    return port;
}

const std::string& DescriptionReader::MetaData() const
{
    return metaData;
}

} // namespace KivDiscoveryClient

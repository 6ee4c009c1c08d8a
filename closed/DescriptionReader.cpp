// SPDX-License-Identifier: Apache-2.0
#include <KivDiscoveryClient/DescriptionReader.h>

#include <KivClosed/XmlRecordReader.h>

#include <cstdint>
#include <utility>

namespace KivDiscoveryClient {

namespace {

using KivClosed::XmlRecordReader;

const std::uint32_t LargestPort = 65535;
const std::size_t NoLimit = SIZE_MAX;

enum DescriptionElement
{
    Root,
    Type,
    Scope,
    Port,
    MetaData,
    ElementCount
};

const XmlRecordReader::Element Elements[ElementCount] = {
    {"service", XmlRecordReader::NoParent, XmlRecordReader::Children, 1, 0, false},
    {"type", Root, XmlRecordReader::Text, NoLimit, 0, false},
    {"scope", Root, XmlRecordReader::Text, NoLimit, 0, false},
    {"port", Root, XmlRecordReader::Number, 1, LargestPort, true},
    {"metadata", Root, XmlRecordReader::Text, 1, 0, false},
};

/// Collects a fresh description while the file is parsed.
class DescriptionFileReader : public XmlRecordReader
{
public:
    explicit DescriptionFileReader(const char* path)
        : XmlRecordReader(path, DescriptionReader::MaximumFileBytes, NoLimit, Elements, ElementCount)
    {
    }

    std::string name;
    std::vector<std::string> types;
    std::vector<std::string> scopes;
    std::uint32_t port = 0;
    std::string metaData;

protected:
    void ElementStarted(int element, const char* const* attributes) override
    {
        if (element == Root)
            ReadTextAttribute(attributes, "name", name);
    }

    void TextRead(int element, std::string& text) override
    {
        if (element == MetaData)
            metaData.swap(text);
        else
            (element == Type ? types : scopes).push_back(std::move(text));
    }

    void NumberRead(int, std::uint32_t value) override { port = value; }
};

} // namespace

DescriptionReader::DescriptionReader() : port(0) {}

DescriptionReader::~DescriptionReader() = default;

bool DescriptionReader::Load(const char* path)
{
    if (path == nullptr) {
        errors.assign(1, "no description file given");
        return false;
    }
    DescriptionFileReader reader(path);
    // Descriptions are read once each; no earlier file to compare with.
    KivClosed::LastGoodFile noEarlierFile;
    if (reader.Load(noEarlierFile) == XmlRecordReader::Failed) {
        errors = reader.Errors();
        return false;
    }
    name.swap(reader.name);
    types.swap(reader.types);
    scopes.swap(reader.scopes);
    port = static_cast<std::uint16_t>(reader.port);
    metaData.swap(reader.metaData);
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

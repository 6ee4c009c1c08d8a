// SPDX-License-Identifier: Apache-2.0
#include <KivDiscoveryClient/Discovery.h>

#include <KivClosed/AtomicFileWriter.h>
#include <KivClosed/XmlCharacters.h>

#include <cstddef>
#include <sys/stat.h>
#include <utility>

namespace KivDiscoveryClient {

using KivClosed::XmlCharacters;

namespace {

const mode_t FileMode = 0644;

/// Escapes for element text: what XML would otherwise read as markup, and a
/// carriage return, which parsers would turn into a line feed.
void AppendText(std::string& out, const std::string& text)
{
    for (char current : text) {
        switch (current) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '\r': out += "&#13;"; break;
        default: out += current; break;
        }
    }
}

/// Escapes for a double-quoted attribute value: as for text, plus the quote,
/// and tab and line feed, which parsers turn into spaces in attributes.
void AppendAttribute(std::string& out, const std::string& text)
{
    for (char current : text) {
        switch (current) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '"': out += "&quot;"; break;
        case '\t': out += "&#9;"; break;
        case '\n': out += "&#10;"; break;
        case '\r': out += "&#13;"; break;
        default: out += current; break;
        }
    }
}

bool CheckText(const std::string& what, const std::string& text, std::string& fault)
{
    std::size_t offset = 0;
    std::string problem;
    if (XmlCharacters::Check(text.data(), text.size(), offset, problem))
        return true;
    fault = what + ": " + problem + " (at byte " + std::to_string(offset) + ")";
    return false;
}

bool IsPlainFileName(const std::string& name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
           name.find('\0') == std::string::npos;
}

} // namespace

Discovery::Discovery(std::string serviceName) : name(std::move(serviceName)), port(0) {}

Discovery::~Discovery() = default;

void Discovery::AddType(const std::string& type)
{
    types.push_back(type);
}

void Discovery::AddScope(const std::string& scope)
{
    scopes.push_back(scope);
}

void Discovery::SetPort(unsigned short newPort)
{
    port = newPort;
}

void Discovery::SetMetaData(const std::string& metadata)
{
    metaData = metadata;
}

std::string Discovery::FileName() const
{
    return name + ".xml";
}

bool Discovery::Render(std::string& document, std::string& fault) const
{
    if (!CheckText("name", name, fault))
        return false;
    for (std::size_t index = 0; index < types.size(); ++index) {
        if (!CheckText("type " + std::to_string(index + 1), types[index], fault))
            return false;
    }
    for (std::size_t index = 0; index < scopes.size(); ++index) {
        if (!CheckText("scope " + std::to_string(index + 1), scopes[index], fault))
            return false;
    }
    if (!CheckText("metadata", metaData, fault))
        return false;
    std::string out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<service name=\"";
    AppendAttribute(out, name);
    out += "\">\n";
    for (const std::string& type : types) {
        out += "  <type>";
        AppendText(out, type);
        out += "</type>\n";
    }
    for (const std::string& scope : scopes) {
        out += "  <scope>";
        AppendText(out, scope);
        out += "</scope>\n";
    }
    out += "  <port>" + std::to_string(port) + "</port>\n  <metadata>";
    AppendText(out, metaData);
    out += "</metadata>\n</service>\n";
    document.swap(out);
    return true;
}

bool Discovery::WriteToFile()
{
    errorMessage.clear();
    if (!IsPlainFileName(name)) {
        std::string shown = name;
        for (char& current : shown) {
            if (current == '\0')
                current = '?';
        }
        errorMessage = "description name \"" + shown + "\" is not a plain file name";
        return false;
    }
    std::string document;
    std::string fault;
    if (!Render(document, fault)) {
        errorMessage = FileName() + ": not written: " + fault;
        return false;
    }
    if (!KivClosed::AtomicFileWriter::Replace(FileName(), document, FileMode, fault)) {
        errorMessage = fault;
        return false;
    }
    return true;
}

const std::string& Discovery::ErrorMessage() const
{
    return errorMessage;
}

const std::string& Discovery::Name() const
{
    return name;
}

const std::vector<std::string>& Discovery::Types() const
{
    return types;
}

const std::vector<std::string>& Discovery::Scopes() const
{
    return scopes;
}

unsigned short Discovery::Port() const
{
    return port;
}

const std::string& Discovery::MetaData() const
{
    return metaData;
}

} // namespace KivDiscoveryClient

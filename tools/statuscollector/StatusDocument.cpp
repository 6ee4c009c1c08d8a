// SPDX-License-Identifier: Apache-2.0
#include <StatusCollector/StatusDocument.h>

#include <cstddef>
#include <cstdint>
#include <pugixml.hpp>
#include <sstream>

namespace KivCollector {

namespace {

/// Length of the UTF-8 sequence at \p position that XML 1.0 allows, or 0.
std::size_t AllowedSequenceLength(const std::string& text, std::size_t position)
{
    unsigned char lead = static_cast<unsigned char>(text[position]);
    if (lead < 0x80)
        return (lead >= 0x20 || lead == '\t' || lead == '\n' || lead == '\r') ? 1 : 0;
    std::size_t length;
    std::uint32_t codePoint;
    if ((lead & 0xE0) == 0xC0) {
        length = 2;
        codePoint = lead & 0x1F;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3;
        codePoint = lead & 0x0F;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4;
        codePoint = lead & 0x07;
    } else {
        return 0;
    }
    if (position + length > text.size())
        return 0;
    for (std::size_t index = 1; index < length; ++index) {
        unsigned char next = static_cast<unsigned char>(text[position + index]);
        if ((next & 0xC0) != 0x80)
            return 0;
        codePoint = (codePoint << 6) | (next & 0x3F);
    }
    static const std::uint32_t shortest[5] = {0, 0, 0x80, 0x800, 0x10000};
    bool overlong = codePoint < shortest[length];
    bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    bool nonCharacter = codePoint == 0xFFFE || codePoint == 0xFFFF;
    if (overlong || surrogate || nonCharacter || codePoint > 0x10FFFF)
        return 0;
    return length;
}

void AddText(pugi::xml_node parent, const char* name, const std::string& text)
{
    parent.append_child(name).text().set(StatusDocument::XmlSafe(text).c_str());
}

/// An item the interface does not have becomes an empty element, never a
/// missing one: the status library reads a missing element as a null text,
/// and the publisher's network fragment stops at the first null text, so one
/// interface without an address would hide every interface after it.
void AddItem(pugi::xml_node parent, const char* name, const std::optional<std::string>& text)
{
    AddText(parent, name, text.value_or(std::string()));
}

} // namespace

std::string StatusDocument::XmlSafe(const std::string& text)
{
    std::string safe;
    safe.reserve(text.size());
    std::size_t position = 0;
    while (position < text.size()) {
        std::size_t length = AllowedSequenceLength(text, position);
        if (length == 0) {
            safe += '?';
            ++position;
        } else {
            safe.append(text, position, length);
            position += length;
        }
    }
    return safe;
}

std::string StatusDocument::Render(const CollectedStatus& status)
{
    pugi::xml_document document;
    pugi::xml_node declaration = document.append_child(pugi::node_declaration);
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "UTF-8";
    pugi::xml_node root = document.append_child("status");
    root.append_child("modelCode").text().set(static_cast<unsigned int>(status.modelCode));

    pugi::xml_node devices = root.append_child("networkDevices");
    for (const CollectedStatus::NetworkDevice& device : status.networkDevices) {
        pugi::xml_node node = devices.append_child("networkDevice");
        node.append_attribute("number") = static_cast<unsigned int>(device.number);
        AddText(node, "name", device.name);
        AddItem(node, "mac", device.mac);
        AddItem(node, "ipv4", device.ipv4);
        AddItem(node, "ipv6", device.ipv6);
        AddItem(node, "gateway", device.gateway);
        AddItem(node, "subnet", device.subnet);
    }

    pugi::xml_node outputs = root.append_child("outputs");
    for (const CollectedStatus::Output& output : status.outputs) {
        pugi::xml_node node = outputs.append_child("output");
        node.append_attribute("number") = static_cast<unsigned int>(output.number);
        node.append_attribute("kind") = static_cast<unsigned int>(output.kind);
        node.append_attribute("rows") = static_cast<unsigned int>(output.rows);
        node.append_attribute("columns") = static_cast<unsigned int>(output.columns);
    }

    std::ostringstream text;
    document.save(text, "  ", pugi::format_indent, pugi::encoding_utf8);
    return text.str();
}

} // namespace KivCollector

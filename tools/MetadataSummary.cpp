// SPDX-License-Identifier: Apache-2.0
#include <DiscoveryCheck/MetadataSummary.h>

#include <KivClosed/Quote.h>

namespace KivCheck {

namespace {

using KivClosed::Quote;

void Field(std::string& text, const char* name, const std::string& value)
{
    text += std::string("  ") + name + ": " + value + "\n";
}

/// The status snapshot's element behind each published interface item.
const char* SnapshotElement(const std::string& item)
{
    if (item == "Name")
        return "name";
    if (item == "MAC")
        return "mac";
    if (item == "IPv4")
        return "ipv4";
    if (item == "IPv6")
        return "ipv6";
    if (item == "Gateway")
        return "gateway";
    return "subnet";
}

} // namespace

std::string MetadataSummary::Shown(const std::string& value)
{
    if (value.empty())
        return "none";
    for (char current : value) {
        unsigned char byte = static_cast<unsigned char>(current);
        if (byte <= 0x20 || byte == 0x7F || current == '"' || current == '\\' || current == ',')
            return Quote(value);
    }
    return value;
}

std::string MetadataSummary::Lines(const PublishedMetadata& metadata)
{
    std::string text;
    Field(text, "description", Quote(metadata.description));
    Field(text, "time zone", Quote(metadata.timeZone));
    Field(text, "computer name", Quote(metadata.computerName));
    Field(text, "product family", Shown(metadata.productFamily));
    Field(text, "interfaces", std::to_string(metadata.interfaces.size()));
    for (const PublishedMetadata::Interface& interface : metadata.interfaces)
        text += "    " + Shown(interface.name) + " (number " + interface.number + "): MAC " + Shown(interface.mac) +
                ", IPv4 " + Shown(interface.ipv4) + ", subnet " + Shown(interface.subnet) + ", gateway " +
                Shown(interface.gateway) + ", IPv6 " + Shown(interface.ipv6) + "\n";
    if (metadata.networkCut) {
        std::string interface = "interface number " + metadata.cutNumber;
        if (metadata.cutItem != "Name")
            interface += " (" + Shown(metadata.cutName) + ")";
        text += "  network list cut short: it stops in " + interface + ", right after <" + metadata.cutItem + ">\n";
        text += std::string("    why: the status snapshot has no <") + SnapshotElement(metadata.cutItem) +
                "> element for that interface (missing, not empty);\n"
                "    the list ends at the first missing value, so that interface and any after it are not "
                "published\n";
    }
    Field(text, "outputs", std::to_string(metadata.outputs.size()));
    for (const PublishedMetadata::Output& output : metadata.outputs)
        text += "    output " + output.number + ": rows " + output.rows + ", columns " + output.columns + "\n";
    return text;
}

} // namespace KivCheck

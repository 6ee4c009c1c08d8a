// SPDX-License-Identifier: Apache-2.0
// PublishedMetadata.h - reads back the metadata text that discoveryd
// publishes in its management description: the identity values, the
// interfaces with their addresses, the outputs, and where the network list
// was cut short by a missing value.
//
// The text is not XML a parser would take (attribute quotes carry a
// backslash, values are not escaped, a missing value cuts the network list
// without closing tags), so it is read piece by piece in the order the
// publisher writes it. A plain value made by Decode; used by one thread.
//
// Example:
//   #include <KivDiscoveryClient/DescriptionReader.h>
//   KivDiscoveryClient::DescriptionReader reader;
//   PublishedMetadata metadata = PublishedMetadata::Decode(reader.MetaData());
//   for (const PublishedMetadata::Interface& interface : metadata.interfaces)
//       std::printf("%s %s\n", interface.name.c_str(), interface.ipv4.c_str());
//   if (metadata.networkCut)
//       std::printf("cut before %s\n", metadata.cutItem.c_str());
#ifndef KIV_TOOLS_PUBLISHEDMETADATA_H
#define KIV_TOOLS_PUBLISHEDMETADATA_H

#include <cstddef>
#include <string>
#include <vector>

namespace KivCheck {

struct PublishedMetadata
{
    /// One complete NetworkDevice element.
    struct Interface
    {
        std::string number;
        std::string name;
        std::string mac;
        std::string ipv4;
        std::string ipv6;
        std::string gateway;
        std::string subnet;
    };

    /// One Output element.
    struct Output
    {
        std::string number;
        std::string rows;
        std::string columns;
    };

    std::string description;
    std::string timeZone;
    std::string computerName;
    std::string productFamily;
    /// The complete interfaces, in published order.
    std::vector<Interface> interfaces;
    std::vector<Output> outputs;
    std::string discoveryVersion;

    /// The network list stops inside an interface, right after the opening
    /// tag of a value that the status record did not have.
    bool networkCut = false;
    /// The number of the interface it stops in.
    std::string cutNumber;
    /// Its name, when the cut comes after the name.
    std::string cutName;
    /// The element whose value is missing: "Name", "MAC", "IPv4", "IPv6",
    /// "Gateway" or "Subnet".
    std::string cutItem;

    /// Empty when the whole text was read; otherwise what did not fit the
    /// publisher's layout, and everything before it is filled in.
    std::string problem;

    /// Reads \p metadata. Never fails as such: a text that does not follow
    /// the layout sets problem at the byte where it stops following it.
    static PublishedMetadata Decode(const std::string& metadata);
};

} // namespace KivCheck

#endif

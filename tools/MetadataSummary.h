// SPDX-License-Identifier: Apache-2.0
// MetadataSummary.h - the lines that show a decoded metadata text to a
// person: description, time zone, computer name, product family, each
// interface, where the network list was cut short, and the outputs.
// "discovery-check summary" prints them for a description file and
// "discovery-browse" for each unit that answered, so both read alike.
//
// A stateless helper; any thread.
//
// Example:
//   #include <DiscoveryCheck/PublishedMetadata.h>
//   #include <cstdio>
//   KivCheck::PublishedMetadata metadata = KivCheck::PublishedMetadata::Decode("<cpp:Config></cpp:Config>");
//   std::fputs(KivCheck::MetadataSummary::Lines(metadata).c_str(), stdout);
#ifndef KIV_TOOLS_METADATASUMMARY_H
#define KIV_TOOLS_METADATASUMMARY_H

#include <DiscoveryCheck/PublishedMetadata.h>

#include <string>

namespace KivCheck {

class MetadataSummary
{
public:
    /// One line "  name: value" per item, each ending in a line feed, with
    /// the interfaces and outputs indented by four spaces under their count.
    /// Texts are quoted with KivClosed::Quote; short values (names,
    /// addresses) only when they hold a space, quote, comma, backslash or
    /// anything unprintable, and an empty one reads "none".
    static std::string Lines(const PublishedMetadata& metadata);

    /// \p value as the interface and product family lines show it.
    static std::string Shown(const std::string& value);
};

} // namespace KivCheck

#endif

// SPDX-License-Identifier: Apache-2.0
// DescriptionReader.h - reads back a service description file that
// Discovery::WriteToFile wrote: name, types, scopes, port and metadata.
//
// For checking tools and tests; the daemon never reads descriptions. Each
// user makes its own reader; one thread at a time. A load replaces all
// values or, when the file is bad, none.
//
// Example:
//   KivDiscoveryClient::DescriptionReader reader;
//   if (reader.Load("/var/lib/discovery/Management.xml"))
//       std::printf("%s on port %u\n", reader.Name().c_str(), reader.Port());
//   else
//       std::fprintf(stderr, "%s\n", reader.ErrorMessage().c_str());
#ifndef KIV_CLOSED_DESCRIPTIONREADER_H
#define KIV_CLOSED_DESCRIPTIONREADER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace KivDiscoveryClient {

class DescriptionReader
{
public:
    /// Largest description file read, in bytes (16 MiB).
    static constexpr std::size_t MaximumFileBytes = 16777216;

    /// A reader holding an empty description (no name, no types or scopes,
    /// port 0, empty metadata).
    DescriptionReader();
    ~DescriptionReader();

    /// Reads the description file \p path: root element service with the
    /// required attribute name, any number of type and scope elements, one
    /// required port element (16-bit decimal) and at most one metadata
    /// element (empty when absent). The loading rules of the configuration
    /// and status files apply: exact text, unknown elements and attributes
    /// ignored, everything checked. Answers false, keeping the earlier values,
    /// on any fault, with the reasons in ErrorMessages().
    bool Load(const char* path);

    /// The faults of the last load; empty after success.
    const std::vector<std::string>& ErrorMessages() const;
    /// The faults of the last load joined by line feeds.
    std::string ErrorMessage() const;

    /// Attribute name of the service element.
    const std::string& Name() const;
    /// The type elements' texts, in file order.
    const std::vector<std::string>& Types() const;
    /// The scope elements' texts, in file order.
    const std::vector<std::string>& Scopes() const;
    /// The port element's number.
    std::uint16_t Port() const;
    /// The metadata element's text.
    const std::string& MetaData() const;

private:
    std::string name;
    std::vector<std::string> types;
    std::vector<std::string> scopes;
    std::uint16_t port;
    std::string metaData;
    std::vector<std::string> errors;
};

} // namespace KivDiscoveryClient

#endif

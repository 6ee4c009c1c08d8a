// SPDX-License-Identifier: Apache-2.0
// Fuzz target of the description round trip: texts taken from the input are
// written with KivDiscoveryClient::Discovery::WriteToFile and read back with
// DescriptionReader. A write must succeed exactly when every text is valid
// UTF-8 of XML characters and the name is a plain file name (judged here by
// an independent decoder); what is read back must equal what was written;
// a refused write leaves nothing in the directory.

#include <KivDiscoveryClient/DescriptionReader.h>
#include <KivDiscoveryClient/Discovery.h>
#include "FuzzWorkspace.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace {

/// Decodes UTF-8 the long way: read the sequence length from the lead byte,
/// gather the bits, then reject overlong forms, surrogates and values beyond
/// U+10FFFF, then apply the XML 1.0 character ranges.
bool Representable(const std::string& text)
{
    std::size_t index = 0;
    while (index < text.size()) {
        unsigned lead = static_cast<unsigned char>(text[index]);
        std::size_t length = lead < 0x80 ? 1 : (lead >> 5) == 6 ? 2 : (lead >> 4) == 14 ? 3 : (lead >> 3) == 30 ? 4 : 0;
        if (length == 0 || index + length > text.size())
            return false;
        unsigned long value = length == 1 ? lead : lead & (0xFFu >> (length + 1));
        for (std::size_t next = 1; next < length; ++next) {
            unsigned byte = static_cast<unsigned char>(text[index + next]);
            if ((byte >> 6) != 2)
                return false;
            value = (value << 6) | (byte & 0x3Fu);
        }
        static const unsigned long smallest[] = {0, 0, 0x80, 0x800, 0x10000};
        if (value < smallest[length] || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF))
            return false;
        bool allowed = value == 0x9 || value == 0xA || value == 0xD || (value >= 0x20 && value <= 0xD7FF) ||
                       (value >= 0xE000 && value <= 0xFFFD) || value >= 0x10000;
        if (!allowed)
            return false;
        index += length;
    }
    return true;
}

bool PlainFileName(const std::string& name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
           name.find('\0') == std::string::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FuzzWorkspace workspace;
    static bool entered = chdir(workspace.Path().c_str()) == 0;
    FUZZ_CHECK(entered);

    FuzzedDataProvider provider(data, size);
    std::string name = provider.ConsumeRandomLengthString(48);
    std::vector<std::string> types(provider.ConsumeIntegralInRange<std::size_t>(0, 3));
    for (std::string& type : types)
        type = provider.ConsumeRandomLengthString(256);
    std::vector<std::string> scopes(provider.ConsumeIntegralInRange<std::size_t>(0, 3));
    for (std::string& scope : scopes)
        scope = provider.ConsumeRandomLengthString(256);
    unsigned short port = provider.ConsumeIntegral<unsigned short>();
    std::string metadata = provider.ConsumeRemainingBytesAsString();

    bool expected = PlainFileName(name) && Representable(name) && Representable(metadata);
    KivDiscoveryClient::Discovery description(name);
    for (const std::string& type : types) {
        description.AddType(type);
        expected = expected && Representable(type);
    }
    for (const std::string& scope : scopes) {
        description.AddScope(scope);
        expected = expected && Representable(scope);
    }
    description.SetPort(port);
    description.SetMetaData(metadata);

    bool written = description.WriteToFile();
    FUZZ_CHECK(written == expected);
    if (!written) {
        FUZZ_CHECK(!description.ErrorMessage().empty());
        FUZZ_CHECK(workspace.Entries().empty());
        return 0;
    }
    FUZZ_CHECK(description.ErrorMessage().empty());
    std::vector<std::string> entries = workspace.Entries();
    FUZZ_CHECK(entries.size() == 1 && entries[0] == name + ".xml");

    KivDiscoveryClient::DescriptionReader reader;
    bool read = reader.Load((name + ".xml").c_str());
    if (!read)
        std::fprintf(stderr, "%s\n", reader.ErrorMessage().c_str());
    FUZZ_CHECK(read);
    FUZZ_CHECK(reader.Name() == name);
    FUZZ_CHECK(reader.Types() == types);
    FUZZ_CHECK(reader.Scopes() == scopes);
    FUZZ_CHECK(reader.Port() == port);
    FUZZ_CHECK(reader.MetaData() == metadata);
    FUZZ_CHECK(unlink((name + ".xml").c_str()) == 0);
    return 0;
}

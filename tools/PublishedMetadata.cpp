// SPDX-License-Identifier: Apache-2.0
#include <DiscoveryCheck/PublishedMetadata.h>

namespace KivCheck {

namespace {

/// A read position in the metadata text.
class Cursor
{
public:
    explicit Cursor(const std::string& text) : text(text) {}

    std::size_t Position() const { return position; }
    bool AtEnd() const { return position == text.size(); }

    bool LooksAt(const std::string& literal) const { return text.compare(position, literal.size(), literal) == 0; }

    /// Steps over \p literal when the text goes on with it.
    bool Take(const std::string& literal)
    {
        if (!LooksAt(literal))
            return false;
        position += literal.size();
        return true;
    }

    /// The text up to the next \p end, which stays to be taken. Values are
    /// not escaped, so \p end is the closing tag together with what must
    /// follow it: a value holding the closing tag alone is still read whole.
    bool ValueBefore(const std::string& end, std::string& value)
    {
        std::size_t found = text.find(end, position);
        if (found == std::string::npos)
            return false;
        value = text.substr(position, found - position);
        position = found;
        return true;
    }

    bool Digits(std::string& digits)
    {
        std::size_t start = position;
        while (position < text.size() && text[position] >= '0' && text[position] <= '9')
            ++position;
        digits = text.substr(start, position - start);
        return position > start;
    }

private:
    const std::string& text;
    std::size_t position = 0;
};

/// Steps over \p literal, or says that it was expected.
bool Expect(Cursor& cursor, const std::string& literal, std::string& problem)
{
    if (cursor.Take(literal))
        return true;
    problem = "expected " + literal;
    return false;
}

/// One value element: "<name>" value "</name>", followed by \p next.
bool TakeValue(Cursor& cursor, const std::string& name, const std::string& next, std::string& value,
               std::string& problem)
{
    if (!Expect(cursor, "<" + name + ">", problem))
        return false;
    std::string close = "</" + name + ">";
    if (!cursor.ValueBefore(close + next, value)) {
        problem = "no " + close + next + " after <" + name + ">";
        return false;
    }
    cursor.Take(close);
    return true;
}

// Attribute quotes in the fragments carry a backslash: \"
const char DeviceOpening[] = "<NetworkDevice number=\\\"";
const char NumberEnd[] = "\\\">";
const char OutputOpening[] = "<Output number=\\\"";
const char OutputType[] = "\\\" i:type=\\\"Cablor6Type\\\"><TranslationTable><Rows>";

/// Reads the network list up to and with "</Network>", or up to the cut.
bool TakeNetwork(Cursor& cursor, PublishedMetadata& metadata, std::string& problem)
{
    if (!Expect(cursor, "<Network>", problem))
        return false;
    while (!cursor.Take("</Network>")) {
        PublishedMetadata::Interface interface;
        if (!cursor.Take(DeviceOpening) || !cursor.Digits(interface.number) || !cursor.Take(NumberEnd)) {
            problem = "expected <NetworkDevice number=\\\"...\\\"> or </Network>";
            return false;
        }
        const struct
        {
            const char* name;
            const char* next;
            std::string* value;
        } items[] = {{"Name", "<MAC>", &interface.name},     {"MAC", "<IPv4>", &interface.mac},
                     {"IPv4", "<IPv6>", &interface.ipv4},    {"IPv6", "<Gateway>", &interface.ipv6},
                     {"Gateway", "<Subnet>", &interface.gateway}, {"Subnet", "</NetworkDevice>", &interface.subnet}};
        for (const auto& item : items) {
            if (!Expect(cursor, std::string("<") + item.name + ">", problem))
                return false;
            // A missing value ends the list right after its opening tag; the
            // outputs follow at once, and they never hold a device's tags.
            if (!cursor.ValueBefore(std::string("</") + item.name + ">" + item.next, *item.value)) {
                metadata.networkCut = true;
                metadata.cutNumber = interface.number;
                metadata.cutName = interface.name;
                metadata.cutItem = item.name;
                return true;
            }
            cursor.Take(std::string("</") + item.name + ">");
        }
        cursor.Take("</NetworkDevice>");
        metadata.interfaces.push_back(interface);
    }
    return true;
}

bool TakeOutputs(Cursor& cursor, PublishedMetadata& metadata, std::string& problem)
{
    if (!Expect(cursor, "<Outputs>", problem))
        return false;
    while (!cursor.Take("</Outputs>")) {
        PublishedMetadata::Output output;
        if (!cursor.Take(OutputOpening) || !cursor.Digits(output.number) || !cursor.Take(OutputType) ||
            !cursor.Digits(output.rows) || !cursor.Take("</Rows><Columns>") || !cursor.Digits(output.columns) ||
            !cursor.Take("</Columns></TranslationTable></Output>")) {
            problem = "expected <Output number=\\\"...\\\" ...>...</Output> or </Outputs>";
            return false;
        }
        metadata.outputs.push_back(output);
    }
    return true;
}

bool TakeAll(Cursor& cursor, PublishedMetadata& metadata, std::string& problem)
{
    if (!Expect(cursor, "<cpp:Config>", problem) ||
        !TakeValue(cursor, "Description", "<TimeZone>", metadata.description, problem) ||
        !TakeValue(cursor, "TimeZone", "<ComputerName>", metadata.timeZone, problem) ||
        !TakeValue(cursor, "ComputerName", "</cpp:Config>", metadata.computerName, problem))
        return false;
    cursor.Take("</cpp:Config>");
    if (!Expect(cursor, "<cpp:State>", problem))
        return false;
    // An empty model text gives no product family fragment at all.
    if (cursor.LooksAt("<ProductFamily>") &&
        !TakeValue(cursor, "ProductFamily", "<Network>", metadata.productFamily, problem))
        return false;
    if (!TakeNetwork(cursor, metadata, problem) || !TakeOutputs(cursor, metadata, problem))
        return false;
    if (!Expect(cursor, "</cpp:State>", problem) ||
        !TakeValue(cursor, "cpp:DiscoveryVersion", "", metadata.discoveryVersion, problem))
        return false;
    if (!cursor.AtEnd()) {
        problem = "more text after </cpp:DiscoveryVersion>";
        return false;
    }
    return true;
}

} // namespace

PublishedMetadata PublishedMetadata::Decode(const std::string& text)
{
    PublishedMetadata metadata;
    Cursor cursor(text);
    std::string problem;
    if (!TakeAll(cursor, metadata, problem))
        metadata.problem = "byte " + std::to_string(cursor.Position()) + ": " + problem;
    return metadata;
}

} // namespace KivCheck

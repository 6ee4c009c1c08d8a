// SPDX-License-Identifier: Apache-2.0
#include <KivClosed/XmlWellFormedness.h>

#include <KivClosed/XmlCharacters.h>

#include <cstdint>
#include <cstring>

namespace KivClosed {

namespace {

class Scanner
{
public:
    Scanner(const char* text, std::size_t length) : data(text), size(length) {}

    bool Run(std::size_t& faultOffset, std::string& fault);

private:
    bool StartsWith(std::size_t at, const char* prefix) const
    {
        std::size_t length = std::strlen(prefix);
        return at <= size && size - at >= length && std::memcmp(data + at, prefix, length) == 0;
    }

    /// Offset just past \p terminator searched from \p from, or size when it is missing.
    std::size_t Skip(std::size_t from, const char* terminator) const
    {
        std::size_t length = std::strlen(terminator);
        for (std::size_t at = from; at + length <= size; ++at) {
            if (std::memcmp(data + at, terminator, length) == 0)
                return at + length;
        }
        return size;
    }

    bool Fail(std::size_t at, const std::string& description)
    {
        offset = at;
        message = description;
        return false;
    }

    bool CheckReference(std::size_t at, std::size_t& end);
    bool ScanTag(std::size_t at, std::size_t& end);

    const char* data;
    std::size_t size;
    std::size_t offset = 0;
    std::string message;
};

bool Scanner::CheckReference(std::size_t at, std::size_t& end)
{
    // The longest reference worth reading: "&#x" and a few digits, or a name.
    const std::size_t longest = 32;
    std::size_t semicolon = at + 1;
    while (semicolon < size && semicolon - at <= longest && data[semicolon] != ';' && data[semicolon] != '&' &&
           data[semicolon] != '<')
        ++semicolon;
    if (semicolon >= size || data[semicolon] != ';' || semicolon == at + 1)
        return Fail(at, "'&' does not start a reference; write &amp; for a literal ampersand");
    std::string body(data + at + 1, semicolon - at - 1);
    end = semicolon + 1;
    if (body[0] != '#') {
        if (body == "lt" || body == "gt" || body == "amp" || body == "apos" || body == "quot")
            return true;
        return Fail(at, "unknown entity reference &" + body + ";");
    }
    bool hexadecimal = body.size() > 1 && body[1] == 'x';
    std::size_t first = hexadecimal ? 2 : 1;
    if (first >= body.size())
        return Fail(at, "character reference &" + body + "; has no digits");
    std::uint32_t value = 0;
    for (std::size_t index = first; index < body.size(); ++index) {
        char digit = body[index];
        std::uint32_t digitValue;
        if (digit >= '0' && digit <= '9')
            digitValue = static_cast<std::uint32_t>(digit - '0');
        else if (hexadecimal && digit >= 'a' && digit <= 'f')
            digitValue = static_cast<std::uint32_t>(digit - 'a' + 10);
        else if (hexadecimal && digit >= 'A' && digit <= 'F')
            digitValue = static_cast<std::uint32_t>(digit - 'A' + 10);
        else
            return Fail(at, "character reference &" + body + "; is malformed");
        value = value * (hexadecimal ? 16u : 10u) + digitValue;
        if (value > 0x10FFFFu)
            return Fail(at, "character reference &" + body + "; is beyond U+10FFFF");
    }
    if (!XmlCharacters::IsAllowed(value))
        return Fail(at, "character reference &" + body + "; stands for " + XmlCharacters::Notation(value) +
                            ", which XML does not allow");
    return true;
}

bool Scanner::ScanTag(std::size_t at, std::size_t& end)
{
    char quote = 0;
    std::size_t index = at + 1;
    while (index < size) {
        char current = data[index];
        if (quote != 0) {
            if (current == quote) {
                quote = 0;
            } else if (current == '<') {
                return Fail(index, "'<' is not allowed in an attribute value; write &lt;");
            } else if (current == '&') {
                std::size_t after = index;
                if (!CheckReference(index, after))
                    return false;
                index = after;
                continue;
            }
        } else if (current == '"' || current == '\'') {
            quote = current;
        } else if (current == '>') {
            end = index + 1;
            return true;
        }
        ++index;
    }
    return Fail(at, "unterminated tag");
}

bool Scanner::Run(std::size_t& faultOffset, std::string& fault)
{
    std::size_t depth = 0;
    bool rootSeen = false;
    std::size_t index = 0;
    bool clean = true;
    while (clean && index < size) {
        char current = data[index];
        if (current == '<') {
            if (StartsWith(index, "<!--")) {
                index = Skip(index + 4, "-->");
            } else if (StartsWith(index, "<![CDATA[")) {
                if (depth == 0) {
                    clean = Fail(index, "CDATA section outside the root element");
                    break;
                }
                index = Skip(index + 9, "]]>");
            } else if (StartsWith(index, "<?")) {
                index = Skip(index + 2, "?>");
            } else if (StartsWith(index, "<!")) {
                clean = Fail(index, "document type declarations are not supported");
            } else if (StartsWith(index, "</")) {
                if (depth > 0)
                    --depth;
                index = Skip(index + 2, ">");
            } else {
                if (depth == 0 && rootSeen) {
                    clean = Fail(index, "a second element after the root element");
                    break;
                }
                std::size_t end = index;
                clean = ScanTag(index, end);
                if (clean) {
                    rootSeen = true;
                    if (data[end - 2] != '/')
                        ++depth;
                    index = end;
                }
            }
        } else if (current == '&') {
            std::size_t end = index;
            if (depth == 0)
                clean = Fail(index, "text outside the root element");
            else
                clean = CheckReference(index, end);
            index = end;
        } else if (current == ']' && StartsWith(index, "]]>")) {
            clean = Fail(index, "']]>' is not allowed in text; write ]]&gt;");
        } else {
            if (depth == 0 && current != ' ' && current != '\t' && current != '\n' && current != '\r' &&
                !(index < 3 && StartsWith(0, "\xEF\xBB\xBF")))
                clean = Fail(index, "text outside the root element");
            ++index;
        }
    }
    if (!clean) {
        faultOffset = offset;
        fault = message;
    }
    return clean;
}

} // namespace

bool XmlWellFormedness::Check(const char* data, std::size_t size, std::size_t& faultOffset, std::string& fault)
{
    Scanner scanner(data, size);
    return scanner.Run(faultOffset, fault);
}

} // namespace KivClosed

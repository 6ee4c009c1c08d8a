// SPDX-License-Identifier: Apache-2.0
#include <KivClosed/XmlRecordReader.h>

#include <KivClosed/Quote.h>
#include <KivClosed/XmlCharacters.h>
#include <KivClosed/XmlWellFormedness.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace KivClosed {

namespace {

const std::size_t MaximumMessages = 100;
const std::size_t LongestQuotedValue = 40;

/// Unsigned decimal digits only, no larger than \p maximum. On failure
/// \p fault says why, in the words that follow "attribute x of y: ".
bool ParseDecimal(const std::string& text, std::uint32_t maximum, std::uint32_t& value, std::string& fault)
{
    if (text.empty()) {
        fault = "empty value is not a number";
        return false;
    }
    std::uint64_t parsed = 0;
    bool tooLarge = false;
    for (char digit : text) {
        if (digit < '0' || digit > '9') {
            fault = Quote(text, LongestQuotedValue) + " is not an unsigned decimal number";
            return false;
        }
        if (!tooLarge) {
            parsed = parsed * 10u + static_cast<std::uint64_t>(digit - '0');
            tooLarge = parsed > maximum;
        }
    }
    if (tooLarge) {
        std::string shown = text.size() > LongestQuotedValue ? text.substr(0, LongestQuotedValue) + "..." : text;
        fault = shown + " is out of range 0.." + std::to_string(maximum);
        return false;
    }
    value = static_cast<std::uint32_t>(parsed);
    return true;
}

bool IsElement(pugi::xml_node node)
{
    return node.type() == pugi::node_element;
}

} // namespace

XmlRecordReader::XmlRecordReader(std::string filePath, std::size_t maximumFile, std::size_t maximumText)
    : path(std::move(filePath)), maximumFileBytes(maximumFile), maximumTextBytes(maximumText)
{
}

XmlRecordReader::~XmlRecordReader() = default;

void XmlRecordReader::Record(std::size_t offset, const std::string& message)
{
    if (errors.size() < MaximumMessages)
        errors.emplace_back(offset, message);
    else if (errors.size() == MaximumMessages)
        errors.emplace_back(SIZE_MAX, path + ": further faults are not listed");
}

std::vector<std::string> XmlRecordReader::Errors() const
{
    std::vector<std::pair<std::size_t, std::string>> sorted = errors;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
    std::vector<std::string> messages;
    for (auto& fault : sorted)
        messages.push_back(std::move(fault.second));
    return messages;
}

void XmlRecordReader::FailWithoutPosition(const std::string& description)
{
    Record(0, path + ": " + description);
}

void XmlRecordReader::FailAtOffset(std::size_t offset, const std::string& description)
{
    // Once the list is full, positions are not worth computing: a file of
    // many thousand faults on one long line would take minutes.
    if (errors.size() >= MaximumMessages)
        Record(offset, std::string());
    else
        Record(offset, path + ":" + Location(offset) + ": " + description);
}

void XmlRecordReader::Fail(pugi::xml_node node, const std::string& description)
{
    FailAtOffset(OffsetOf(node), description);
}

std::size_t XmlRecordReader::OffsetOf(pugi::xml_node node) const
{
    std::ptrdiff_t offset = node.offset_debug();
    if (offset < 0)
        return 0;
    // An element's offset is that of its name, a declaration's that of
    // "xml": messages point at the "<" or "<?" in front.
    if (IsElement(node) && offset >= 1)
        offset -= 1;
    else if (node.type() == pugi::node_declaration && offset >= 2)
        offset -= 2;
    return static_cast<std::size_t>(offset);
}

std::string XmlRecordReader::Location(std::size_t offset)
{
    if (lineStarts.empty()) {
        lineStarts.push_back(0);
        for (std::size_t index = 0; index < content.size(); ++index) {
            char current = content[index];
            bool lineFeed = current == '\n';
            bool loneReturn = current == '\r' && (index + 1 >= content.size() || content[index + 1] != '\n');
            if (lineFeed || loneReturn)
                lineStarts.push_back(index + 1);
        }
    }
    offset = std::min(offset, content.size());
    auto after = std::upper_bound(lineStarts.begin(), lineStarts.end(), offset);
    std::size_t line = static_cast<std::size_t>(after - lineStarts.begin());
    std::size_t lineStart = *(after - 1);
    // Columns count characters, not bytes: continuation bytes do not advance.
    // Faults come mostly in file order, so counting resumes from the last
    // position asked for when it lies earlier on the same line.
    std::size_t column = 1;
    std::size_t from = lineStart;
    if (lastLineStart == lineStart && lastOffset <= offset) {
        column = lastColumn;
        from = lastOffset;
    }
    for (std::size_t index = from; index < offset; ++index) {
        if ((static_cast<unsigned char>(content[index]) & 0xC0u) != 0x80u)
            ++column;
    }
    lastLineStart = lineStart;
    lastOffset = offset;
    lastColumn = column;
    return std::to_string(line) + ":" + std::to_string(column);
}

std::string XmlRecordReader::Join(const std::vector<std::string>& messages)
{
    std::string joined;
    for (const std::string& message : messages) {
        if (!joined.empty())
            joined += '\n';
        joined += message;
    }
    return joined;
}

bool XmlRecordReader::ReadFile()
{
    int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (descriptor < 0) {
        Record(0, "cannot open " + path + ": " + std::strerror(errno));
        return false;
    }
    struct stat status;
    bool readable = true;
    if (fstat(descriptor, &status) != 0) {
        Record(0, "cannot open " + path + ": " + std::strerror(errno));
        readable = false;
    } else if (!S_ISREG(status.st_mode)) {
        FailWithoutPosition("not a regular file");
        readable = false;
    } else if (static_cast<std::uint64_t>(status.st_size) > maximumFileBytes) {
        FailWithoutPosition("file of " + std::to_string(static_cast<std::uint64_t>(status.st_size)) +
                            " bytes is larger than the limit of " + std::to_string(maximumFileBytes) + " bytes");
        readable = false;
    }
    // Read one byte beyond the limit, so that a file that grew after fstat is
    // still caught.
    char buffer[65536];
    while (readable && content.size() <= maximumFileBytes) {
        std::size_t wanted = std::min(sizeof buffer, maximumFileBytes + 1 - content.size());
        ssize_t count = ::read(descriptor, buffer, wanted);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0) {
            Record(0, "cannot read " + path + ": " + std::strerror(errno));
            readable = false;
        } else if (count == 0) {
            break;
        } else {
            content.append(buffer, static_cast<std::size_t>(count));
        }
    }
    ::close(descriptor);
    if (readable && content.size() > maximumFileBytes) {
        FailWithoutPosition("file is larger than the limit of " + std::to_string(maximumFileBytes) + " bytes");
        readable = false;
    }
    return readable;
}

bool XmlRecordReader::CheckDeclaration()
{
    pugi::xml_node declaration = document.first_child();
    if (declaration.type() != pugi::node_declaration)
        return true;
    std::string version = declaration.attribute("version").value();
    if (version != "1.0") {
        Fail(declaration,
             "XML version " + Quote(version, LongestQuotedValue) + " is not supported; the file must be XML 1.0");
        return false;
    }
    pugi::xml_attribute encoding = declaration.attribute("encoding");
    if (encoding) {
        std::string name = encoding.value();
        std::transform(name.begin(), name.end(), name.begin(),
                       [](char letter) { return (letter >= 'a' && letter <= 'z') ? letter - 'a' + 'A' : letter; });
        if (name != "UTF-8") {
            Fail(declaration, "encoding " + Quote(encoding.value(), LongestQuotedValue) +
                                  " is not supported; the file must be UTF-8");
            return false;
        }
    }
    return true;
}

bool XmlRecordReader::CheckAttributesUnique()
{
    bool unique = true;
    std::vector<std::string> names;
    // Walks the whole tree without recursion: documents may nest deeply.
    pugi::xml_node node = document.first_child();
    while (node) {
        if (IsElement(node) && node.first_attribute() != node.last_attribute()) {
            names.clear();
            for (pugi::xml_attribute attribute : node.attributes())
                names.push_back(attribute.name());
            std::sort(names.begin(), names.end());
            auto twice = std::adjacent_find(names.begin(), names.end());
            if (twice != names.end()) {
                Fail(node, "attribute " + *twice + " of " + node.name() + " is given twice");
                unique = false;
            }
        }
        if (node.first_child()) {
            node = node.first_child();
            continue;
        }
        while (node && !node.next_sibling())
            node = node.parent();
        if (node)
            node = node.next_sibling();
    }
    return unique;
}

pugi::xml_node XmlRecordReader::Open(const char* rootName)
{
    if (!ReadFile())
        return pugi::xml_node();
    std::size_t faultOffset = 0;
    std::string fault;
    if (!XmlCharacters::Check(content.data(), content.size(), faultOffset, fault)) {
        FailAtOffset(faultOffset, fault);
        return pugi::xml_node();
    }
    unsigned options = pugi::parse_default | pugi::parse_ws_pcdata | pugi::parse_declaration;
    pugi::xml_parse_result parsed = document.load_buffer(content.data(), content.size(), options, pugi::encoding_utf8);
    if (!parsed) {
        std::size_t offset = parsed.offset < 0 ? 0 : static_cast<std::size_t>(parsed.offset);
        std::string description = parsed.description();
        if (!description.empty())
            description[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(description[0])));
        FailAtOffset(offset, "malformed XML: " + description);
        return pugi::xml_node();
    }
    if (!XmlWellFormedness::Check(content.data(), content.size(), faultOffset, fault)) {
        FailAtOffset(faultOffset, fault);
        return pugi::xml_node();
    }
    if (!CheckDeclaration() || !CheckAttributesUnique())
        return pugi::xml_node();
    pugi::xml_node root = document.document_element();
    if (std::strcmp(root.name(), rootName) != 0) {
        Fail(root, std::string("root element is ") + root.name() + ", expected " + rootName);
        return pugi::xml_node();
    }
    return root;
}

pugi::xml_node XmlRecordReader::SingleChild(pugi::xml_node parent, const char* name)
{
    pugi::xml_node first = parent.child(name);
    if (!first)
        return first;
    for (pugi::xml_node again = first.next_sibling(name); again; again = again.next_sibling(name)) {
        if (errors.size() > MaximumMessages)
            break;
        Fail(again, std::string("element ") + name + " of " + parent.name() + " is given twice (first at " +
                        Location(OffsetOf(first)) + ")");
    }
    return first;
}

std::vector<pugi::xml_node> XmlRecordReader::RepeatedChildren(pugi::xml_node parent, const char* name,
                                                              std::size_t maximumCount)
{
    std::vector<pugi::xml_node> children;
    for (pugi::xml_node child = parent.child(name); child; child = child.next_sibling(name)) {
        if (children.size() == maximumCount) {
            Fail(child, std::string("more than ") + std::to_string(maximumCount) + " " + name + " elements in " +
                            parent.name());
            break;
        }
        children.push_back(child);
    }
    return children;
}

bool XmlRecordReader::ReadText(pugi::xml_node element, std::string& text)
{
    std::string collected;
    for (pugi::xml_node child : element.children()) {
        if (IsElement(child)) {
            Fail(child, std::string("element ") + element.name() + " must hold text, not the element " +
                            child.name());
            return false;
        }
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) {
            collected += child.value();
            if (collected.size() > maximumTextBytes) {
                Fail(element, std::string("text of element ") + element.name() + " is longer than the limit of " +
                                  std::to_string(maximumTextBytes) + " bytes");
                return false;
            }
        }
    }
    text.swap(collected);
    return true;
}

bool XmlRecordReader::ReadNumber(pugi::xml_node element, std::uint32_t maximum, std::uint32_t& value)
{
    std::string text;
    if (!ReadText(element, text))
        return false;
    std::string fault;
    if (!ParseDecimal(text, maximum, value, fault)) {
        Fail(element, std::string("element ") + element.name() + ": " + fault);
        return false;
    }
    return true;
}

bool XmlRecordReader::ReadNumberAttribute(pugi::xml_node element, const char* name, std::uint32_t maximum,
                                          std::uint32_t& value)
{
    std::string text;
    if (!ReadTextAttribute(element, name, text))
        return false;
    std::string fault;
    if (!ParseDecimal(text, maximum, value, fault)) {
        Fail(element, std::string("attribute ") + name + " of " + element.name() + ": " + fault);
        return false;
    }
    return true;
}

bool XmlRecordReader::ReadTextAttribute(pugi::xml_node element, const char* name, std::string& text)
{
    pugi::xml_attribute attribute = element.attribute(name);
    if (!attribute) {
        Fail(element, std::string("attribute ") + name + " of " + element.name() + " is missing");
        return false;
    }
    text = attribute.value();
    return true;
}

} // namespace KivClosed

// SPDX-License-Identifier: Apache-2.0
#include <KivClosed/XmlRecordReader.h>

#include <KivClosed/Quote.h>
#include <KivClosed/XmlCharacters.h>

#include <expat.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace KivClosed {

namespace {

const std::size_t MaximumMessages = 100;

/// Files opened for reading by every reader of the process, for FilesOpened.
std::atomic<std::uint64_t> FilesRead{0};
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

/// The value of attribute \p name in expat's name-value list, or null.
const char* FindAttribute(const char* const* attributes, const char* name)
{
    for (; attributes[0] != nullptr; attributes += 2) {
        if (std::strcmp(attributes[0], name) == 0)
            return attributes[1];
    }
    return nullptr;
}

bool StartsWith(const std::string& text, std::size_t at, const char* prefix)
{
    return at <= text.size() && text.compare(at, std::strlen(prefix), prefix) == 0;
}

bool IsSpace(char letter)
{
    return letter == ' ' || letter == '\t' || letter == '\n' || letter == '\r';
}

/// The XML name that starts at \p at: up to a space, '=', '/', '>' or the end.
std::string NameAt(const std::string& text, std::size_t at)
{
    std::size_t end = at;
    while (end < text.size() && !IsSpace(text[end]) && text[end] != '=' && text[end] != '/' && text[end] != '>')
        ++end;
    return text.substr(at, end - at);
}

/// What is wrong with the reference that starts with the '&' at \p at, or
/// "" when it is a good one.
std::string DescribeReference(const std::string& text, std::size_t at)
{
    // The longest reference worth reading: "&#x" and a few digits, or a name.
    const std::size_t longest = 32;
    std::size_t semicolon = at + 1;
    while (semicolon < text.size() && semicolon - at <= longest && text[semicolon] != ';' &&
           text[semicolon] != '&' && text[semicolon] != '<')
        ++semicolon;
    if (semicolon >= text.size() || text[semicolon] != ';' || semicolon == at + 1)
        return "'&' does not start a reference; write &amp; for a literal ampersand";
    std::string body = text.substr(at + 1, semicolon - at - 1);
    if (body[0] != '#') {
        if (body == "lt" || body == "gt" || body == "amp" || body == "apos" || body == "quot")
            return std::string();
        return "unknown entity reference &" + body + ";";
    }
    bool hexadecimal = body.size() > 1 && body[1] == 'x';
    std::size_t first = hexadecimal ? 2 : 1;
    if (first >= body.size())
        return "character reference &" + body + "; has no digits";
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
            return "character reference &" + body + "; is malformed";
        value = value * (hexadecimal ? 16u : 10u) + digitValue;
        if (value > 0x10FFFFu)
            return "character reference &" + body + "; is beyond U+10FFFF";
    }
    if (!XmlCharacters::IsAllowed(value))
        return "character reference &" + body + "; stands for " + XmlCharacters::Notation(value) +
               ", which XML does not allow";
    return std::string();
}

/// The offset of the '&' whose reference holds the byte at \p at, or npos
/// when that byte is part of no reference.
std::size_t ReferenceStart(const std::string& text, std::size_t at)
{
    // A reference is short: "&#x" and a few digits, or a name.
    const std::size_t longest = 33;
    for (std::size_t index = at; index < text.size() && at - index <= longest; --index) {
        char current = text[index];
        if (current == '&')
            return index;
        if (index != at && (current == ';' || current == '<' || current == '>' || IsSpace(current)))
            break;
        if (index == 0)
            break;
    }
    return std::string::npos;
}

/// What is wrong with an XML declaration of \p version and \p encoding
/// ("UTF-8" when it names none), or "" when nothing is.
std::string DescribeDeclaration(const std::string& version, const std::string& encoding)
{
    if (version != "1.0")
        return "XML version " + Quote(version, LongestQuotedValue) + " is not supported; the file must be XML 1.0";
    std::string name = encoding;
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char letter) { return (letter >= 'a' && letter <= 'z') ? letter - 'a' + 'A' : letter; });
    if (name != "UTF-8")
        return "encoding " + Quote(encoding, LongestQuotedValue) + " is not supported; the file must be UTF-8";
    return std::string();
}

/// The value of pseudo-attribute \p name in the text of a declaration that
/// the parser refused, read loosely: "UTF-8" for an absent encoding, "" for
/// an absent version.
std::string PseudoAttribute(const std::string& declaration, const char* name)
{
    std::size_t at = declaration.find(name);
    std::string absent = std::strcmp(name, "encoding") == 0 ? "UTF-8" : "";
    if (at == std::string::npos)
        return absent;
    at += std::strlen(name);
    while (at < declaration.size() && IsSpace(declaration[at]))
        ++at;
    if (at >= declaration.size() || declaration[at] != '=')
        return absent;
    ++at;
    while (at < declaration.size() && IsSpace(declaration[at]))
        ++at;
    if (at >= declaration.size() || (declaration[at] != '"' && declaration[at] != '\''))
        return std::string();
    std::size_t end = declaration.find(declaration[at], at + 1);
    if (end == std::string::npos)
        end = declaration.size();
    return declaration.substr(at + 1, end - at - 1);
}

/// True when \p at lies inside a quoted attribute value of a tag.
bool InAttributeValue(const std::string& text, std::size_t at)
{
    std::size_t tag = text.rfind('<', at == 0 ? 0 : at - 1);
    if (tag == std::string::npos || tag == at)
        return false;
    char quote = 0;
    for (std::size_t index = tag + 1; index < at; ++index) {
        char current = text[index];
        if (quote != 0) {
            if (current == quote)
                quote = 0;
        } else if (current == '"' || current == '\'') {
            quote = current;
        } else if (current == '>') {
            return false;
        }
    }
    return quote != 0;
}

XML_Parser ParserOf(void* parser)
{
    return static_cast<XML_Parser>(parser);
}

} // namespace

XmlRecordReader::XmlRecordReader(std::string filePath, std::size_t maximumFile, std::size_t maximumText,
                                 const Element* knownElements, std::size_t knownCount)
    : path(std::move(filePath)), maximumFileBytes(maximumFile), maximumTextBytes(maximumText),
      elements(knownElements), elementCount(knownCount)
{
}

XmlRecordReader::~XmlRecordReader() = default;

void XmlRecordReader::ElementStarted(int, const char* const*) {}

void XmlRecordReader::TextRead(int, std::string&) {}

void XmlRecordReader::NumberRead(int, std::uint32_t) {}

void XmlRecordReader::ElementEnded(int) {}

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

bool XmlRecordReader::ReadFile(struct stat& status, struct timespec& statedAt)
{
    int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (descriptor < 0) {
        Record(0, "cannot open " + path + ": " + std::strerror(errno));
        return false;
    }
    FilesRead.fetch_add(1, std::memory_order_relaxed);
    bool readable = true;
    int stated = fstat(descriptor, &status);
    clock_gettime(CLOCK_REALTIME, &statedAt);
    if (stated != 0) {
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
    // Reads straight into the string, one byte beyond the size fstat gave,
    // so that a file that grew after fstat is still caught at the limit.
    std::size_t filled = 0;
    if (readable)
        content.resize(static_cast<std::size_t>(status.st_size) + 1);
    while (readable && filled <= maximumFileBytes) {
        if (filled == content.size())
            content.resize(std::min(maximumFileBytes + 1, std::max<std::size_t>(4096, filled * 2)));
        ssize_t count = ::read(descriptor, &content[filled], content.size() - filled);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0) {
            Record(0, "cannot read " + path + ": " + std::strerror(errno));
            readable = false;
        } else {
            // A regular file reads short only at its end: the first read,
            // one byte larger than the file, normally ends the loop.
            bool atEnd = static_cast<std::size_t>(count) < content.size() - filled;
            filled += static_cast<std::size_t>(count);
            if (atEnd)
                break;
        }
    }
    ::close(descriptor);
    content.resize(filled);
    if (readable && content.size() > maximumFileBytes) {
        FailWithoutPosition("file is larger than the limit of " + std::to_string(maximumFileBytes) + " bytes");
        readable = false;
    }
    return readable;
}

XmlRecordReader::Outcome XmlRecordReader::Load(LastGoodFile& lastGood)
{
    // The stamps of a settled, untouched file vouch for its bytes: one stat
    // instead of opening and reading it (see LastGoodFile).
    struct stat status;
    if (lastGood.IsSettled() && ::stat(path.c_str(), &status) == 0 && lastGood.StillHolds(status))
        return Unchanged;
    struct timespec statedAt;
    if (!ReadFile(status, statedAt))
        return Failed;
    if (lastGood.SameBytes(content)) {
        lastGood.Confirm(status, statedAt);
        return Unchanged;
    }
    Parse();
    if (!Succeeded())
        return Failed;
    lastGood.Remember(content, status, statedAt);
    return Parsed;
}

std::uint64_t XmlRecordReader::FilesOpened()
{
    return FilesRead.load(std::memory_order_relaxed);
}

std::size_t XmlRecordReader::EventOffset() const
{
    XML_Index index = XML_GetCurrentByteIndex(ParserOf(parser));
    return index < 0 ? 0 : static_cast<std::size_t>(index);
}

void XmlRecordReader::StopWith(std::size_t offset, const std::string& description)
{
    errors.clear();
    FailAtOffset(offset, description);
    stopped = true;
}

std::size_t XmlRecordReader::MiscellanyEnd(std::size_t from, std::size_t limit) const
{
    // What may stand around the root element: white space, comments and
    // processing instructions (the XML declaration among them). Answers the
    // offset of the first thing from \p from on that is none of these.
    std::size_t at = from;
    while (at < limit) {
        if (IsSpace(content[at])) {
            ++at;
        } else if (StartsWith(content, at, "<?")) {
            std::size_t end = content.find("?>", at + 2);
            at = end == std::string::npos ? content.size() : end + 2;
        } else if (StartsWith(content, at, "<!--")) {
            std::size_t end = content.find("-->", at + 4);
            at = end == std::string::npos ? content.size() : end + 3;
        } else {
            break;
        }
    }
    return at;
}

std::size_t XmlRecordReader::PrologStart() const
{
    return StartsWith(content, 0, "\xEF\xBB\xBF") ? 3 : 0;
}

std::string XmlRecordReader::DescribeParseFault(int code, std::size_t& offset) const
{
    std::size_t declaration = PrologStart();
    std::size_t declarationEnd = content.find("?>", declaration);
    if (StartsWith(content, declaration, "<?xml") && declaration + 5 < content.size() &&
        IsSpace(content[declaration + 5]) && declarationEnd != std::string::npos && offset <= declarationEnd + 1) {
        // A fault inside the XML declaration: its version and encoding,
        // read loosely, say more than the parser's complaint.
        std::string text = content.substr(declaration, declarationEnd - declaration);
        std::string fault = DescribeDeclaration(PseudoAttribute(text, "version"), PseudoAttribute(text, "encoding"));
        offset = declaration;
        if (!fault.empty())
            return fault;
        return std::string("malformed XML: ") + XML_ErrorString(static_cast<XML_Error>(code));
    }
    if (!rootSeen) {
        std::size_t item = MiscellanyEnd(PrologStart(), offset);
        if (item <= offset && item < content.size()) {
            std::string fault;
            if (content[item] != '<')
                fault = "text outside the root element";
            else if (StartsWith(content, item, "<![CDATA["))
                fault = "CDATA section outside the root element";
            else if (StartsWith(content, item, "<!"))
                fault = "document type declarations are not supported";
            if (!fault.empty()) {
                offset = item;
                return fault;
            }
        }
    }
    switch (code) {
    case XML_ERROR_TAG_MISMATCH:
        return "malformed XML: start-end tags mismatch";
    case XML_ERROR_NO_ELEMENTS:
        if (!rootSeen)
            return "malformed XML: no document element found";
        // An element left open at the end: reported at the last byte, as
        // before libexpat.
        if (offset > 0 && offset == content.size())
            --offset;
        return "malformed XML: start-end tags mismatch";
    case XML_ERROR_DUPLICATE_ATTRIBUTE: {
        // expat points at the second attribute of the name; the fault is
        // reported at its element.
        std::size_t tag = content.rfind('<', offset);
        std::string attribute = NameAt(content, offset);
        if (tag == std::string::npos)
            return "attribute " + attribute + " is given twice";
        offset = tag;
        return "attribute " + attribute + " of " + NameAt(content, tag + 1) + " is given twice";
    }
    default:
        break;
    }
    std::size_t stray = rootSeen && depth == 0 ? MiscellanyEnd(rootEnd, offset) : std::string::npos;
    if (stray <= offset) {
        // expat points into the stray token; the message at its start. (A
        // fault inside a comment or processing instruction is not one.)
        offset = stray;
        if (StartsWith(content, offset, "<![CDATA["))
            return "CDATA section outside the root element";
        if (StartsWith(content, offset, "<") && !StartsWith(content, offset, "<!") &&
            !StartsWith(content, offset, "<?"))
            return "a second element after the root element";
        return "text outside the root element";
    }
    // expat points at the byte that spoiled the token; the message points
    // at the token's start.
    // That byte may itself be the '&' of the faulty reference, or the '&'
    // that cut an earlier one short.
    const std::size_t candidates[] = {offset == 0 ? std::string::npos : offset - 1, offset};
    for (std::size_t from : candidates) {
        std::size_t reference = from == std::string::npos ? from : ReferenceStart(content, from);
        std::string fault = reference == std::string::npos ? std::string() : DescribeReference(content, reference);
        if (!fault.empty()) {
            offset = reference;
            return fault;
        }
    }
    if (offset >= 2 && StartsWith(content, offset - 2, "]]>")) {
        offset -= 2;
        return "']]>' is not allowed in text; write ]]&gt;";
    }
    if (StartsWith(content, offset, "<") && InAttributeValue(content, offset))
        return "'<' is not allowed in an attribute value; write &lt;";
    return std::string("malformed XML: ") + XML_ErrorString(static_cast<XML_Error>(code));
}

void XmlRecordReader::RecordParseFault(int code)
{
    std::size_t offset = EventOffset();
    std::string description = DescribeParseFault(code, offset);
    StopAtParseFault(offset, description);
}

void XmlRecordReader::StopAtParseFault(std::size_t offset, std::string description)
{
    // A character that XML does not allow anywhere in the file is named
    // first, wherever the parser stopped: it is the fault a user must fix
    // before any other makes sense.
    std::size_t characterOffset = 0;
    std::string characterFault;
    if (!XmlCharacters::Check(content.data(), content.size(), characterOffset, characterFault)) {
        offset = characterOffset;
        description = characterFault;
    }
    StopWith(offset, description);
}

void XmlRecordReader::Parse()
{
    XML_Parser created = XML_ParserCreate("UTF-8");
    if (created == nullptr) {
        FailWithoutPosition("out of memory for the XML parser");
        return;
    }
    parser = created;
    XML_SetUserData(created, this);
    XML_SetElementHandler(created, &XmlRecordReader::OnStart, &XmlRecordReader::OnEnd);
    XML_SetCharacterDataHandler(created, &XmlRecordReader::OnText);
    XML_SetXmlDeclHandler(created, &XmlRecordReader::OnDeclaration);
    // A document type declaration is refused as soon as it starts, before
    // any of its entity declarations is read.
    XML_SetStartDoctypeDeclHandler(created, &XmlRecordReader::OnDocumentType);
    counts.assign(elementCount, 0);
    firstOffsets.assign(elementCount, 0);
    XML_Status status = XML_Parse(created, content.data(), static_cast<int>(content.size()), XML_TRUE);
    if (status != XML_STATUS_OK) {
        XML_Error code = XML_GetErrorCode(created);
        if (code != XML_ERROR_ABORTED)
            RecordParseFault(code);
    }
    XML_ParserFree(created);
    parser = nullptr;
}

void XmlRecordReader::OnStart(void* self, const char* name, const char** attributes)
{
    static_cast<XmlRecordReader*>(self)->Start(name, attributes);
}

void XmlRecordReader::OnEnd(void* self, const char*)
{
    static_cast<XmlRecordReader*>(self)->End();
}

void XmlRecordReader::OnText(void* self, const char* data, int length)
{
    XmlRecordReader& reader = *static_cast<XmlRecordReader*>(self);
    if (reader.stopped || reader.skippedDepth > 0 || reader.textFailed || reader.openElements.empty())
        return;
    const Open& open = reader.openElements.back();
    const Element& element = reader.elements[open.element];
    if (element.content == Children)
        return;
    reader.elementText.append(data, static_cast<std::size_t>(length));
    if (reader.elementText.size() > reader.maximumTextBytes) {
        reader.textFailed = true;
        reader.FailAtOffset(open.offset, std::string("text of element ") + element.name +
                                             " is longer than the limit of " +
                                             std::to_string(reader.maximumTextBytes) + " bytes");
    }
}

void XmlRecordReader::OnDeclaration(void* self, const char* version, const char* encoding, int)
{
    XmlRecordReader& reader = *static_cast<XmlRecordReader*>(self);
    std::string fault = DescribeDeclaration(version == nullptr ? std::string() : std::string(version),
                                            encoding == nullptr ? std::string("UTF-8") : std::string(encoding));
    if (!fault.empty())
        reader.StopWith(reader.EventOffset(), fault);
}

void XmlRecordReader::OnDocumentType(void* self, const char*, const char*, const char*, int)
{
    XmlRecordReader& reader = *static_cast<XmlRecordReader*>(self);
    // expat calls when the name has been read; the message points at "<!".
    reader.StopAtParseFault(reader.MiscellanyEnd(reader.PrologStart(), reader.content.size()),
                            "document type declarations are not supported");
    XML_StopParser(ParserOf(reader.parser), XML_FALSE);
}

int XmlRecordReader::FindChild(int parent, const char* name) const
{
    for (std::size_t index = 1; index < elementCount; ++index) {
        if (elements[index].parent == parent && std::strcmp(elements[index].name, name) == 0)
            return static_cast<int>(index);
    }
    return NoParent;
}

void XmlRecordReader::Start(const char* name, const char* const* attributes)
{
    ++depth;
    bool first = !rootSeen;
    rootSeen = true;
    if (stopped)
        return;
    if (skippedDepth > 0) {
        ++skippedDepth;
        return;
    }
    std::size_t offset = EventOffset();
    int index = 0;
    if (first) {
        if (std::strcmp(name, elements[0].name) != 0) {
            StopWith(offset, std::string("root element is ") + name + ", expected " + elements[0].name);
            return;
        }
    } else {
        const Open& parent = openElements.back();
        const Element& parentElement = elements[parent.element];
        skippedDepth = 1;
        if (parentElement.content != Children) {
            if (!textFailed) {
                textFailed = true;
                FailAtOffset(offset, std::string("element ") + parentElement.name +
                                         " must hold text, not the element " + name);
            }
            return;
        }
        index = FindChild(parent.element, name);
        if (index == NoParent)
            return;
        const Element& element = elements[index];
        std::size_t& count = counts[static_cast<std::size_t>(index)];
        if (count >= element.maximumCount) {
            if (element.maximumCount == 1) {
                // Each further one is listed, until the list is full.
                if (errors.size() >= MaximumMessages)
                    FailAtOffset(offset, std::string());
                else
                    FailAtOffset(offset, std::string("element ") + name + " of " + parentElement.name +
                                             " is given twice (first at " +
                                             Location(firstOffsets[static_cast<std::size_t>(index)]) + ")");
            } else if (count == element.maximumCount) {
                FailAtOffset(offset, "more than " + std::to_string(element.maximumCount) + " " + name +
                                         " elements in " + parentElement.name);
                ++count;
            }
            return;
        }
        skippedDepth = 0;
        if (count == 0)
            firstOffsets[static_cast<std::size_t>(index)] = offset;
        ++count;
    }
    openElements.push_back(Open{index, offset});
    if (elements[index].content == Children) {
        for (std::size_t child = 1; child < elementCount; ++child) {
            if (elements[child].parent == index)
                counts[child] = 0;
        }
    } else {
        elementText.clear();
        textFailed = false;
    }
    ElementStarted(index, attributes);
}

void XmlRecordReader::End()
{
    if (--depth == 0)
        rootEnd = EventOffset() + static_cast<std::size_t>(XML_GetCurrentByteCount(ParserOf(parser)));
    if (stopped)
        return;
    if (skippedDepth > 0) {
        --skippedDepth;
        return;
    }
    Open open = openElements.back();
    openElements.pop_back();
    const Element& element = elements[open.element];
    if (element.content == Children) {
        for (std::size_t child = 1; child < elementCount; ++child) {
            if (elements[child].parent == open.element && elements[child].required && counts[child] == 0)
                FailAtOffset(open.offset, std::string("element ") + elements[child].name + " of " + element.name +
                                              " is missing");
        }
    } else {
        FinishText(element, open.offset);
    }
    ElementEnded(open.element);
}

void XmlRecordReader::FinishText(const Element& element, std::size_t offset)
{
    if (textFailed)
        return;
    int index = static_cast<int>(&element - elements);
    if (element.content == Text) {
        TextRead(index, elementText);
        return;
    }
    std::uint32_t value = 0;
    std::string fault;
    if (ParseDecimal(elementText, element.maximum, value, fault))
        NumberRead(index, value);
    else
        FailAtOffset(offset, std::string("element ") + element.name + ": " + fault);
}

bool XmlRecordReader::ReadNumberAttribute(const char* const* attributes, const char* name, std::uint32_t maximum,
                                          std::uint32_t& value)
{
    std::string text;
    if (!ReadTextAttribute(attributes, name, text))
        return false;
    std::string fault;
    if (!ParseDecimal(text, maximum, value, fault)) {
        const Open& open = openElements.back();
        FailAtOffset(open.offset,
                     std::string("attribute ") + name + " of " + elements[open.element].name + ": " + fault);
        return false;
    }
    return true;
}

bool XmlRecordReader::ReadTextAttribute(const char* const* attributes, const char* name, std::string& text)
{
    const char* found = FindAttribute(attributes, name);
    if (found == nullptr) {
        const Open& open = openElements.back();
        FailAtOffset(open.offset, std::string("attribute ") + name + " of " + elements[open.element].name +
                                      " is missing");
        return false;
    }
    text = found;
    return true;
}

} // namespace KivClosed

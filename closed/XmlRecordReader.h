// SPDX-License-Identifier: Apache-2.0
// XmlRecordReader.h - reads one small XML record file for the configuration,
// status and description loaders, and collects every fault it meets as a
// message with the file's path, line and column.
//
// A loader makes one reader per load on its own stack, asks it for the root
// element, walks the tree with the typed helpers below and, at the end, asks
// whether anything failed. Not shared between threads.
//
// Example:
//   XmlRecordReader reader("/etc/x/configuration.xml", 1048576, 4096);
//   pugi::xml_node root = reader.Open("configuration");
//   pugi::xml_node zone = reader.SingleChild(root, "timeZone");
//   std::string timeZone;
//   if (zone)
//       reader.ReadText(zone, timeZone);
//   std::vector<std::string> messages;
//   if (!reader.Succeeded())
//       messages = reader.Errors();   // "/etc/x/configuration.xml:4:3: ..."
#ifndef KIV_CLOSED_XMLRECORDREADER_H
#define KIV_CLOSED_XMLRECORDREADER_H

#include <pugixml.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace KivClosed {

class XmlRecordReader
{
public:
    /// A reader of the file at \p path that refuses files above
    /// \p maximumFileBytes and texts above \p maximumTextBytes.
    XmlRecordReader(std::string path, std::size_t maximumFileBytes, std::size_t maximumTextBytes);
    ~XmlRecordReader();

    XmlRecordReader(const XmlRecordReader&) = delete;
    XmlRecordReader& operator=(const XmlRecordReader&) = delete;

    /// Reads the file and checks it: size limit, UTF-8, allowed characters,
    /// well-formedness (pugixml and XmlWellFormedness), an XML declaration of
    /// version 1.0 and encoding UTF-8 if there is one, no attribute given
    /// twice on any element, and a root element named \p rootName. Answers
    /// the root element, or a null node after recording the fault.
    pugi::xml_node Open(const char* rootName);

    /// The child element \p name of \p parent, or a null node when there is
    /// none. Every further child of that name is recorded as a fault.
    /// A null \p parent answers a null node.
    pugi::xml_node SingleChild(pugi::xml_node parent, const char* name);

    /// Every child element \p name of \p parent in document order. The
    /// element after the first \p maximumCount is recorded as a fault and the
    /// list stops there.
    std::vector<pugi::xml_node> RepeatedChildren(pugi::xml_node parent, const char* name, std::size_t maximumCount);

    /// The text of \p element exactly as the file holds it (entities and
    /// CDATA decoded, comments left out). Child elements and a text longer
    /// than the text limit are faults; \p text is then left unchanged.
    bool ReadText(pugi::xml_node element, std::string& text);

    /// The text of \p element as an unsigned decimal number no larger than
    /// \p maximum. Signs, spaces, hexadecimal and an empty text are faults;
    /// \p value is then left unchanged.
    bool ReadNumber(pugi::xml_node element, std::uint32_t maximum, std::uint32_t& value);

    /// The required attribute \p name of \p element as an unsigned decimal
    /// number no larger than \p maximum. A missing attribute is a fault.
    bool ReadNumberAttribute(pugi::xml_node element, const char* name, std::uint32_t maximum, std::uint32_t& value);

    /// The required attribute \p name of \p element as text.
    bool ReadTextAttribute(pugi::xml_node element, const char* name, std::string& text);

    /// Records "<path>:<line>:<column>: <description>" at the start of \p node.
    void Fail(pugi::xml_node node, const std::string& description);

    /// True while no fault has been recorded.
    bool Succeeded() const { return errors.empty(); }

    /// Every fault in file order (at most a hundred, then one line saying
    /// that more were left out).
    std::vector<std::string> Errors() const;

    /// \p messages joined by line feeds.
    static std::string Join(const std::vector<std::string>& messages);

    /// The path that messages name.
    const std::string& Path() const { return path; }

private:
    bool ReadFile();
    void FailAtOffset(std::size_t offset, const std::string& description);
    void FailWithoutPosition(const std::string& description);
    void Record(std::size_t offset, const std::string& message);
    bool CheckDeclaration();
    bool CheckAttributesUnique();
    std::string Location(std::size_t offset);
    std::size_t OffsetOf(pugi::xml_node node) const;

    std::string path;
    std::size_t maximumFileBytes;
    std::size_t maximumTextBytes;
    std::string content;
    std::vector<std::size_t> lineStarts;
    /// The last position that Location computed, to resume counting from.
    std::size_t lastLineStart = SIZE_MAX;
    std::size_t lastOffset = 0;
    std::size_t lastColumn = 1;
    pugi::xml_document document;
    /// The faults with the offsets they were found at, for sorting.
    std::vector<std::pair<std::size_t, std::string>> errors;
};

} // namespace KivClosed

#endif

// SPDX-License-Identifier: Apache-2.0
// XmlRecordReader.h - reads one small XML record file for the configuration,
// status and description loaders in one pass of libexpat, without a document
// tree, and collects every fault as a message with the file's path, line and
// column.
//
// A loader describes the elements it knows in a table, derives a reader that
// takes the values as they are read, makes one per load on its own stack and
// asks at the end whether anything failed. Not shared between threads.
//
// Example (namespace scope):
//   const XmlRecordReader::Element ZoneElements[] = {
//       {"configuration", XmlRecordReader::NoParent, XmlRecordReader::Children, 1, 0, false},
//       {"timeZone", 0, XmlRecordReader::Text, 1, 0, false},
//   };
//   class ZoneReader : public XmlRecordReader
//   {
//   public:
//       explicit ZoneReader(const std::string& path) : XmlRecordReader(path, 1048576, 4096, ZoneElements, 2) {}
//       std::string zone = "UTC";
//   protected:
//       void TextRead(int, std::string& text) override { zone.swap(text); }
//   };
//   KivClosed::LastGoodFile lastGoodFile;   // the loader keeps it from load to load
//   std::vector<std::string> LoadZone(std::string& zone)
//   {
//       ZoneReader reader("/etc/x/configuration.xml");
//       if (reader.Load(lastGoodFile) == XmlRecordReader::Parsed)
//           zone.swap(reader.zone);
//       return reader.Errors();   // "/etc/x/configuration.xml:4:3: ..." each
//   }
#ifndef KIV_CLOSED_XMLRECORDREADER_H
#define KIV_CLOSED_XMLRECORDREADER_H

#include <KivClosed/LastGoodFile.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace KivClosed {

class XmlRecordReader
{
public:
    /// What a known element holds.
    enum Content
    {
        /// Known child elements (from the table) and anything else, ignored.
        Children,
        /// Text only; a child element is a fault.
        Text,
        /// Text only, as an unsigned decimal number no larger than the
        /// element's maximum.
        Number,
    };

    /// The parent of the root element in a table.
    static constexpr int NoParent = -1;

    /// One element a loader knows. The root element comes first in a table;
    /// every other element names the index of its parent, which holds
    /// Children.
    struct Element
    {
        const char* name;
        int parent;
        Content content;
        /// Most elements of this name in one parent: 1 for a singular element
        /// (each further one is a fault "given twice"), more for a list (the
        /// one after the last is a fault and the rest of the list is skipped).
        std::size_t maximumCount;
        /// The largest value of a Number element.
        std::uint32_t maximum;
        /// Whether its parent without it is a fault.
        bool required;
    };

    /// A reader of the file at \p path that refuses files above
    /// \p maximumFileBytes and texts above \p maximumTextBytes, with the
    /// \p elementCount known elements of \p elements (kept, not copied).
    XmlRecordReader(std::string path, std::size_t maximumFileBytes, std::size_t maximumTextBytes,
                    const Element* elements, std::size_t elementCount);
    virtual ~XmlRecordReader();

    XmlRecordReader(const XmlRecordReader&) = delete;
    XmlRecordReader& operator=(const XmlRecordReader&) = delete;

    /// How Load ended.
    enum Outcome
    {
        /// The file holds exactly the last good bytes; nothing was parsed.
        Unchanged,
        /// The file was parsed without a fault.
        Parsed,
        /// A fault was recorded (Errors() lists them).
        Failed,
    };

    /// Reads the whole file, refusing a non-regular file and one above the
    /// size limit, and parses it unless it holds exactly the bytes of
    /// \p lastGood (an empty file is never good). A settled file whose
    /// identity and stamps are those \p lastGood remembers is not even read
    /// (see LastGoodFile).
    /// Parsing calls ElementStarted, TextRead, NumberRead and ElementEnded
    /// for the known elements in document order. The file must be
    /// well-formed XML 1.0 in UTF-8 (libexpat decides), without a document
    /// type declaration, with an XML declaration, if any, of version 1.0 and
    /// encoding UTF-8, and with the table's root element; a fault of that
    /// kind is the only one listed, any other is listed with the rest. After
    /// a parse without faults the bytes read and the file's stamps replace
    /// those of \p lastGood.
    Outcome Load(LastGoodFile& lastGood);

    /// How many files the readers of this process have opened so far; tests
    /// tell by it whether a load read its file.
    static std::uint64_t FilesOpened();

    /// True while no fault has been recorded.
    bool Succeeded() const { return errors.empty(); }

    /// Every fault in file order (at most a hundred, then one line saying
    /// that more were left out).
    std::vector<std::string> Errors() const;

    /// \p messages joined by line feeds.
    static std::string Join(const std::vector<std::string>& messages);

protected:
    /// A known element \p element (table index) has started, with expat's
    /// name-value list \p attributes; the first of each name, and of a list
    /// each up to its maximum.
    virtual void ElementStarted(int element, const char* const* attributes);
    /// The text of a Text element, exactly as the file holds it (entities
    /// and CDATA decoded, comments left out), when it held no element and
    /// kept to the text limit. The reader may take it by swapping.
    virtual void TextRead(int element, std::string& text);
    /// The value of a Number element that was a valid number in range.
    virtual void NumberRead(int element, std::uint32_t value);
    /// The element that ElementStarted announced has ended.
    virtual void ElementEnded(int element);

    /// The required attribute \p name of the element just started, as an
    /// unsigned decimal number no larger than \p maximum. A missing or bad
    /// value is a fault at the element; \p value is then left unchanged.
    bool ReadNumberAttribute(const char* const* attributes, const char* name, std::uint32_t maximum,
                             std::uint32_t& value);
    /// The required attribute \p name of the element just started, as text.
    bool ReadTextAttribute(const char* const* attributes, const char* name, std::string& text);

private:
    bool ReadFile(struct stat& status, struct timespec& statedAt);
    void Parse();

    /// An element open in the document, known or not.
    struct Open
    {
        /// Table index, or NoParent for an element that is skipped.
        int element;
        std::size_t offset;
    };

    static void OnStart(void* self, const char* name, const char** attributes);
    static void OnEnd(void* self, const char* name);
    static void OnText(void* self, const char* text, int length);
    static void OnDeclaration(void* self, const char* version, const char* encoding, int standalone);
    static void OnDocumentType(void* self, const char* name, const char* system, const char* publicId,
                               int internalSubset);

    void Start(const char* name, const char* const* attributes);
    void End();
    void FinishText(const Element& element, std::size_t offset);
    int FindChild(int parent, const char* name) const;
    std::size_t EventOffset() const;
    void StopWith(std::size_t offset, const std::string& description);
    void RecordParseFault(int code);
    void StopAtParseFault(std::size_t offset, std::string description);
    std::string DescribeParseFault(int code, std::size_t& offset) const;
    std::size_t PrologStart() const;
    std::size_t MiscellanyEnd(std::size_t from, std::size_t limit) const;

    void FailAtOffset(std::size_t offset, const std::string& description);
    void FailWithoutPosition(const std::string& description);
    void Record(std::size_t offset, const std::string& message);
    std::string Location(std::size_t offset);

    std::string path;
    std::size_t maximumFileBytes;
    std::size_t maximumTextBytes;
    const Element* elements;
    std::size_t elementCount;
    std::string content;
    /// The expat parser during Parse (an XML_Parser).
    void* parser = nullptr;
    std::vector<Open> openElements;
    /// Per table element: how many were seen in the current parent, and
    /// where the first one starts.
    std::vector<std::size_t> counts;
    std::vector<std::size_t> firstOffsets;
    /// The text of the open Text or Number element, and whether it is
    /// already at fault.
    std::string elementText;
    bool textFailed = false;
    /// Depth of the subtree being skipped below the last known element.
    std::size_t skippedDepth = 0;
    /// Set by a fault that alone decides the outcome (wrong declaration or
    /// root, document type declaration): nothing further is read.
    bool stopped = false;
    bool rootSeen = false;
    /// How many elements are open, known or not.
    std::size_t depth = 0;
    /// Where the root element's end tag ends.
    std::size_t rootEnd = 0;
    std::vector<std::size_t> lineStarts;
    /// The last position that Location computed, to resume counting from.
    std::size_t lastLineStart = SIZE_MAX;
    std::size_t lastOffset = 0;
    std::size_t lastColumn = 1;
    /// The faults with the offsets they were found at, for sorting.
    std::vector<std::pair<std::size_t, std::string>> errors;
};

} // namespace KivClosed

#endif

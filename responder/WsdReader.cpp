// SPDX-License-Identifier: Apache-2.0
// One expat pass over the datagram with namespace processing. Each element
// is classified by its parent as it starts (the classification lives on a
// stack); text is gathered only inside the elements whose text we keep, and
// is checked and stored when they end. The first fault stops the parser, so
// nothing after it is looked at. What is kept is bounded by the datagram's
// size and by the list and length limits of WsdLimits.
#include <KivWsd/WsdReader.h>

#include <KivWsd/WsdLimits.h>
#include <KivWsd/WsdNamespaces.h>

#include <expat.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

namespace KivWsd {

namespace {

// Expat joins namespace URI and local name with this; a local name never
// holds it, so the last one splits them.
constexpr char NamespaceSeparator = ' ';

const char* const XmlNamespace = "http://www.w3.org/XML/1998/namespace";

enum class Kind
{
    Skipped,    // an extension or unknown header block, and all inside it
    Envelope,
    Header,
    Body,
    Action,
    MessageId,
    RelatesTo,
    To,
    AppSequence,
    Probe,
    Resolve,
    Hello,
    Bye,
    ProbeMatches,
    ResolveMatches,
    Match,
    EndpointReference,
    Address,
    Types,
    Scopes,
    XAddrs,
    MetadataVersion,
    Metadata
};

bool KeepsText(Kind kind)
{
    switch (kind) {
    case Kind::Action:
    case Kind::MessageId:
    case Kind::RelatesTo:
    case Kind::To:
    case Kind::Address:
    case Kind::Types:
    case Kind::Scopes:
    case Kind::XAddrs:
    case Kind::MetadataVersion:
    case Kind::Metadata:
        return true;
    default:
        return false;
    }
}

bool HoldsTarget(Kind kind)
{
    return kind == Kind::Hello || kind == Kind::Bye || kind == Kind::Match;
}

struct BodyElement
{
    const char* localName;
    Kind kind;
    WsdAction action;
};

const BodyElement bodyElements[] = {
    {"Hello", Kind::Hello, WsdAction::Hello},
    {"Bye", Kind::Bye, WsdAction::Bye},
    {"Probe", Kind::Probe, WsdAction::Probe},
    {"ProbeMatches", Kind::ProbeMatches, WsdAction::ProbeMatches},
    {"Resolve", Kind::Resolve, WsdAction::Resolve},
    {"ResolveMatches", Kind::ResolveMatches, WsdAction::ResolveMatches},
};

bool IsXmlSpace(char character)
{
    return character == ' ' || character == '\t' || character == '\n' || character == '\r';
}

std::string Trimmed(const std::string& text)
{
    std::size_t first = 0;
    std::size_t end = text.size();
    while (first < end && IsXmlSpace(text[first]))
        ++first;
    while (end > first && IsXmlSpace(text[end - 1]))
        --end;
    return text.substr(first, end - first);
}

std::vector<std::string> Words(const std::string& text)
{
    std::vector<std::string> words;
    std::size_t position = 0;
    while (position < text.size()) {
        while (position < text.size() && IsXmlSpace(text[position]))
            ++position;
        std::size_t start = position;
        while (position < text.size() && !IsXmlSpace(text[position]))
            ++position;
        if (position > start)
            words.push_back(text.substr(start, position - start));
    }
    return words;
}

// A received text quoted in an error: one line, and short, since errors go
// to the log.
std::string Quoted(const std::string& text)
{
    constexpr std::size_t MaximumQuoted = 100;
    std::string line = text;
    if (line.size() > MaximumQuoted) {
        std::size_t cut = MaximumQuoted;
        while (cut > 0 && (static_cast<unsigned char>(line[cut]) & 0xC0) == 0x80)
            --cut;
        line = line.substr(0, cut) + "...";
    }
    for (char& character : line)
        if (IsXmlSpace(character))
            character = ' ';
    return "'" + line + "'";
}

// Decimal digits only, no sign, no white space (already trimmed), no overflow.
bool ParseUnsigned(const std::string& text, std::uint64_t maximum, std::uint64_t& value)
{
    if (text.empty())
        return false;
    std::uint64_t result = 0;
    for (char character : text) {
        if (character < '0' || character > '9')
            return false;
        unsigned digit = static_cast<unsigned>(character - '0');
        if (result > (maximum - digit) / 10)
            return false;
        result = result * 10 + digit;
    }
    value = result;
    return true;
}

class Reader
{
public:
    explicit Reader(WsdMessage& target) : message(target) {}

    bool Parse(const char* data, std::size_t size, std::string& error);

private:
    static void XMLCALL OnStart(void* self, const XML_Char* name, const XML_Char** attributes)
    {
        static_cast<Reader*>(self)->Start(name, attributes);
    }
    static void XMLCALL OnEnd(void* self, const XML_Char*) { static_cast<Reader*>(self)->End(); }
    static void XMLCALL OnText(void* self, const XML_Char* text, int length)
    {
        static_cast<Reader*>(self)->Text(text, length);
    }
    static void XMLCALL OnNamespaceStart(void* self, const XML_Char* prefix, const XML_Char* uri)
    {
        static_cast<Reader*>(self)->namespaces.emplace_back(prefix ? prefix : "", uri ? uri : "");
    }
    static void XMLCALL OnNamespaceEnd(void* self, const XML_Char*)
    {
        // Expat ends the declarations of an element in the reverse order of
        // their start, right after the element's end.
        Reader* reader = static_cast<Reader*>(self);
        if (!reader->namespaces.empty())
            reader->namespaces.pop_back();
    }
    static void XMLCALL OnDoctype(void* self, const XML_Char*, const XML_Char*, const XML_Char*, int)
    {
        static_cast<Reader*>(self)->Refuse("document type declarations are refused");
    }
    static void XMLCALL OnEntity(void* self, const XML_Char*, int, const XML_Char*, int, const XML_Char*,
                                 const XML_Char*, const XML_Char*, const XML_Char*)
    {
        static_cast<Reader*>(self)->Refuse("entity declarations are refused");
    }

    void Refuse(const std::string& reason)
    {
        if (!failed) {
            failed = true;
            fault = reason;
            XML_StopParser(parser, XML_FALSE);
        }
    }
    void NotDiscovery(const std::string& reason) { Refuse("not a WS-Discovery message: " + reason); }

    void Start(const char* name, const char** attributes);
    void End();
    void Text(const char* text, int length);

    Kind Classify(Kind parent, const std::string& uri, const std::string& local, const char** attributes);
    Kind ClassifyTargetChild(const std::string& uri, const std::string& local);
    bool IsAddressing(const std::string& uri);
    bool IsDiscovery(const std::string& uri);
    bool NoteVersion(WsdVersion found);
    void ReadAppSequence(const char** attributes);
    Kind OpenTarget(Kind kind);

    void Finish(Kind kind, Kind owner);
    bool TakeIdentifier(std::string& field, const char* what, bool trim = true);
    bool TakeList(std::vector<std::string>& list, const char* what);
    bool TakeTypes(std::vector<QualifiedName>& types);
    bool ResolveType(const std::string& word, QualifiedName& name);
    void CheckComplete();

    TargetService* CurrentTarget() { return message.targets.empty() ? nullptr : &message.targets.back(); }

    WsdMessage& message;
    XML_Parser parser = nullptr;
    bool failed = false;
    std::string fault;

    std::vector<Kind> elements;
    std::vector<std::pair<std::string, std::string>> namespaces;
    std::string text;

    bool versionKnown = false;
    bool sawHeader = false, sawBody = false;
    bool sawAction = false, sawMessageId = false, sawRelatesTo = false, sawTo = false;
    Kind bodyKind = Kind::Skipped;
    std::string bodyLocalName;
    std::string action;
};

bool Reader::Parse(const char* data, std::size_t size, std::string& error)
{
    std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> owner(XML_ParserCreateNS(nullptr, NamespaceSeparator),
                                                                    XML_ParserFree);
    parser = owner.get();
    if (!parser) {
        error = "out of memory for the XML parser";
        return false;
    }
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, OnStart, OnEnd);
    XML_SetCharacterDataHandler(parser, OnText);
    XML_SetNamespaceDeclHandler(parser, OnNamespaceStart, OnNamespaceEnd);
    XML_SetStartDoctypeDeclHandler(parser, OnDoctype);
    XML_SetEntityDeclHandler(parser, OnEntity);
    XML_SetParamEntityParsing(parser, XML_PARAM_ENTITY_PARSING_NEVER);

    // The whole datagram is one final buffer: its size is within int.
    XML_Status status = XML_Parse(parser, data, static_cast<int>(size), XML_TRUE);
    if (!failed && status != XML_STATUS_OK) {
        failed = true;
        fault = "malformed XML at " + std::to_string(XML_GetCurrentLineNumber(parser)) + ":" +
                std::to_string(XML_GetCurrentColumnNumber(parser) + 1) + ": " +
                XML_ErrorString(XML_GetErrorCode(parser));
    }
    if (!failed)
        CheckComplete();
    if (failed) {
        error = fault;
        return false;
    }
    return true;
}

bool Reader::NoteVersion(WsdVersion found)
{
    if (versionKnown && message.version != found) {
        NotDiscovery("it mixes the namespaces of both versions");
        return false;
    }
    versionKnown = true;
    message.version = found;
    return true;
}

bool Reader::IsAddressing(const std::string& uri)
{
    for (WsdVersion version : {WsdVersion::Discovery2005, WsdVersion::Discovery2009})
        if (uri == WsdNamespaces::Of(version).addressing)
            return NoteVersion(version);
    return false;
}

bool Reader::IsDiscovery(const std::string& uri)
{
    for (WsdVersion version : {WsdVersion::Discovery2005, WsdVersion::Discovery2009})
        if (uri == WsdNamespaces::Of(version).discovery)
            return NoteVersion(version);
    return false;
}

void Reader::Start(const char* name, const char** attributes)
{
    if (failed)
        return;
    if (elements.size() >= WsdLimits::MaximumDepth) {
        NotDiscovery("elements nested deeper than " + std::to_string(WsdLimits::MaximumDepth));
        return;
    }
    const char* separator = std::strrchr(name, NamespaceSeparator);
    std::string uri = separator ? std::string(name, separator) : std::string();
    std::string local = separator ? std::string(separator + 1) : std::string(name);

    Kind parent = elements.empty() ? Kind::Skipped : elements.back();
    Kind kind;
    if (elements.empty()) {
        if (uri != WsdNamespaces::SoapEnvelope || local != "Envelope") {
            NotDiscovery("the root element is not a SOAP 1.2 Envelope");
            return;
        }
        kind = Kind::Envelope;
    } else if (KeepsText(parent)) {
        NotDiscovery("element " + local + " inside a text field");
        return;
    } else {
        kind = Classify(parent, uri, local, attributes);
    }
    if (failed)
        return;
    elements.push_back(kind);
    text.clear();
}

Kind Reader::Classify(Kind parent, const std::string& uri, const std::string& local, const char** attributes)
{
    switch (parent) {
    case Kind::Envelope:
        if (uri == WsdNamespaces::SoapEnvelope && local == "Header" && !sawHeader && !sawBody) {
            sawHeader = true;
            return Kind::Header;
        }
        if (uri == WsdNamespaces::SoapEnvelope && local == "Body" && !sawBody) {
            sawBody = true;
            return Kind::Body;
        }
        NotDiscovery("unexpected element " + local + " in the Envelope");
        return Kind::Skipped;
    case Kind::Header: {
        if (IsAddressing(uri)) {
            struct HeaderField { const char* name; Kind kind; bool* seen; };
            const HeaderField fields[] = {{"Action", Kind::Action, &sawAction},
                                          {"MessageID", Kind::MessageId, &sawMessageId},
                                          {"RelatesTo", Kind::RelatesTo, &sawRelatesTo},
                                          {"To", Kind::To, &sawTo}};
            for (const HeaderField& field : fields) {
                if (local == field.name) {
                    if (*field.seen)
                        NotDiscovery(std::string("more than one ") + field.name + " header");
                    *field.seen = true;
                    return field.kind;
                }
            }
            return Kind::Skipped;
        }
        if (!failed && IsDiscovery(uri) && local == "AppSequence") {
            if (message.hasAppSequence)
                NotDiscovery("more than one AppSequence header");
            ReadAppSequence(attributes);
            return Kind::AppSequence;
        }
        return Kind::Skipped;
    }
    case Kind::Body:
        if (IsDiscovery(uri)) {
            for (const BodyElement& element : bodyElements) {
                if (local == element.localName) {
                    if (bodyKind != Kind::Skipped)
                        NotDiscovery("more than one message in the Body");
                    bodyKind = element.kind;
                    bodyLocalName = local;
                    message.action = element.action;
                    return element.kind == Kind::Hello || element.kind == Kind::Bye ? OpenTarget(element.kind)
                                                                                     : element.kind;
                }
            }
        }
        if (!failed)
            NotDiscovery("unexpected element " + local + " in the Body");
        return Kind::Skipped;
    case Kind::Probe:
        if (IsDiscovery(uri) && local == "Types")
            return Kind::Types;
        if (!failed && IsDiscovery(uri) && local == "Scopes") {
            for (const char** attribute = attributes; *attribute; attribute += 2)
                if (std::strcmp(attribute[0], "MatchBy") == 0)
                    message.matchBy = Trimmed(attribute[1]);
            if (message.matchBy.size() > WsdLimits::MaximumUriLength)
                NotDiscovery("MatchBy longer than " + std::to_string(WsdLimits::MaximumUriLength) + " bytes");
            return Kind::Scopes;
        }
        return Kind::Skipped;
    case Kind::Resolve:
        return IsAddressing(uri) && local == "EndpointReference" ? Kind::EndpointReference : Kind::Skipped;
    case Kind::ProbeMatches:
    case Kind::ResolveMatches: {
        const char* matchName = parent == Kind::ProbeMatches ? "ProbeMatch" : "ResolveMatch";
        if (IsDiscovery(uri) && local == matchName)
            return OpenTarget(Kind::Match);
        return Kind::Skipped;
    }
    case Kind::Hello:
    case Kind::Bye:
    case Kind::Match:
        return ClassifyTargetChild(uri, local);
    case Kind::EndpointReference:
        return IsAddressing(uri) && local == "Address" ? Kind::Address : Kind::Skipped;
    default:
        return Kind::Skipped;
    }
}

Kind Reader::ClassifyTargetChild(const std::string& uri, const std::string& local)
{
    if (IsAddressing(uri))
        return local == "EndpointReference" ? Kind::EndpointReference : Kind::Skipped;
    if (!failed && IsDiscovery(uri)) {
        if (local == "Types")
            return Kind::Types;
        if (local == "Scopes")
            return Kind::Scopes;
        if (local == "XAddrs")
            return Kind::XAddrs;
        if (local == "MetadataVersion")
            return Kind::MetadataVersion;
        return Kind::Skipped;
    }
    if (uri == WsdNamespaces::Extension && local == WsdNamespaces::ExtensionMetadata)
        return Kind::Metadata;
    return Kind::Skipped;
}

Kind Reader::OpenTarget(Kind kind)
{
    std::size_t most = bodyKind == Kind::ProbeMatches ? WsdLimits::MaximumTargets : 1;
    if (message.targets.size() >= most) {
        NotDiscovery("more than " + std::to_string(most) + " targets");
        return Kind::Skipped;
    }
    message.targets.emplace_back();
    return kind;
}

void Reader::ReadAppSequence(const char** attributes)
{
    bool haveInstance = false, haveNumber = false;
    for (const char** attribute = attributes; *attribute; attribute += 2) {
        std::string value = Trimmed(attribute[1]);
        if (std::strcmp(attribute[0], "InstanceId") == 0)
            haveInstance = ParseUnsigned(value, UINT64_MAX, message.appSequence.instanceId);
        else if (std::strcmp(attribute[0], "MessageNumber") == 0)
            haveNumber = ParseUnsigned(value, UINT64_MAX, message.appSequence.messageNumber);
    }
    if (!haveInstance || !haveNumber)
        NotDiscovery("AppSequence without a valid InstanceId and MessageNumber");
    message.hasAppSequence = true;
}

void Reader::Text(const char* data, int length)
{
    if (!failed && !elements.empty() && KeepsText(elements.back()))
        text.append(data, static_cast<std::size_t>(length));
}

void Reader::End()
{
    if (failed || elements.empty())
        return;
    Kind kind = elements.back();
    elements.pop_back();
    Finish(kind, elements.empty() ? Kind::Skipped : elements.back());
    text.clear();
}

bool Reader::TakeIdentifier(std::string& field, const char* what, bool trim)
{
    std::string value = trim ? Trimmed(text) : text;
    if (value.size() > WsdLimits::MaximumUriLength) {
        NotDiscovery(std::string(what) + " longer than " + std::to_string(WsdLimits::MaximumUriLength) + " bytes");
        return false;
    }
    field = std::move(value);
    return true;
}

bool Reader::TakeList(std::vector<std::string>& list, const char* what)
{
    for (std::string& word : Words(text)) {
        if (list.size() >= WsdLimits::MaximumListEntries) {
            NotDiscovery(std::string("more than ") + std::to_string(WsdLimits::MaximumListEntries) + " " + what);
            return false;
        }
        if (word.size() > WsdLimits::MaximumUriLength) {
            NotDiscovery(std::string("an entry of ") + what + " longer than " +
                         std::to_string(WsdLimits::MaximumUriLength) + " bytes");
            return false;
        }
        list.push_back(std::move(word));
    }
    return true;
}

bool Reader::ResolveType(const std::string& word, QualifiedName& name)
{
    std::size_t colon = word.find(':');
    std::string prefix = colon == std::string::npos ? std::string() : word.substr(0, colon);
    std::string local = colon == std::string::npos ? word : word.substr(colon + 1);
    if (!IsLocalName(local) || (colon != std::string::npos && !IsLocalName(prefix))) {
        NotDiscovery("type " + Quoted(word) + " is not a qualified name");
        return false;
    }
    if (prefix == "xml") {
        name = {XmlNamespace, local};
        return true;
    }
    for (auto declaration = namespaces.rbegin(); declaration != namespaces.rend(); ++declaration) {
        if (declaration->first == prefix) {
            // An undeclared default namespace (xmlns="") puts the name in none.
            if (declaration->second.empty() && !prefix.empty())
                break;
            name = {declaration->second, local};
            return true;
        }
    }
    if (prefix.empty()) {
        name = {std::string(), local};
        return true;
    }
    NotDiscovery("type prefix " + Quoted(prefix) + " is not declared");
    return false;
}

bool Reader::TakeTypes(std::vector<QualifiedName>& types)
{
    std::vector<std::string> words;
    if (!TakeList(words, "types"))
        return false;
    if (types.size() + words.size() > WsdLimits::MaximumListEntries) {
        NotDiscovery("more than " + std::to_string(WsdLimits::MaximumListEntries) + " types");
        return false;
    }
    for (const std::string& word : words) {
        QualifiedName name;
        if (!ResolveType(word, name))
            return false;
        types.push_back(std::move(name));
    }
    return true;
}

void Reader::Finish(Kind kind, Kind owner)
{
    TargetService* target = HoldsTarget(owner) ? CurrentTarget() : nullptr;
    switch (kind) {
    case Kind::Action:
        TakeIdentifier(action, "Action");
        break;
    case Kind::MessageId:
        TakeIdentifier(message.messageId, "MessageID");
        break;
    case Kind::RelatesTo:
        TakeIdentifier(message.relatesTo, "RelatesTo");
        break;
    case Kind::To:
        TakeIdentifier(message.to, "To");
        break;
    case Kind::Address: {
        // Address ends inside EndpointReference; its owner is one further up.
        Kind holder = elements.size() >= 2 ? elements[elements.size() - 2] : Kind::Skipped;
        if (holder == Kind::Resolve)
            TakeIdentifier(message.endpointAddress, "Address");
        else if (HoldsTarget(holder) && CurrentTarget())
            TakeIdentifier(CurrentTarget()->endpointAddress, "Address");
        break;
    }
    case Kind::Types:
        if (owner == Kind::Probe)
            TakeTypes(message.types);
        else if (target)
            TakeTypes(target->types);
        break;
    case Kind::Scopes:
        if (owner == Kind::Probe)
            TakeList(message.scopes, "scopes");
        else if (target)
            TakeList(target->scopes, "scopes");
        break;
    case Kind::XAddrs:
        if (target)
            TakeList(target->xaddrs, "XAddrs");
        break;
    case Kind::MetadataVersion: {
        std::uint64_t version = 0;
        if (!ParseUnsigned(Trimmed(text), UINT32_MAX, version))
            NotDiscovery("MetadataVersion is not an unsigned 32-bit number");
        else if (target)
            target->metadataVersion = static_cast<std::uint32_t>(version);
        break;
    }
    case Kind::Metadata:
        if (target) {
            // The metadata text is kept exactly, white space and all.
            target->hasMetadata = true;
            target->metadata = text;
        }
        break;
    case Kind::Hello:
    case Kind::Bye:
    case Kind::Match:
        if (CurrentTarget() && CurrentTarget()->endpointAddress.empty())
            NotDiscovery("a target without an endpoint address");
        break;
    default:
        break;
    }
}

void Reader::CheckComplete()
{
    if (bodyKind == Kind::Skipped) {
        NotDiscovery("the Body holds no message");
        return;
    }
    std::string expected = std::string(WsdNamespaces::Of(message.version).discovery) + "/" + bodyLocalName;
    if (!sawAction) {
        NotDiscovery("no Action header");
        return;
    }
    if (action != expected) {
        NotDiscovery("Action " + Quoted(action) + " does not name the body element " + bodyLocalName);
        return;
    }
    if (message.messageId.empty()) {
        NotDiscovery("no MessageID header");
        return;
    }
    if ((message.action == WsdAction::ProbeMatches || message.action == WsdAction::ResolveMatches) &&
        message.relatesTo.empty()) {
        NotDiscovery("an answer without a RelatesTo header");
        return;
    }
    if ((message.action == WsdAction::Hello || message.action == WsdAction::Bye) && message.targets.size() != 1) {
        NotDiscovery("an announcement without its target");
        return;
    }
    if (message.action == WsdAction::Resolve && message.endpointAddress.empty())
        NotDiscovery("a Resolve without an endpoint address");
}

} // namespace

bool WsdReader::Read(const char* data, std::size_t size, WsdMessage& message, std::string& error)
{
    return Read(data, size, WsdLimits::MaximumIncomingDatagram, message, error);
}

bool WsdReader::Read(const char* data, std::size_t size, std::size_t maximumSize, WsdMessage& message,
                     std::string& error)
{
    // Checked before a single byte is looked at; also keeps the size within
    // what expat takes in one call.
    if (size > maximumSize || size > static_cast<std::size_t>(INT32_MAX)) {
        error = "datagram of " + std::to_string(size) + " bytes is above the limit of " +
                std::to_string(maximumSize) + " bytes";
        return false;
    }
    message = WsdMessage();
    Reader reader(message);
    return reader.Parse(data ? data : "", size, error);
}

} // namespace KivWsd

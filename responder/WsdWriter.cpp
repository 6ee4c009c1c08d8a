// SPDX-License-Identifier: Apache-2.0
// Datagrams are put together as strings: compact, in a fixed order, so the
// same input always gives the same bytes (tests and captures compare them).
// Prefixes: soap, wsa and wsd for the protocol, cpp for the project's types,
// t1, t2, ... for other type namespaces, kd on the metadata element itself.
#include <KivWsd/WsdWriter.h>

#include <KivClosed/XmlCharacters.h>
#include <KivWsd/WsdLimits.h>
#include <KivWsd/WsdNamespaces.h>

#include <algorithm>

namespace KivWsd {

namespace {

const char* const ReplacementCharacter = "\xEF\xBF\xBD";

// Escapes \p text for element content or, with \p attribute, for a value in
// double quotes. A carriage return (and in attributes tab and line feed) is
// written as a reference, since parsers normalise them. Each byte that
// starts no character XML can carry (a control character, invalid UTF-8)
// becomes U+FFFD; the markup characters are all ASCII, so the rest is
// escaped byte by byte.
void AppendEscaped(std::string& out, const std::string& text, bool attribute = false)
{
    std::size_t position = 0;
    while (position < text.size()) {
        std::size_t faultOffset = 0;
        std::string fault;
        bool clean = KivClosed::XmlCharacters::Check(text.data() + position, text.size() - position, faultOffset, fault);
        std::size_t end = clean ? text.size() : position + faultOffset;
        for (; position < end; ++position) {
            char character = text[position];
            switch (character) {
            case '&': out += "&amp;"; break;
            case '<': out += "&lt;"; break;
            case '>': out += "&gt;"; break;
            case '\r': out += "&#13;"; break;
            case '"': out += attribute ? "&quot;" : "\""; break;
            case '\t': out += attribute ? "&#9;" : "\t"; break;
            case '\n': out += attribute ? "&#10;" : "\n"; break;
            default: out += character; break;
            }
        }
        if (!clean) {
            out += ReplacementCharacter;
            ++position;
        }
    }
}

std::string Escaped(const std::string& text)
{
    std::string out;
    AppendEscaped(out, text);
    return out;
}

// The namespace of the predeclared prefix xml, and the one no prefix may
// be bound to.
const char* const XmlNamespace = "http://www.w3.org/XML/1998/namespace";
const char* const XmlnsNamespace = "http://www.w3.org/2000/xmlns/";

bool IsWritable(const QualifiedName& type)
{
    return IsLocalName(type.localName) && type.namespaceUri != XmlnsNamespace;
}

// A list entry must not be empty or hold white space, which separates entries.
bool IsListEntry(const std::string& text)
{
    return !text.empty() && text.find_first_of(" \t\r\n") == std::string::npos;
}

class Document
{
public:
    explicit Document(WsdVersion version) : uris(WsdNamespaces::Of(version)) {}

    /// Gives every namespace of \p types a prefix, in order of appearance.
    void AddTypeNamespaces(const std::vector<QualifiedName>& types)
    {
        for (const QualifiedName& type : types) {
            if (type.namespaceUri.empty() || !IsWritable(type))
                continue;
            if (std::any_of(prefixes.begin(), prefixes.end(),
                            [&](const std::pair<std::string, std::string>& known) { return known.first == type.namespaceUri; }))
                continue;
            std::string prefix = type.namespaceUri == WsdNamespaces::ProjectTypes ? WsdNamespaces::ProjectTypesPrefix
                                 : type.namespaceUri == XmlNamespace             ? "xml"
                                                                                 : "t" + std::to_string(++generated);
            prefixes.emplace_back(type.namespaceUri, prefix);
        }
    }

    std::string Build(const std::string& action, const std::string& messageId, const std::string& relatesTo,
                      const std::string& to, const AppSequence* sequence, const std::string& body) const
    {
        std::string out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><soap:Envelope xmlns:soap=\"";
        out += WsdNamespaces::SoapEnvelope;
        out += "\" xmlns:wsa=\"";
        out += uris.addressing;
        out += "\" xmlns:wsd=\"";
        out += uris.discovery;
        out += "\"";
        for (const auto& [uri, prefix] : prefixes) {
            // xml is bound by XML itself and must not be declared.
            if (prefix == "xml")
                continue;
            out += " xmlns:" + prefix + "=\"";
            AppendEscaped(out, uri, true);
            out += "\"";
        }
        out += "><soap:Header><wsa:Action>";
        out += std::string(uris.discovery) + "/" + action;
        out += "</wsa:Action><wsa:MessageID>" + Escaped(messageId) + "</wsa:MessageID>";
        if (!relatesTo.empty())
            out += "<wsa:RelatesTo>" + Escaped(relatesTo) + "</wsa:RelatesTo>";
        out += "<wsa:To>" + to + "</wsa:To>";
        if (sequence)
            out += "<wsd:AppSequence InstanceId=\"" + std::to_string(sequence->instanceId) + "\" MessageNumber=\"" +
                   std::to_string(sequence->messageNumber) + "\"/>";
        out += "</soap:Header><soap:Body>" + body + "</soap:Body></soap:Envelope>";
        return out;
    }

    void AppendEndpoint(std::string& out, const std::string& address) const
    {
        out += "<wsa:EndpointReference><wsa:Address>" + Escaped(address) + "</wsa:Address></wsa:EndpointReference>";
    }

    void AppendTypes(std::string& out, const std::vector<QualifiedName>& types) const
    {
        std::string list;
        for (const QualifiedName& type : types) {
            if (!IsWritable(type))
                continue;
            if (!list.empty())
                list += ' ';
            for (const auto& [uri, prefix] : prefixes)
                if (uri == type.namespaceUri)
                    list += prefix + ":";
            AppendEscaped(list, type.localName);
        }
        if (!list.empty())
            out += "<wsd:Types>" + list + "</wsd:Types>";
    }

    static void AppendList(std::string& out, const char* element, const std::vector<std::string>& entries,
                           const std::string& attributes = std::string(), bool evenIfEmpty = false)
    {
        std::string list;
        for (const std::string& entry : entries) {
            if (!IsListEntry(entry))
                continue;
            if (!list.empty())
                list += ' ';
            AppendEscaped(list, entry);
        }
        if (!list.empty() || evenIfEmpty)
            out += std::string("<wsd:") + element + attributes + ">" + list + "</wsd:" + element + ">";
    }

    void AppendTarget(std::string& out, const TargetService& target) const
    {
        AppendEndpoint(out, target.endpointAddress);
        AppendTypes(out, target.types);
        AppendList(out, "Scopes", target.scopes);
        AppendList(out, "XAddrs", target.xaddrs);
        out += "<wsd:MetadataVersion>" + std::to_string(target.metadataVersion) + "</wsd:MetadataVersion>";
        if (target.hasMetadata) {
            out += "<kd:Metadata xmlns:kd=\"";
            out += WsdNamespaces::Extension;
            out += "\">" + Escaped(target.metadata) + "</kd:Metadata>";
        }
    }

    const WsdNamespaces::Version& uris;

private:
    // (namespace URI, prefix)
    std::vector<std::pair<std::string, std::string>> prefixes;
    unsigned generated = 0;
};

// Builds an answer or announcement with \p targets, leaving out the largest
// metadata left while the datagram is above the outgoing limit.
template <typename BuildWith>
std::string WithinLimit(std::vector<TargetService> targets, BuildWith build)
{
    std::string datagram = build(targets);
    while (datagram.size() > WsdLimits::MaximumOutgoingDatagram) {
        auto largest = targets.end();
        for (auto target = targets.begin(); target != targets.end(); ++target)
            if (target->hasMetadata && (largest == targets.end() || target->metadata.size() > largest->metadata.size()))
                largest = target;
        if (largest == targets.end())
            break;  // too big even without metadata: the matches go all the same
        largest->hasMetadata = false;
        largest->metadata.clear();
        datagram = build(targets);
    }
    return datagram;
}

std::string Announcement(WsdVersion version, const char* action, const std::string& messageId,
                         const std::string& relatesTo, const AppSequence& sequence,
                         const std::vector<TargetService>& targets, const char* wrapper, const char* match)
{
    return WithinLimit(targets, [&](const std::vector<TargetService>& current) {
        Document document(version);
        for (const TargetService& target : current)
            document.AddTypeNamespaces(target.types);
        std::string body = std::string("<wsd:") + wrapper + ">";
        for (const TargetService& target : current) {
            if (match)
                body += std::string("<wsd:") + match + ">";
            document.AppendTarget(body, target);
            if (match)
                body += std::string("</wsd:") + match + ">";
        }
        body += std::string("</wsd:") + wrapper + ">";
        const char* to = match ? document.uris.anonymousTo : document.uris.multicastTo;
        return document.Build(action, messageId, relatesTo, to, &sequence, body);
    });
}

} // namespace

std::string WsdWriter::Probe(WsdVersion version, const std::string& messageId, const std::vector<QualifiedName>& types,
                             const std::vector<std::string>& scopes, const std::string& matchBy)
{
    Document document(version);
    document.AddTypeNamespaces(types);
    std::string body = "<wsd:Probe>";
    document.AppendTypes(body, types);
    std::string attributes;
    if (!matchBy.empty()) {
        attributes = " MatchBy=\"";
        AppendEscaped(attributes, matchBy, true);
        attributes += "\"";
    }
    // A MatchBy without scopes still goes: a rule the target does not know
    // matches nothing.
    Document::AppendList(body, "Scopes", scopes, attributes, !matchBy.empty());
    body += "</wsd:Probe>";
    return document.Build("Probe", messageId, std::string(), document.uris.multicastTo, nullptr, body);
}

std::string WsdWriter::Resolve(WsdVersion version, const std::string& messageId, const std::string& endpointAddress)
{
    Document document(version);
    std::string body = "<wsd:Resolve>";
    document.AppendEndpoint(body, endpointAddress);
    body += "</wsd:Resolve>";
    return document.Build("Resolve", messageId, std::string(), document.uris.multicastTo, nullptr, body);
}

std::string WsdWriter::Hello(WsdVersion version, const std::string& messageId, const AppSequence& sequence,
                             const TargetService& target)
{
    return Announcement(version, "Hello", messageId, std::string(), sequence, {target}, "Hello", nullptr);
}

std::string WsdWriter::Bye(WsdVersion version, const std::string& messageId, const AppSequence& sequence,
                           const TargetService& target)
{
    Document document(version);
    std::string body = "<wsd:Bye>";
    document.AppendEndpoint(body, target.endpointAddress);
    body += "</wsd:Bye>";
    return document.Build("Bye", messageId, std::string(), document.uris.multicastTo, &sequence, body);
}

std::string WsdWriter::ProbeMatches(WsdVersion version, const std::string& messageId, const std::string& relatesTo,
                                    const AppSequence& sequence, const std::vector<TargetService>& targets)
{
    return Announcement(version, "ProbeMatches", messageId, relatesTo, sequence, targets, "ProbeMatches",
                        "ProbeMatch");
}

std::string WsdWriter::ResolveMatches(WsdVersion version, const std::string& messageId, const std::string& relatesTo,
                                      const AppSequence& sequence, const TargetService& target)
{
    return Announcement(version, "ResolveMatches", messageId, relatesTo, sequence, {target}, "ResolveMatches",
                        "ResolveMatch");
}

} // namespace KivWsd

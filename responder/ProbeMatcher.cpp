// SPDX-License-Identifier: Apache-2.0
#include <KivWsd/ProbeMatcher.h>

#include <KivPlr/core/StringAlgorithms.h>
#include <KivWsd/WsdNamespaces.h>

#include <algorithm>
#include <cctype>
#include <vector>

namespace KivWsd {

namespace {

// The parts of an absolute URI that the URI-prefix rule compares.
struct UriParts
{
    std::string scheme;     // lower case
    std::string authority;  // lower case; empty without "//"
    std::vector<std::string> segments;  // decoded
};

std::string Lowered(std::string text)
{
    KivPlr::StringAlgorithms::ToLower(text);
    return text;
}

// Percent-decodes \p segment; a malformed escape stays as written.
std::string Decoded(const std::string& segment)
{
    std::string out;
    for (std::size_t position = 0; position < segment.size(); ++position) {
        if (segment[position] == '%' && position + 2 < segment.size() &&
            std::isxdigit(static_cast<unsigned char>(segment[position + 1])) &&
            std::isxdigit(static_cast<unsigned char>(segment[position + 2]))) {
            std::vector<unsigned char> byte;
            KivPlr::StringAlgorithms::ToPackedU8(segment.substr(position + 1, 2), byte);
            out += static_cast<char>(byte.at(0));
            position += 2;
            continue;
        }
        out += segment[position];
    }
    return out;
}

// False for a text that is no absolute URI or has a "." or ".." segment.
bool Split(const std::string& uri, UriParts& parts)
{
    std::size_t colon = uri.find(':');
    if (colon == std::string::npos || colon == 0 || !std::isalpha(static_cast<unsigned char>(uri[0])))
        return false;
    for (std::size_t position = 1; position < colon; ++position) {
        char character = uri[position];
        if (!std::isalnum(static_cast<unsigned char>(character)) && character != '+' && character != '-' &&
            character != '.')
            return false;
    }
    parts.scheme = Lowered(uri.substr(0, colon));
    // Query and fragment are never compared.
    std::string rest = uri.substr(colon + 1, uri.find_first_of("?#", colon + 1) - (colon + 1));
    std::string path = rest;
    if (rest.compare(0, 2, "//") == 0) {
        std::size_t slash = rest.find('/', 2);
        parts.authority = Lowered(rest.substr(2, slash == std::string::npos ? std::string::npos : slash - 2));
        path = slash == std::string::npos ? std::string() : rest.substr(slash);
    }
    // "/a/b/", "/a/b" and "a/b" have the same segments: a and b.
    std::size_t first = path.find_first_not_of('/');
    std::size_t last = path.find_last_not_of('/');
    if (first != std::string::npos) {
        path = path.substr(first, last - first + 1);
        std::size_t start = 0;
        for (;;) {
            std::size_t slash = path.find('/', start);
            std::string segment = Decoded(path.substr(start, slash == std::string::npos ? std::string::npos
                                                                                        : slash - start));
            if (segment == "." || segment == "..")
                return false;
            parts.segments.push_back(segment);
            if (slash == std::string::npos)
                break;
            start = slash + 1;
        }
    }
    return true;
}

enum class Rule { UriPrefix, Exact, Unknown };

Rule RuleOf(const WsdMessage& probe)
{
    const WsdNamespaces::Version& uris = WsdNamespaces::Of(probe.version);
    if (probe.matchBy.empty() || probe.matchBy == uris.matchByRfc3986 ||
        (uris.matchByRfc2396 && probe.matchBy == uris.matchByRfc2396))
        return Rule::UriPrefix;
    if (probe.matchBy == uris.matchByStrcmp0)
        return Rule::Exact;
    return Rule::Unknown;
}

} // namespace

bool ProbeMatcher::ScopeMatchesRfc3986(const std::string& probeScope, const std::string& targetScope)
{
    UriParts probe, target;
    if (!Split(probeScope, probe) || !Split(targetScope, target))
        return false;
    return probe.scheme == target.scheme && probe.authority == target.authority &&
           probe.segments.size() <= target.segments.size() &&
           std::equal(probe.segments.begin(), probe.segments.end(), target.segments.begin());
}

bool ProbeMatcher::Matches(const WsdMessage& probe, const TargetService& target)
{
    for (const QualifiedName& type : probe.types)
        if (std::find(target.types.begin(), target.types.end(), type) == target.types.end())
            return false;
    Rule rule = RuleOf(probe);
    if (rule == Rule::Unknown)
        return false;
    for (const std::string& scope : probe.scopes) {
        bool found = std::any_of(target.scopes.begin(), target.scopes.end(), [&](const std::string& offered) {
            return rule == Rule::Exact ? scope == offered : ScopeMatchesRfc3986(scope, offered);
        });
        if (!found)
            return false;
    }
    return true;
}

} // namespace KivWsd

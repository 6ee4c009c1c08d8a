// SPDX-License-Identifier: Apache-2.0
#include <KivBrowse/BrowseOptions.h>

#include <KivWsd/WsdNamespaces.h>

#include <arpa/inet.h>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <net/if.h>

namespace KivBrowse {

const char* const BrowseOptions::Usage =
    "usage: discovery-browse [--type PREFIX:LOCAL]... [--type-namespace URI]\n"
    "                        [--scope URI]... [--match-by rfc3986|strcmp0]\n"
    "                        [--interface NAME | --unicast ADDRESS] [--timeout SECONDS]\n"
    "                        [--version-2005] [--version-2009] [--ipv4-only | --ipv6-only] [--xml]\n"
    "       discovery-browse --help | --version\n";

namespace {

bool IsNameStart(unsigned char byte)
{
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || byte == '_' || byte >= 0x80;
}

bool IsNameByte(unsigned char byte)
{
    return IsNameStart(byte) || (byte >= '0' && byte <= '9') || byte == '-' || byte == '.';
}

/// Whether \p text is an XML name without a colon (bytes from 0x80 are
/// taken as name characters, as UTF-8 letters mostly are).
bool IsLocalName(const std::string& text)
{
    if (text.empty() || !IsNameStart(static_cast<unsigned char>(text[0])))
        return false;
    for (char current : text)
        if (!IsNameByte(static_cast<unsigned char>(current)))
            return false;
    return true;
}

bool IsAddress(const std::string& text, int family)
{
    unsigned char buffer[sizeof(struct in6_addr)];
    return inet_pton(family, text.c_str(), buffer) == 1;
}

bool TakesValue(const std::string& option)
{
    for (const char* name : {"--type", "--type-namespace", "--scope", "--match-by", "--interface", "--unicast",
                             "--timeout"})
        if (option == name)
            return true;
    return false;
}

} // namespace

bool BrowseOptions::Fail(const std::string& why)
{
    problem = why;
    return false;
}

bool BrowseOptions::Parse(int argc, const char* const* argv)
{
    for (int index = 1; index < argc; ++index) {
        if (std::strcmp(argv[index], "--help") == 0) {
            request = Request::Help;
            return true;
        }
        if (std::strcmp(argv[index], "--version") == 0) {
            request = Request::Version;
            return true;
        }
    }
    bool version2005 = false;
    bool version2009 = false;
    bool ipv4Only = false;
    bool ipv6Only = false;
    for (int index = 1; index < argc; ++index) {
        std::string option = argv[index];
        const char* value = nullptr;
        std::string::size_type equals = option.find('=');
        std::string joinedValue;
        if (option.rfind("--", 0) == 0 && equals != std::string::npos) {
            joinedValue = option.substr(equals + 1);
            option.resize(equals);
            if (!TakesValue(option))
                return Fail("option " + option + " takes no value");
            value = joinedValue.c_str();
        } else if (TakesValue(option)) {
            if (index + 1 >= argc)
                return Fail("option " + option + " needs a value");
            value = argv[++index];
        }
        if (option == "--version-2005")
            version2005 = true;
        else if (option == "--version-2009")
            version2009 = true;
        else if (option == "--ipv4-only")
            ipv4Only = true;
        else if (option == "--ipv6-only")
            ipv6Only = true;
        else if (option == "--xml")
            rawXml = true;
        else if (value == nullptr)
            return Fail("unknown argument '" + option + "'");
        else if (!ParseValue(option, value))
            return false;
    }
    if (ipv4Only && ipv6Only)
        return Fail("--ipv4-only and --ipv6-only exclude each other");
    ipv4 = !ipv6Only;
    ipv6 = !ipv4Only;
    if (!interfaceName.empty() && !unicastAddress.empty())
        return Fail("--interface and --unicast exclude each other");
    if (!unicastAddress.empty()) {
        bool isIPv4 = IsAddress(unicastAddress, AF_INET);
        if ((isIPv4 && !ipv4) || (!isIPv4 && !ipv6))
            return Fail("--unicast " + unicastAddress + " is of the address family excluded");
    }
    if (version2005 || !version2009)
        versions.push_back(KivWsd::WsdVersion::Discovery2005);
    if (version2009 || !version2005)
        versions.push_back(KivWsd::WsdVersion::Discovery2009);

    std::string namespaceUri = typeNamespace.empty() ? KivWsd::WsdNamespaces::ProjectTypes : typeNamespace;
    for (const std::string& text : typeTexts) {
        std::string::size_type colon = text.find(':');
        std::string local = colon == std::string::npos ? text : text.substr(colon + 1);
        if ((colon != std::string::npos && !IsLocalName(text.substr(0, colon))) || !IsLocalName(local))
            return Fail("--type '" + text + "' is not PREFIX:LOCAL or LOCAL with XML names");
        types.push_back({namespaceUri, local});
    }
    return true;
}

bool BrowseOptions::ParseValue(const std::string& option, const std::string& value)
{
    if (value.empty())
        return Fail("option " + option + " needs a value that is not empty");
    if (option == "--type") {
        typeTexts.push_back(value);
    } else if (option == "--type-namespace") {
        typeNamespace = value;
    } else if (option == "--scope") {
        scopes.push_back(value);
    } else if (option == "--match-by") {
        if (value == "rfc3986")
            matchRule = ScopeRule::Rfc3986;
        else if (value == "strcmp0")
            matchRule = ScopeRule::Strcmp0;
        else
            return Fail("--match-by takes rfc3986 or strcmp0, not '" + value + "'");
    } else if (option == "--interface") {
        if (value.size() >= IF_NAMESIZE || value.find('/') != std::string::npos)
            return Fail("--interface '" + value + "' is not an interface name");
        interfaceName = value;
    } else if (option == "--unicast") {
        if (!IsAddress(value, AF_INET) && !IsAddress(value, AF_INET6))
            return Fail("--unicast '" + value + "' is neither an IPv4 nor an IPv6 address");
        unicastAddress = value;
    } else {
        char* end = nullptr;
        double seconds = std::strtod(value.c_str(), &end);
        bool digitsOnly = value.find_first_not_of("0123456789.") == std::string::npos;
        if (!digitsOnly || end == nullptr || *end != '\0' || !(seconds > 0) ||
            seconds * 1000 > MaximumTimeoutMilliseconds)
            return Fail("--timeout '" + value + "' is not a number of seconds above 0 and up to 3600");
        timeoutMilliseconds = static_cast<unsigned>(std::ceil(seconds * 1000));
    }
    return true;
}

std::string BrowseOptions::MatchByUri(KivWsd::WsdVersion version) const
{
    const KivWsd::WsdNamespaces::Version& uris = KivWsd::WsdNamespaces::Of(version);
    switch (matchRule) {
    case ScopeRule::Rfc3986:
        return uris.matchByRfc3986;
    case ScopeRule::Strcmp0:
        return uris.matchByStrcmp0;
    case ScopeRule::Default:
        break;
    }
    return "";
}

} // namespace KivBrowse

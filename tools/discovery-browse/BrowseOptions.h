// SPDX-License-Identifier: Apache-2.0
// BrowseOptions.h - the command line of discovery-browse: what to probe
// for, where, for how long, and how to print what answered.
//
// Usage:
//   discovery-browse [--type PREFIX:LOCAL]... [--type-namespace URI]
//                    [--scope URI]... [--match-by rfc3986|strcmp0]
//                    [--interface NAME] [--unicast ADDRESS] [--timeout SECONDS]
//                    [--version-2005 | --version-2009] [--ipv4-only | --ipv6-only] [--xml]
//   discovery-browse --help | --version
//
// Made by main() from argv; a plain value used by one thread.
//
// Example:
//   #include <cstdio>
//   auto run = [](int argc, const char* const* argv) {  // main()'s first steps
//       KivBrowse::BrowseOptions options;
//       if (!options.Parse(argc, argv)) {
//           std::fprintf(stderr, "discovery-browse: %s\n%s", options.Problem().c_str(),
//                        KivBrowse::BrowseOptions::Usage);
//           return KivBrowse::BrowseOptions::UsageExitStatus;
//       }
//       return options.Asked() == KivBrowse::BrowseOptions::Request::Browse ? 1 : 0;
//   };
#ifndef KIV_BROWSE_BROWSEOPTIONS_H
#define KIV_BROWSE_BROWSEOPTIONS_H

#include <KivWsd/QualifiedName.h>
#include <KivWsd/WsdVersion.h>

#include <string>
#include <vector>

namespace KivBrowse {

class BrowseOptions
{
public:
    /// Exit status for a command line that does not parse.
    static constexpr int UsageExitStatus = 2;
    /// The usage text, each line ending in a line feed.
    static const char* const Usage;
    /// How long answers are awaited without --timeout.
    static constexpr unsigned DefaultTimeoutMilliseconds = 3000;
    /// The longest --timeout taken: an hour.
    static constexpr unsigned MaximumTimeoutMilliseconds = 3600 * 1000;

    enum class Request { Browse, Help, Version };
    /// The scope rule asked for; Default sends no MatchBy (which means RFC 3986).
    enum class ScopeRule { Default, Rfc3986, Strcmp0 };

    /// Reads the arguments after argv[0]. The first "--help" or "--version"
    /// decides the request and nothing else is looked at. Otherwise false
    /// for an unknown argument, an option without its value, a value that
    /// is empty or malformed (a type with spaces or an empty local name, a
    /// timeout that is not a positive number of seconds up to an hour, an
    /// address that is neither IPv4 nor IPv6), two exclusive options
    /// together, or --unicast with an address of the family excluded;
    /// Problem() then says which. Options that take one value keep the last.
    bool Parse(int argc, const char* const* argv);

    Request Asked() const { return request; }
    /// The probed types as qualified names: each --type's local part in the
    /// --type-namespace (the project's namespace when not given).
    const std::vector<KivWsd::QualifiedName>& Types() const { return types; }
    const std::vector<std::string>& Scopes() const { return scopes; }
    ScopeRule MatchRule() const { return matchRule; }
    /// The MatchBy URI to send in a probe of \p version; empty for Default.
    std::string MatchByUri(KivWsd::WsdVersion version) const;
    /// Empty: every multicast-capable interface except loopback.
    const std::string& Interface() const { return interfaceName; }
    /// Empty: multicast; otherwise the address the probes go to directly.
    const std::string& UnicastAddress() const { return unicastAddress; }
    unsigned TimeoutMilliseconds() const { return timeoutMilliseconds; }
    /// The versions to probe in, 2005/04 first.
    const std::vector<KivWsd::WsdVersion>& Versions() const { return versions; }
    bool UseIPv4() const { return ipv4; }
    bool UseIPv6() const { return ipv6; }
    bool RawXml() const { return rawXml; }
    /// What was wrong with the command line; empty after a good parse.
    const std::string& Problem() const { return problem; }

private:
    bool Fail(const std::string& why);
    bool ParseValue(const std::string& option, const std::string& value);

    Request request = Request::Browse;
    std::vector<std::string> typeTexts;
    std::string typeNamespace;
    std::vector<KivWsd::QualifiedName> types;
    std::vector<std::string> scopes;
    ScopeRule matchRule = ScopeRule::Default;
    std::string interfaceName;
    std::string unicastAddress;
    unsigned timeoutMilliseconds = DefaultTimeoutMilliseconds;
    std::vector<KivWsd::WsdVersion> versions;
    bool ipv4 = true;
    bool ipv6 = true;
    bool rawXml = false;
    std::string problem;
};

} // namespace KivBrowse

#endif

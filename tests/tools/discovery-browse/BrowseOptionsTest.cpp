// SPDX-License-Identifier: Apache-2.0
// The command line of discovery-browse: what each option turns into, and
// every way of getting it wrong.

#include <KivBrowse/BrowseOptions.h>
#include <KivWsd/WsdNamespaces.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using KivBrowse::BrowseOptions;
using KivWsd::WsdVersion;

namespace {

/// Parses \p arguments (after the program name) into \p options.
bool Parse(BrowseOptions& options, std::vector<const char*> arguments)
{
    arguments.insert(arguments.begin(), "discovery-browse");
    return options.Parse(static_cast<int>(arguments.size()), arguments.data());
}

const char ProjectTypes[] = "http://standards.kivotrel.example/2011/videoprocessor";

} // namespace

TEST(BrowseOptionsTest, NoArgumentsProbeEverythingInBothVersionsAndFamiliesForThreeSeconds)
{
    BrowseOptions options;
    ASSERT_TRUE(Parse(options, {})) << options.Problem();
    EXPECT_EQ(options.Asked(), BrowseOptions::Request::Browse);
    EXPECT_TRUE(options.Types().empty());
    EXPECT_TRUE(options.Scopes().empty());
    EXPECT_EQ(options.MatchRule(), BrowseOptions::ScopeRule::Default);
    EXPECT_EQ(options.MatchByUri(WsdVersion::Discovery2005), "");
    EXPECT_EQ(options.Interface(), "");
    EXPECT_EQ(options.UnicastAddress(), "");
    EXPECT_EQ(options.TimeoutMilliseconds(), 3000u);
    EXPECT_EQ(options.Versions(), (std::vector<WsdVersion>{WsdVersion::Discovery2005, WsdVersion::Discovery2009}));
    EXPECT_TRUE(options.UseIPv4());
    EXPECT_TRUE(options.UseIPv6());
    EXPECT_FALSE(options.RawXml());
    EXPECT_EQ(options.Problem(), "");
}

TEST(BrowseOptionsTest, TypeTakesTheProjectNamespaceWhateverItsPrefix)
{
    BrowseOptions options;
    ASSERT_TRUE(Parse(options, {"--type", "cpp:Management", "--type", "Other"})) << options.Problem();
    ASSERT_EQ(options.Types().size(), 2u);
    EXPECT_EQ(options.Types()[0].namespaceUri, ProjectTypes);
    EXPECT_EQ(options.Types()[0].localName, "Management");
    EXPECT_EQ(options.Types()[1].namespaceUri, ProjectTypes);
    EXPECT_EQ(options.Types()[1].localName, "Other");
}

TEST(BrowseOptionsTest, TypeNamespaceAppliesToTypesGivenBeforeAndAfterIt)
{
    BrowseOptions options;
    ASSERT_TRUE(Parse(options, {"--type", "wsdp:Device", "--type-namespace=http://example.org/ns", "--type=x:Y"}))
        << options.Problem();
    ASSERT_EQ(options.Types().size(), 2u);
    EXPECT_EQ(options.Types()[0].namespaceUri, "http://example.org/ns");
    EXPECT_EQ(options.Types()[0].localName, "Device");
    EXPECT_EQ(options.Types()[1].namespaceUri, "http://example.org/ns");
    EXPECT_EQ(options.Types()[1].localName, "Y");
}

TEST(BrowseOptionsTest, MatchByNamesEachVersionsOwnRuleUri)
{
    BrowseOptions strict;
    ASSERT_TRUE(Parse(strict, {"--scope", "http://a/b", "--scope", "http://c", "--match-by", "strcmp0"}));
    EXPECT_EQ(strict.Scopes(), (std::vector<std::string>{"http://a/b", "http://c"}));
    EXPECT_EQ(strict.MatchByUri(WsdVersion::Discovery2005), "http://schemas.xmlsoap.org/ws/2005/04/discovery/strcmp0");
    EXPECT_EQ(strict.MatchByUri(WsdVersion::Discovery2009),
              "http://docs.oasis-open.org/ws-dd/ns/discovery/2009/01/strcmp0");
    BrowseOptions prefix;
    ASSERT_TRUE(Parse(prefix, {"--match-by=rfc3986"}));
    EXPECT_EQ(prefix.MatchByUri(WsdVersion::Discovery2005), "http://schemas.xmlsoap.org/ws/2005/04/discovery/rfc3986");
    EXPECT_EQ(prefix.MatchByUri(WsdVersion::Discovery2009),
              "http://docs.oasis-open.org/ws-dd/ns/discovery/2009/01/rfc3986");
}

TEST(BrowseOptionsTest, OneVersionFlagProbesInThatVersionOnlyAndBothFlagsInBoth)
{
    BrowseOptions old;
    ASSERT_TRUE(Parse(old, {"--version-2005"}));
    EXPECT_EQ(old.Versions(), std::vector<WsdVersion>{WsdVersion::Discovery2005});
    BrowseOptions recent;
    ASSERT_TRUE(Parse(recent, {"--version-2009"}));
    EXPECT_EQ(recent.Versions(), std::vector<WsdVersion>{WsdVersion::Discovery2009});
    BrowseOptions both;
    ASSERT_TRUE(Parse(both, {"--version-2009", "--version-2005"}));
    EXPECT_EQ(both.Versions(), (std::vector<WsdVersion>{WsdVersion::Discovery2005, WsdVersion::Discovery2009}));
}

TEST(BrowseOptionsTest, TimeoutTakesFractionsOfSecondsRoundedUpToMilliseconds)
{
    BrowseOptions options;
    ASSERT_TRUE(Parse(options, {"--timeout", "0.0005"})) << options.Problem();
    EXPECT_EQ(options.TimeoutMilliseconds(), 1u);
    ASSERT_TRUE(Parse(options, {"--timeout", "3600"})) << options.Problem();
    EXPECT_EQ(options.TimeoutMilliseconds(), 3600000u);
}

TEST(BrowseOptionsTest, FamilyInterfaceUnicastAndXmlAreKept)
{
    BrowseOptions options;
    ASSERT_TRUE(Parse(options, {"--ipv6-only", "--unicast", "2001:db8::1", "--xml"})) << options.Problem();
    EXPECT_FALSE(options.UseIPv4());
    EXPECT_TRUE(options.UseIPv6());
    EXPECT_EQ(options.UnicastAddress(), "2001:db8::1");
    EXPECT_TRUE(options.RawXml());
    BrowseOptions onLink;
    ASSERT_TRUE(Parse(onLink, {"--ipv4-only", "--interface", "eth0"})) << onLink.Problem();
    EXPECT_TRUE(onLink.UseIPv4());
    EXPECT_FALSE(onLink.UseIPv6());
    EXPECT_EQ(onLink.Interface(), "eth0");
}

TEST(BrowseOptionsTest, HelpOrVersionAnywhereWinsOverWrongArguments)
{
    BrowseOptions help;
    ASSERT_TRUE(Parse(help, {"--bogus", "--help", "--timeout"}));
    EXPECT_EQ(help.Asked(), BrowseOptions::Request::Help);
    BrowseOptions version;
    ASSERT_TRUE(Parse(version, {"--timeout", "-1", "--version"}));
    EXPECT_EQ(version.Asked(), BrowseOptions::Request::Version);
}

TEST(BrowseOptionsTest, EveryWrongCommandLineFailsWithItsReason)
{
    const std::vector<std::pair<std::vector<const char*>, std::string>> cases = {
        {{"--bogus"}, "unknown argument '--bogus'"},
        {{"extra"}, "unknown argument 'extra'"},
        {{"--timeout"}, "option --timeout needs a value"},
        {{"--scope="}, "option --scope needs a value that is not empty"},
        {{"--xml=yes"}, "option --xml takes no value"},
        {{"--timeout", "0"}, "--timeout '0' is not a number of seconds above 0 and up to 3600"},
        {{"--timeout", "3600.5"}, "--timeout '3600.5' is not a number of seconds above 0 and up to 3600"},
        {{"--timeout", "-1"}, "--timeout '-1' is not a number of seconds above 0 and up to 3600"},
        {{"--timeout", "1e3"}, "--timeout '1e3' is not a number of seconds above 0 and up to 3600"},
        {{"--timeout", "2s"}, "--timeout '2s' is not a number of seconds above 0 and up to 3600"},
        {{"--match-by", "exact"}, "--match-by takes rfc3986 or strcmp0, not 'exact'"},
        {{"--type", "cpp:"}, "--type 'cpp:' is not PREFIX:LOCAL or LOCAL with XML names"},
        {{"--type", "a:b:c"}, "--type 'a:b:c' is not PREFIX:LOCAL or LOCAL with XML names"},
        {{"--type", "cpp:Man agement"}, "--type 'cpp:Man agement' is not PREFIX:LOCAL or LOCAL with XML names"},
        {{"--type", "1x"}, "--type '1x' is not PREFIX:LOCAL or LOCAL with XML names"},
        {{"--interface", "a-name-far-too-long"}, "--interface 'a-name-far-too-long' is not an interface name"},
        {{"--unicast", "unit-7"}, "--unicast 'unit-7' is neither an IPv4 nor an IPv6 address"},
        {{"--unicast", "fe80::1%eth0"}, "--unicast 'fe80::1%eth0' is neither an IPv4 nor an IPv6 address"},
        {{"--ipv4-only", "--ipv6-only"}, "--ipv4-only and --ipv6-only exclude each other"},
        {{"--interface", "eth0", "--unicast", "192.0.2.1"}, "--interface and --unicast exclude each other"},
        {{"--ipv6-only", "--unicast", "192.0.2.1"}, "--unicast 192.0.2.1 is of the address family excluded"},
        {{"--ipv4-only", "--unicast", "2001:db8::1"}, "--unicast 2001:db8::1 is of the address family excluded"},
    };
    for (const auto& [arguments, problem] : cases) {
        BrowseOptions options;
        EXPECT_FALSE(Parse(options, arguments)) << problem;
        EXPECT_EQ(options.Problem(), problem);
    }
}

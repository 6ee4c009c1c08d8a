// SPDX-License-Identifier: Apache-2.0
// Which targets answer which probes: types as qualified names, scopes by the
// URI-prefix rule and by exact comparison, and MatchBy in each version.
#include <KivWsd/ProbeMatcher.h>

#include <KivWsd/WsdNamespaces.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using KivWsd::ProbeMatcher;
using KivWsd::QualifiedName;
using KivWsd::TargetService;
using KivWsd::WsdMessage;
using KivWsd::WsdNamespaces;
using KivWsd::WsdVersion;

const std::string ProjectTypes = WsdNamespaces::ProjectTypes;
const std::string Trx = "http://standards.kivotrel.example/2011/videoprocessor/trx";

TargetService Unit()
{
    TargetService target;
    target.endpointAddress = "urn:uuid:1";
    target.types = {{ProjectTypes, "Management"}, {"http://www.onvif.org/ver10/network/wsdl", "NetworkVideoTransmitter"}};
    target.scopes = {Trx, "onvif://www.onvif.org/location/building/floor2"};
    return target;
}

WsdMessage Probe(std::vector<QualifiedName> types, std::vector<std::string> scopes, std::string matchBy = "",
                 WsdVersion version = WsdVersion::Discovery2005)
{
    WsdMessage probe;
    probe.version = version;
    probe.types = std::move(types);
    probe.scopes = std::move(scopes);
    probe.matchBy = std::move(matchBy);
    return probe;
}

TEST(ProbeMatcherTest, ProbeWithoutTypesOrScopesMatchesEveryTarget)
{
    EXPECT_TRUE(ProbeMatcher::Matches(Probe({}, {}), Unit()));
    EXPECT_TRUE(ProbeMatcher::Matches(Probe({}, {}), TargetService()));
}

TEST(ProbeMatcherTest, TypeInTheProjectNamespaceMatches)
{
    EXPECT_TRUE(ProbeMatcher::Matches(Probe({{ProjectTypes, "Management"}}, {}), Unit()));
}

TEST(ProbeMatcherTest, TypeWithSameLocalNameInAnotherNamespaceDoesNotMatch)
{
    EXPECT_FALSE(ProbeMatcher::Matches(Probe({{"urn:other", "Management"}}, {}), Unit()));
}

TEST(ProbeMatcherTest, TypeLocalNamesAreComparedWithCase)
{
    EXPECT_FALSE(ProbeMatcher::Matches(Probe({{ProjectTypes, "management"}}, {}), Unit()));
}

TEST(ProbeMatcherTest, EveryProbeTypeMustBeAmongTheTargetTypes)
{
    QualifiedName transmitter{"http://www.onvif.org/ver10/network/wsdl", "NetworkVideoTransmitter"};
    EXPECT_TRUE(ProbeMatcher::Matches(Probe({{ProjectTypes, "Management"}, transmitter}, {}), Unit()));
    EXPECT_FALSE(ProbeMatcher::Matches(Probe({{ProjectTypes, "Management"}, {ProjectTypes, "Status"}}, {}), Unit()));
}

TEST(ProbeMatcherTest, TypedProbeDoesNotMatchTargetWithoutTypes)
{
    EXPECT_FALSE(ProbeMatcher::Matches(Probe({{ProjectTypes, "Management"}}, {}), TargetService()));
}

TEST(ProbeMatcherTest, ScopeEqualToATargetScopeMatchesByDefault)
{
    EXPECT_TRUE(ProbeMatcher::Matches(Probe({}, {Trx}), Unit()));
}

TEST(ProbeMatcherTest, ScopeThatIsAPathPrefixSegmentWiseMatches)
{
    EXPECT_TRUE(ProbeMatcher::Matches(Probe({}, {"http://standards.kivotrel.example/2011"}), Unit()));
    EXPECT_TRUE(ProbeMatcher::Matches(Probe({}, {"http://standards.kivotrel.example/2011/"}), Unit()));
    EXPECT_TRUE(ProbeMatcher::Matches(Probe({}, {"http://standards.kivotrel.example"}), Unit()));
}

TEST(ProbeMatcherTest, ScopeThatIsAStringPrefixButNotASegmentPrefixDoesNotMatch)
{
    EXPECT_FALSE(ProbeMatcher::Matches(Probe({}, {"http://standards.kivotrel.example/2011/video"}), Unit()));
}

TEST(ProbeMatcherTest, ScopeLongerThanTheTargetScopeDoesNotMatch)
{
    EXPECT_FALSE(ProbeMatcher::Matches(Probe({}, {Trx + "/more"}), Unit()));
}

TEST(ProbeMatcherTest, SchemeAndAuthorityAreComparedWithoutCase)
{
    EXPECT_TRUE(ProbeMatcher::Matches(Probe({}, {"HTTP://Standards.Kivotrel.Example/2011"}), Unit()));
}

TEST(ProbeMatcherTest, PathSegmentsAreComparedWithCase)
{
    EXPECT_FALSE(ProbeMatcher::Matches(Probe({}, {"http://standards.kivotrel.example/2011/VideoProcessor"}), Unit()));
}

TEST(ProbeMatcherTest, QueryAndFragmentAreNotCompared)
{
    EXPECT_TRUE(ProbeMatcher::Matches(Probe({}, {"http://standards.kivotrel.example/2011?x=1#top"}), Unit()));
}

TEST(ProbeMatcherTest, PercentEscapesAreDecodedBeforeComparing)
{
    EXPECT_TRUE(ProbeMatcher::Matches(Probe({}, {"http://standards.kivotrel.example/%32011/video%70rocessor"}), Unit()));
}

TEST(ProbeMatcherTest, DotSegmentsMatchNothing)
{
    EXPECT_FALSE(ProbeMatcher::Matches(Probe({}, {"http://standards.kivotrel.example/2011/x/.."}), Unit()));
    EXPECT_FALSE(ProbeMatcher::Matches(Probe({}, {"http://standards.kivotrel.example/./2011"}), Unit()));
    EXPECT_FALSE(ProbeMatcher::ScopeMatchesRfc3986("http://a/b", "http://a/b/../c"));
}

TEST(ProbeMatcherTest, DifferentAuthorityDoesNotMatch)
{
    EXPECT_FALSE(ProbeMatcher::Matches(Probe({}, {"http://standards.kivotrel.example:8080/2011"}), Unit()));
}

TEST(ProbeMatcherTest, RelativeScopeMatchesNothing)
{
    EXPECT_FALSE(ProbeMatcher::ScopeMatchesRfc3986("/2011", "/2011/videoprocessor"));
    EXPECT_FALSE(ProbeMatcher::ScopeMatchesRfc3986("", Trx));
}

TEST(ProbeMatcherTest, UriWithoutAuthorityMatchesBySegmentsOfItsPath)
{
    EXPECT_TRUE(ProbeMatcher::Matches(Probe({}, {"onvif://www.onvif.org/location"}), Unit()));
    EXPECT_TRUE(ProbeMatcher::ScopeMatchesRfc3986("urn:a/b", "urn:a/b/c"));
    EXPECT_FALSE(ProbeMatcher::ScopeMatchesRfc3986("urn:a", "urn:ab"));
}

TEST(ProbeMatcherTest, EveryProbeScopeMustMatchSomeTargetScope)
{
    EXPECT_TRUE(ProbeMatcher::Matches(Probe({}, {Trx, "onvif://www.onvif.org/location"}), Unit()));
    EXPECT_FALSE(ProbeMatcher::Matches(Probe({}, {Trx, "onvif://www.onvif.org/name"}), Unit()));
}

TEST(ProbeMatcherTest, ExplicitRfc3986OfEachVersionIsTheUriPrefixRule)
{
    std::string prefix = "http://standards.kivotrel.example/2011";
    EXPECT_TRUE(ProbeMatcher::Matches(
        Probe({}, {prefix}, WsdNamespaces::Of(WsdVersion::Discovery2005).matchByRfc3986), Unit()));
    EXPECT_TRUE(ProbeMatcher::Matches(
        Probe({}, {prefix}, WsdNamespaces::Of(WsdVersion::Discovery2009).matchByRfc3986, WsdVersion::Discovery2009),
        Unit()));
}

TEST(ProbeMatcherTest, Rfc2396Of2005IsTheUriPrefixRuleToo)
{
    EXPECT_TRUE(ProbeMatcher::Matches(Probe({}, {"http://standards.kivotrel.example/2011"},
                                            "http://schemas.xmlsoap.org/ws/2005/04/discovery/rfc2396"),
                                      Unit()));
}

TEST(ProbeMatcherTest, Strcmp0MatchesTheSameBytesOnly)
{
    std::string strcmp0 = WsdNamespaces::Of(WsdVersion::Discovery2009).matchByStrcmp0;
    EXPECT_TRUE(ProbeMatcher::Matches(Probe({}, {Trx}, strcmp0, WsdVersion::Discovery2009), Unit()));
    EXPECT_FALSE(ProbeMatcher::Matches(Probe({}, {"http://standards.kivotrel.example/2011"}, strcmp0,
                                             WsdVersion::Discovery2009),
                                       Unit()));
    EXPECT_FALSE(ProbeMatcher::Matches(Probe({}, {"HTTP://standards.kivotrel.example/2011/videoprocessor/trx"},
                                             strcmp0, WsdVersion::Discovery2009),
                                       Unit()));
}

TEST(ProbeMatcherTest, MatchByOfTheOtherVersionMatchesNothing)
{
    std::string strcmp0Of2009 = WsdNamespaces::Of(WsdVersion::Discovery2009).matchByStrcmp0;
    EXPECT_FALSE(ProbeMatcher::Matches(Probe({}, {Trx}, strcmp0Of2009, WsdVersion::Discovery2005), Unit()));
}

TEST(ProbeMatcherTest, UnknownMatchByMatchesNothingEvenWithoutScopes)
{
    EXPECT_FALSE(ProbeMatcher::Matches(Probe({}, {Trx}, "http://schemas.xmlsoap.org/ws/2005/04/discovery/ldap"), Unit()));
    EXPECT_FALSE(ProbeMatcher::Matches(Probe({}, {}, "urn:unknown-rule"), Unit()));
}

TEST(ProbeMatcherTest, ScopedProbeDoesNotMatchTargetWithoutScopes)
{
    EXPECT_FALSE(ProbeMatcher::Matches(Probe({}, {Trx}), TargetService()));
}

} // namespace

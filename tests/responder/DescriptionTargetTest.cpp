// SPDX-License-Identifier: Apache-2.0
// From a description file, as the client library writes it, to the target
// service: types as qualified names, scopes, port and metadata.
#include <KivWsd/DescriptionTarget.h>

#include <KivTest/TemporaryDirectory.h>
#include <KivWsd/WsdNamespaces.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using KivWsd::DescriptionTarget;
using KivWsd::QualifiedName;
using KivWsd::TargetService;
using KivWsd::WsdNamespaces;

const std::string ProjectTypes = WsdNamespaces::ProjectTypes;
const std::string Unbound = WsdNamespaces::UnboundTypes;

TEST(DescriptionTargetTest, LoadsTypesScopesPortAndMetadata)
{
    KivTest::TemporaryDirectory directory;
    std::string file = directory.Path() + "/Management.xml";
    ASSERT_TRUE(KivTest::WriteFile(file, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<service name=\"Management\">\n"
                                         "  <type>cpp:Management</type>\n  <type>Plain</type>\n"
                                         "  <type>two words</type>\n"
                                         "  <scope>http://standards.kivotrel.example/2011/videoprocessor/trx</scope>\n"
                                         "  <port>8080</port>\n  <metadata>&lt;cpp:Config&gt;&amp;</metadata>\n"
                                         "</service>\n"));
    TargetService target;
    target.endpointAddress = "urn:uuid:kept";
    target.metadataVersion = 5;
    std::uint16_t port = 0;
    std::string error;
    ASSERT_TRUE(DescriptionTarget::Load(file, target, port, error)) << error;
    EXPECT_EQ(target.types, (std::vector<QualifiedName>{{ProjectTypes, "Management"}, {Unbound, "Plain"}}));
    EXPECT_EQ(target.scopes, std::vector<std::string>{"http://standards.kivotrel.example/2011/videoprocessor/trx"});
    EXPECT_EQ(port, 8080);
    EXPECT_TRUE(target.hasMetadata);
    EXPECT_EQ(target.metadata, "<cpp:Config>&");
    EXPECT_EQ(target.endpointAddress, "urn:uuid:kept");
    EXPECT_EQ(target.metadataVersion, 5u);
}

TEST(DescriptionTargetTest, DescriptionWithoutMetadataSendsNone)
{
    KivTest::TemporaryDirectory directory;
    std::string file = directory.Path() + "/Bare.xml";
    ASSERT_TRUE(KivTest::WriteFile(file, "<service name=\"Bare\"><port>1</port></service>"));
    TargetService target;
    target.hasMetadata = true;
    std::uint16_t port = 0;
    std::string error;
    ASSERT_TRUE(DescriptionTarget::Load(file, target, port, error)) << error;
    EXPECT_FALSE(target.hasMetadata);
    EXPECT_TRUE(target.types.empty());
}

TEST(DescriptionTargetTest, FailedLoadReportsTheFaultAndChangesNothing)
{
    KivTest::TemporaryDirectory directory;
    TargetService target;
    target.scopes = {"urn:before"};
    std::uint16_t port = 77;
    std::string error;
    EXPECT_FALSE(DescriptionTarget::Load(directory.Path() + "/missing.xml", target, port, error));
    EXPECT_NE(error.find("missing.xml"), std::string::npos) << error;
    EXPECT_EQ(target.scopes, std::vector<std::string>{"urn:before"});
    EXPECT_EQ(port, 77);
}

TEST(DescriptionTargetTest, CppPrefixMapsToTheProjectNamespace)
{
    QualifiedName name;
    ASSERT_TRUE(DescriptionTarget::TypeName("cpp:Management", name));
    EXPECT_EQ(name, (QualifiedName{ProjectTypes, "Management"}));
}

TEST(DescriptionTargetTest, OtherPrefixMapsToItsOwnUnboundNamespace)
{
    QualifiedName name;
    ASSERT_TRUE(DescriptionTarget::TypeName("dn:NetworkVideoTransmitter", name));
    EXPECT_EQ(name, (QualifiedName{Unbound + "/dn", "NetworkVideoTransmitter"}));
}

TEST(DescriptionTargetTest, TypeWithoutPrefixMapsToTheUnboundNamespace)
{
    QualifiedName name;
    ASSERT_TRUE(DescriptionTarget::TypeName("Management", name));
    EXPECT_EQ(name, (QualifiedName{Unbound, "Management"}));
}

TEST(DescriptionTargetTest, TypeThatIsNoQualifiedNameIsRefused)
{
    QualifiedName name;
    for (const char* text : {"", "two words", "a:b:c", ":Local", "cpp:", "1cpp:Management", "cpp:9"})
        EXPECT_FALSE(DescriptionTarget::TypeName(text, name)) << text;
}

TEST(DescriptionTargetTest, TypeTextGivesBackTheDescriptionSpelling)
{
    for (const char* text : {"cpp:Management", "dn:NetworkVideoTransmitter", "Management"}) {
        QualifiedName name;
        ASSERT_TRUE(DescriptionTarget::TypeName(text, name));
        EXPECT_EQ(DescriptionTarget::TypeText(name), text);
    }
    EXPECT_EQ(DescriptionTarget::TypeText({"urn:x", "Y"}), "{urn:x}Y");
    EXPECT_EQ(DescriptionTarget::TypeText({"", "Y"}), "Y");
}

} // namespace

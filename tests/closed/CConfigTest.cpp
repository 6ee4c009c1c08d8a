// SPDX-License-Identifier: Apache-2.0
#include <VpCfg/CConfig.h>

#include <KivTest/BadRecordFiles.h>
#include <KivTest/TemporaryDirectory.h>
#include "LoadTestHelpers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <sys/stat.h>

using KivTest::TemporaryDirectory;
using KivTest::WriteFile;
using VpCfg::CConfig;

namespace {

const std::string Declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

std::string Configuration(const std::string& body)
{
    return Declaration + "<configuration>\n" + body + "</configuration>\n";
}

std::string Services(const std::string& services)
{
    return "<services>" + services + "</services>";
}

class CConfigTest : public ::testing::Test
{
protected:
    /// Writes \p content as configuration.xml and loads it into config.
    bool Load(const std::string& content)
    {
        EXPECT_TRUE(WriteFile(File(), content));
        return config.LoadResources(directory.Path().c_str());
    }

    std::string File() const { return directory.Path() + "/configuration.xml"; }

    /// The only message of the last load, without the path and its colon.
    std::string OnlyFault() const { return ::OnlyFault(config.ErrorMessages(), File()); }

    void ExpectDefaults() const
    {
        EXPECT_STREQ(config.descriptionText, "");
        EXPECT_STREQ(config.timeZoneName, "Europe/Zurich");
        EXPECT_STREQ(config.computerName, "trxDefault");
        EXPECT_STREQ(config.formatVersion, "1.0");
        EXPECT_STREQ(config.owner, "nil");
        EXPECT_STREQ(config.siteLocation, "unspecified");
        EXPECT_STREQ(config.domainName, "localdomain");
        EXPECT_EQ(config.thresholdLow, 40u);
        EXPECT_EQ(config.thresholdHigh, 55u);
        EXPECT_STREQ(config.productPrefix, "TRX");
        EXPECT_EQ(config.serviceList[0u], nullptr);
        EXPECT_EQ(config.serviceList.Count(), 0u);
    }

    TemporaryDirectory directory;
    CConfig config;
};

const std::string FullFile = Configuration(
    "  <description>Control room wall, left</description>\n"
    "  <timeZone>America/New_York</timeZone>\n"
    "  <computerName>unit-1</computerName>\n"
    "  <formatVersion>2.0</formatVersion>\n"
    "  <owner>ops</owner>\n"
    "  <siteLocation>Hall 3</siteLocation>\n"
    "  <domainName>example.net</domainName>\n"
    "  <thresholdLow>10</thresholdLow>\n"
    "  <thresholdHigh>90</thresholdHigh>\n"
    "  <productPrefix>TRZ</productPrefix>\n"
    "  <services>\n"
    "    <service kind=\"0\" port=\"8080\"/>\n"
    "    <service kind=\"2\" port=\"554\"/>\n"
    "  </services>\n");

} // namespace

TEST_F(CConfigTest, DefaultConstructionGivesEveryDefault)
{
    ExpectDefaults();
    EXPECT_TRUE(config.ErrorMessages().empty());
}

TEST_F(CConfigTest, LoadReadsEveryField)
{
    ASSERT_TRUE(Load(FullFile)) << config.ErrorMessage();
    EXPECT_STREQ(config.descriptionText, "Control room wall, left");
    EXPECT_STREQ(config.timeZoneName, "America/New_York");
    EXPECT_STREQ(config.computerName, "unit-1");
    EXPECT_STREQ(config.formatVersion, "2.0");
    EXPECT_STREQ(config.owner, "ops");
    EXPECT_STREQ(config.siteLocation, "Hall 3");
    EXPECT_STREQ(config.domainName, "example.net");
    EXPECT_EQ(config.thresholdLow, 10u);
    EXPECT_EQ(config.thresholdHigh, 90u);
    EXPECT_STREQ(config.productPrefix, "TRZ");
    ASSERT_EQ(config.serviceList.Count(), 2u);
    ASSERT_NE(config.serviceList[0u], nullptr);
    EXPECT_EQ(config.serviceList[0u]->serviceKind, 0u);
    EXPECT_EQ(config.serviceList[0u]->servicePort, 8080u);
    ASSERT_NE(config.serviceList[1u], nullptr);
    EXPECT_EQ(config.serviceList[1u]->serviceKind, 2u);
    EXPECT_EQ(config.serviceList[1u]->servicePort, 554u);
    EXPECT_EQ(config.serviceList[2u], nullptr);
    EXPECT_TRUE(config.ErrorMessages().empty());
    EXPECT_EQ(config.ErrorMessage(), "");
}

TEST_F(CConfigTest, EmptyRootGivesEveryDefault)
{
    ASSERT_TRUE(Load("<configuration/>")) << config.ErrorMessage();
    ExpectDefaults();
}

TEST_F(CConfigTest, GoodFileReplacesTheRecordWhole)
{
    ASSERT_TRUE(Load(FullFile));
    ASSERT_TRUE(Load(Configuration("<computerName>unit-2</computerName>\n")));
    EXPECT_STREQ(config.computerName, "unit-2");
    // Nothing of the first file lingers: every other field is back at its default.
    EXPECT_STREQ(config.descriptionText, "");
    EXPECT_STREQ(config.timeZoneName, "Europe/Zurich");
    EXPECT_STREQ(config.owner, "nil");
    EXPECT_EQ(config.thresholdLow, 40u);
    EXPECT_EQ(config.serviceList.Count(), 0u);
    EXPECT_EQ(config.serviceList[0u], nullptr);
}

TEST_F(CConfigTest, BadFileKeepsTheRecordWhole)
{
    ASSERT_TRUE(Load(FullFile));
    const VpCfg::CServiceEntry* first = config.serviceList[0u];
    const char* computerName = config.computerName;
    // Good values before and after the fault must not be taken either.
    EXPECT_FALSE(Load(Configuration("<computerName>other</computerName><description>x</description>"
                                    "<services><service kind=\"1\" port=\"1\"/><service kind=\"0\" port=\"65536\"/>"
                                    "</services><owner>y</owner>")));
    EXPECT_EQ(config.computerName, computerName);
    EXPECT_STREQ(config.computerName, "unit-1");
    EXPECT_STREQ(config.descriptionText, "Control room wall, left");
    EXPECT_STREQ(config.owner, "ops");
    ASSERT_EQ(config.serviceList.Count(), 2u);
    EXPECT_EQ(config.serviceList[0u], first);
    EXPECT_EQ(first->servicePort, 8080u);
    EXPECT_FALSE(config.ErrorMessages().empty());
}

TEST_F(CConfigTest, ByteIdenticalFileKeepsRecordWithoutReparsing)
{
    ASSERT_TRUE(Load(FullFile));
    const VpCfg::CServiceEntry* first = config.serviceList[0u];
    const char* computerName = config.computerName;
    // A parse would build new entries and texts; the same bytes keep them,
    // also right after a failed load, whose messages go.
    for (const std::string& before : {FullFile, Configuration("<owner>&bad;</owner>")}) {
        Load(before);
        EXPECT_TRUE(Load(FullFile));
        EXPECT_TRUE(config.ErrorMessages().empty());
        EXPECT_EQ(config.serviceList[0u], first);
        EXPECT_EQ(config.computerName, computerName);
    }
}

TEST_F(CConfigTest, ChangedFileOfEqualSizeIsParsed)
{
    ASSERT_TRUE(Load(FullFile));
    std::string changed = FullFile;
    changed.replace(changed.find("unit-1"), 6, "unit-2");
    ASSERT_EQ(changed.size(), FullFile.size());
    EXPECT_TRUE(Load(changed));
    EXPECT_STREQ(config.computerName, "unit-2");
}

TEST_F(CConfigTest, BadFileBeforeAnyGoodOneKeepsTheDefaults)
{
    EXPECT_FALSE(Load(Configuration("<computerName>x</computerName><thresholdLow>-1</thresholdLow>")));
    ExpectDefaults();
}

TEST_F(CConfigTest, SuccessfulLoadClearsTheMessagesOfAFailedOne)
{
    EXPECT_FALSE(Load("<configuration>"));
    EXPECT_FALSE(config.ErrorMessages().empty());
    EXPECT_TRUE(Load("<configuration/>"));
    EXPECT_TRUE(config.ErrorMessages().empty());
}

TEST_F(CConfigTest, MissingFileFailsWithCannotOpen)
{
    EXPECT_FALSE(config.LoadResources(directory.Path().c_str()));
    ASSERT_EQ(config.ErrorMessages().size(), 1u);
    EXPECT_EQ(config.ErrorMessages()[0], "cannot open " + File() + ": No such file or directory");
    ExpectDefaults();
}

TEST_F(CConfigTest, MissingDirectoryFailsWithCannotOpen)
{
    std::string missing = directory.Path() + "/absent";
    EXPECT_FALSE(config.LoadResources(missing.c_str()));
    EXPECT_EQ(config.ErrorMessage(), "cannot open " + missing + "/configuration.xml: No such file or directory");
}

TEST_F(CConfigTest, DirectoryInPlaceOfTheFileFails)
{
    ASSERT_EQ(mkdir(File().c_str(), 0755), 0);
    EXPECT_FALSE(config.LoadResources(directory.Path().c_str()));
    EXPECT_EQ(config.ErrorMessage(), File() + ": not a regular file");
}

TEST_F(CConfigTest, NullPathFails)
{
    EXPECT_FALSE(config.LoadResources(nullptr));
    EXPECT_EQ(config.ErrorMessage(), "no configuration directory given");
    ExpectDefaults();
}

TEST_F(CConfigTest, TextIsTakenExactlyWithEntitiesAndCdataDecoded)
{
    ASSERT_TRUE(Load(Configuration("<description>  a &lt;b&gt; &amp; &quot;c&quot; &apos;d&apos; "
                                   "<![CDATA[<e> & ]]>&#233;&#x1F600; </description>"
                                   "<computerName>UNIT\tOne</computerName>")))
        << config.ErrorMessage();
    EXPECT_STREQ(config.descriptionText, "  a <b> & \"c\" 'd' <e> & \xC3\xA9\xF0\x9F\x98\x80 ");
    EXPECT_STREQ(config.computerName, "UNIT\tOne");
}

TEST_F(CConfigTest, WhitespaceOnlyTextIsKept)
{
    ASSERT_TRUE(Load(Configuration("<computerName>   </computerName><owner>\n</owner>")));
    EXPECT_STREQ(config.computerName, "   ");
    EXPECT_STREQ(config.owner, "\n");
}

TEST_F(CConfigTest, PresentButEmptyTextIsEmptyNotDefault)
{
    ASSERT_TRUE(Load(Configuration("<timeZone></timeZone><computerName/>")));
    EXPECT_STREQ(config.timeZoneName, "");
    EXPECT_STREQ(config.computerName, "");
}

TEST_F(CConfigTest, CommentsInsideTextAreLeftOut)
{
    ASSERT_TRUE(Load(Configuration("<computerName>unit<!-- a comment -->-1</computerName>")));
    EXPECT_STREQ(config.computerName, "unit-1");
}

TEST_F(CConfigTest, LineEndsAreNormalisedAsXmlRequires)
{
    ASSERT_TRUE(Load("<configuration>\r\n<description>a\r\nb\rc&#13;</description>\r\n</configuration>\r\n"));
    EXPECT_STREQ(config.descriptionText, "a\nb\nc\r");
}

TEST_F(CConfigTest, ByteOrderMarkIsAccepted)
{
    ASSERT_TRUE(Load("\xEF\xBB\xBF" + Configuration("<owner>o</owner>"))) << config.ErrorMessage();
    EXPECT_STREQ(config.owner, "o");
}

TEST_F(CConfigTest, FileWithoutDeclarationIsAccepted)
{
    ASSERT_TRUE(Load("<configuration><owner>o</owner></configuration>"));
    EXPECT_STREQ(config.owner, "o");
}

TEST_F(CConfigTest, UnknownElementsAndAttributesAreIgnored)
{
    ASSERT_TRUE(Load(Configuration("<future version=\"3\"><deep><deeper>text</deeper></deep></future>"
                                   "<computerName lang=\"en\">unit-1</computerName>"
                                   "<services count=\"1\"><service kind=\"0\" port=\"80\" protocol=\"tcp\"/>"
                                   "<other kind=\"x\"/></services>")))
        << config.ErrorMessage();
    EXPECT_STREQ(config.computerName, "unit-1");
    ASSERT_EQ(config.serviceList.Count(), 1u);
    EXPECT_EQ(config.serviceList[0u]->servicePort, 80u);
}

TEST_F(CConfigTest, ServicesKeepDocumentOrderAndDuplicates)
{
    ASSERT_TRUE(Load(Configuration(Services("<service kind=\"3\" port=\"3\"/><service kind=\"0\" port=\"1\"/>"
                                            "<service kind=\"0\" port=\"2\"/><service kind=\"3\" port=\"3\"/>"))));
    ASSERT_EQ(config.serviceList.Count(), 4u);
    EXPECT_EQ(config.serviceList[0u]->serviceKind, 3u);
    EXPECT_EQ(config.serviceList[1u]->servicePort, 1u);
    EXPECT_EQ(config.serviceList[2u]->servicePort, 2u);
    EXPECT_EQ(config.serviceList[3u]->servicePort, 3u);
}

TEST_F(CConfigTest, PortAtSixteenBitsPassesAndOneMoreFails)
{
    ASSERT_TRUE(Load(Configuration(Services("<service kind=\"0\" port=\"65535\"/>"))));
    EXPECT_EQ(config.serviceList[0u]->servicePort, 65535u);
    ASSERT_TRUE(Load(Configuration(Services("<service kind=\"0\" port=\"0\"/>"))));
    EXPECT_EQ(config.serviceList[0u]->servicePort, 0u);
    EXPECT_FALSE(Load(Configuration(Services("<service kind=\"0\" port=\"65536\"/>"))));
    EXPECT_EQ(OnlyFault(), "3:11: attribute port of service: 65536 is out of range 0..65535");
}

TEST_F(CConfigTest, KindAtThirtyTwoBitsPassesAndOneMoreFails)
{
    ASSERT_TRUE(Load(Configuration(Services("<service kind=\"4294967295\" port=\"1\"/>"))));
    EXPECT_EQ(config.serviceList[0u]->serviceKind, 4294967295u);
    EXPECT_FALSE(Load(Configuration(Services("<service kind=\"4294967296\" port=\"1\"/>"))));
    EXPECT_EQ(OnlyFault(), "3:11: attribute kind of service: 4294967296 is out of range 0..4294967295");
}

TEST_F(CConfigTest, HugeNumbersAreOutOfRangeNotWrappedAround)
{
    EXPECT_FALSE(Load(Configuration(Services("<service kind=\"18446744073709551617\" port=\"1\"/>"))));
    EXPECT_NE(OnlyFault().find("18446744073709551617 is out of range 0..4294967295"), std::string::npos);
}

TEST_F(CConfigTest, LeadingZerosAreDecimalDigits)
{
    ASSERT_TRUE(Load(Configuration(Services("<service kind=\"000\" port=\"00080\"/>"))));
    EXPECT_EQ(config.serviceList[0u]->serviceKind, 0u);
    EXPECT_EQ(config.serviceList[0u]->servicePort, 80u);
}

TEST_F(CConfigTest, SignsSpacesHexAndEmptyNumbersFail)
{
    const char* bad[] = {"+80", "-80", " 80", "80 ", "8 0", "0x50", "50h", "", "1e3", "８０", "80.0", "&#32;80"};
    for (const char* port : bad) {
        EXPECT_FALSE(Load(Configuration(Services(std::string("<service kind=\"0\" port=\"") + port + "\"/>"))))
            << "port \"" << port << "\"";
        EXPECT_EQ(config.serviceList.Count(), 0u);
        EXPECT_NE(config.ErrorMessage().find("attribute port of service: "), std::string::npos)
            << config.ErrorMessage();
    }
    EXPECT_FALSE(Load(Configuration("<thresholdHigh>0x37</thresholdHigh>")));
    EXPECT_EQ(OnlyFault(), "3:1: element thresholdHigh: \"0x37\" is not an unsigned decimal number");
    EXPECT_FALSE(Load(Configuration("<thresholdHigh></thresholdHigh>")));
    EXPECT_EQ(OnlyFault(), "3:1: element thresholdHigh: empty value is not a number");
}

TEST_F(CConfigTest, ThresholdsReadAsThirtyTwoBitNumbers)
{
    ASSERT_TRUE(Load(Configuration("<thresholdLow>0</thresholdLow><thresholdHigh>4294967295</thresholdHigh>")));
    EXPECT_EQ(config.thresholdLow, 0u);
    EXPECT_EQ(config.thresholdHigh, 4294967295u);
    EXPECT_FALSE(Load(Configuration("<thresholdLow>4294967296</thresholdLow>")));
    EXPECT_EQ(OnlyFault(), "3:1: element thresholdLow: 4294967296 is out of range 0..4294967295");
}

TEST_F(CConfigTest, ServiceWithoutKindOrPortFails)
{
    EXPECT_FALSE(Load(Configuration(Services("<service port=\"80\"/>"))));
    EXPECT_EQ(OnlyFault(), "3:11: attribute kind of service is missing");
    EXPECT_FALSE(Load(Configuration(Services("<service kind=\"0\"/>"))));
    EXPECT_EQ(OnlyFault(), "3:11: attribute port of service is missing");
}

TEST_F(CConfigTest, EverySingularElementGivenTwiceFails)
{
    const char* singular[] = {"description",  "timeZone",   "computerName", "formatVersion",
                              "owner",        "siteLocation", "domainName", "productPrefix"};
    for (const char* name : singular) {
        std::string element = std::string("<") + name + ">x</" + name + ">";
        EXPECT_FALSE(Load(Configuration(element + "\n" + element + "\n"))) << name;
        EXPECT_EQ(OnlyFault(), std::string("4:1: element ") + name +
                                   " of configuration is given twice (first at 3:1)");
    }
    for (const char* name : {"thresholdLow", "thresholdHigh"}) {
        std::string element = std::string("<") + name + ">1</" + name + ">";
        EXPECT_FALSE(Load(Configuration(element + element))) << name;
        EXPECT_NE(OnlyFault().find("is given twice"), std::string::npos);
    }
    EXPECT_FALSE(Load(Configuration("<services/>\n<services/>\n")));
    EXPECT_EQ(OnlyFault(), "4:1: element services of configuration is given twice (first at 3:1)");
}

TEST_F(CConfigTest, TextElementHoldingChildrenFails)
{
    EXPECT_FALSE(Load(Configuration("<timeZone><zone>UTC</zone></timeZone>")));
    EXPECT_EQ(OnlyFault(), "3:11: element timeZone must hold text, not the element zone");
    EXPECT_FALSE(Load(Configuration("<thresholdLow>4<x/>0</thresholdLow>")));
    EXPECT_EQ(OnlyFault(), "3:16: element thresholdLow must hold text, not the element x");
}

TEST_F(CConfigTest, InvalidUtf8Fails)
{
    // A lone continuation byte, an overlong slash, an encoded surrogate, a
    // truncated sequence and a value beyond U+10FFFF.
    const char* bad[] = {"\x80", "\xC0\xAF", "\xED\xA0\x80", "\xE2\x82", "\xF4\x90\x80\x80", "\xFF"};
    for (const char* bytes : bad) {
        EXPECT_FALSE(Load(Configuration(std::string("<owner>a") + bytes + "b</owner>")));
        std::string fault = OnlyFault();
        EXPECT_EQ(fault.compare(0, 5, "3:9: "), 0) << fault;
        EXPECT_NE(fault.find("UTF-8"), std::string::npos) << fault;
    }
}

TEST_F(CConfigTest, CharactersXmlForbidsFail)
{
    EXPECT_FALSE(Load(Configuration(std::string("<owner>a\x1F</owner>"))));
    EXPECT_EQ(OnlyFault(), "3:9: character U+001F is not allowed in XML");
    EXPECT_FALSE(Load(Configuration("<owner>a\xEF\xBF\xBE</owner>")));
    EXPECT_EQ(OnlyFault(), "3:9: character U+FFFE is not allowed in XML");
    EXPECT_FALSE(Load(Configuration(std::string("<owner>a") + '\0' + "</owner>")));
    EXPECT_EQ(OnlyFault(), "3:9: character U+0000 is not allowed in XML");
    EXPECT_FALSE(Load(Configuration("<owner>&#0;</owner>")));
    EXPECT_EQ(OnlyFault(), "3:8: character reference &#0; stands for U+0000, which XML does not allow");
    EXPECT_FALSE(Load(Configuration("<owner>&#xFFFF;</owner>")));
    EXPECT_EQ(OnlyFault(), "3:8: character reference &#xFFFF; stands for U+FFFF, which XML does not allow");
    EXPECT_FALSE(Load(Configuration("<owner>&#xD800;</owner>")));
    EXPECT_EQ(OnlyFault(), "3:8: character reference &#xD800; stands for U+D800, which XML does not allow");
    EXPECT_FALSE(Load(Configuration(Services("<service kind=\"&#1;\" port=\"1\"/>"))));
    EXPECT_NE(OnlyFault().find("&#1; stands for U+0001"), std::string::npos);
}

TEST_F(CConfigTest, AllowedCharactersAtTheEdgesOfTheRangesPass)
{
    ASSERT_TRUE(Load(Configuration("<owner>\t \xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBD\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"
                                   "&#x10FFFF;&#9;</owner>")))
        << config.ErrorMessage();
    EXPECT_STREQ(config.owner, "\t \xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBD\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"
                               "\xF4\x8F\xBF\xBF\t");
}

TEST_F(CConfigTest, MalformedReferencesAndMarkupFail)
{
    EXPECT_FALSE(Load(Configuration("<owner>a & b</owner>")));
    EXPECT_EQ(OnlyFault(), "3:10: '&' does not start a reference; write &amp; for a literal ampersand");
    EXPECT_FALSE(Load(Configuration("<owner>&#x;</owner>")));
    EXPECT_EQ(OnlyFault(), "3:8: character reference &#x; has no digits");
    EXPECT_FALSE(Load(Configuration("<owner>&#12a;</owner>")));
    EXPECT_EQ(OnlyFault(), "3:8: character reference &#12a; is malformed");
    EXPECT_FALSE(Load(Configuration("<owner>&#x110000;</owner>")));
    EXPECT_EQ(OnlyFault(), "3:8: character reference &#x110000; is beyond U+10FFFF");
    EXPECT_FALSE(Load(Configuration("<owner>a]]>b</owner>")));
    EXPECT_EQ(OnlyFault(), "3:9: ']]>' is not allowed in text; write ]]&gt;");
    EXPECT_FALSE(Load(Configuration(Services("<service kind=\"0\" port=\"1<2\"/>"))));
    EXPECT_EQ(OnlyFault(), "3:36: '<' is not allowed in an attribute value; write &lt;");
    EXPECT_FALSE(Load("text<configuration/>"));
    EXPECT_EQ(OnlyFault(), "1:1: text outside the root element");
    EXPECT_FALSE(Load("<configuration/>\n<configuration/>"));
    EXPECT_EQ(OnlyFault(), "2:1: a second element after the root element");
    EXPECT_FALSE(Load("<configuration/>x"));
    EXPECT_EQ(OnlyFault(), "1:17: text outside the root element");
}

TEST_F(CConfigTest, CommentsAndProcessingInstructionsAroundTheRootAreAccepted)
{
    ASSERT_TRUE(Load(Declaration + "<!-- a & b -->\n<?tool x?>\n<configuration><owner>o</owner></configuration>\n"
                                    "<!-- end -->\n"))
        << config.ErrorMessage();
    EXPECT_STREQ(config.owner, "o");
}

TEST_F(CConfigTest, DeclarationOfAnotherEncodingOrVersionFails)
{
    EXPECT_FALSE(Load("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><configuration/>"));
    EXPECT_EQ(OnlyFault(), "1:1: encoding \"ISO-8859-1\" is not supported; the file must be UTF-8");
    EXPECT_FALSE(Load("<?xml version=\"1.1\"?><configuration/>"));
    EXPECT_EQ(OnlyFault(), "1:1: XML version \"1.1\" is not supported; the file must be XML 1.0");
    EXPECT_TRUE(Load("<?xml version=\"1.0\" encoding=\"utf-8\"?><configuration/>")) << config.ErrorMessage();
}

TEST_F(CConfigTest, DocumentTypeWithEntitiesIsRefusedBeforeAnyEntityIsExpanded)
{
    std::string laughs = "<!DOCTYPE configuration [\n<!ENTITY a \"aaaaaaaaaa\">\n";
    for (char entity = 'b'; entity <= 'j'; ++entity) {
        std::string previous(1, static_cast<char>(entity - 1));
        laughs += std::string("<!ENTITY ") + entity + " \"";
        for (int copy = 0; copy < 10; ++copy)
            laughs += "&" + previous + ";";
        laughs += "\">\n";
    }
    laughs += "]>\n<configuration><owner>&j;</owner></configuration>\n";
    EXPECT_FALSE(Load(laughs));
    EXPECT_EQ(OnlyFault(), "1:1: document type declarations are not supported");
    EXPECT_FALSE(Load("<!-- c -->\n<!DOCTYPE configuration SYSTEM \"/etc/passwd\"><configuration/>"));
    EXPECT_EQ(OnlyFault(), "2:1: document type declarations are not supported");
}

TEST_F(CConfigTest, WrongRootFails)
{
    EXPECT_FALSE(Load("<status/>"));
    EXPECT_EQ(OnlyFault(), "1:1: root element is status, expected configuration");
}

TEST_F(CConfigTest, EmptyFileFails)
{
    EXPECT_FALSE(Load(""));
    EXPECT_EQ(OnlyFault(), "1:1: malformed XML: no document element found");
}

TEST_F(CConfigTest, FileAtOneMebibytePassesAndOneByteMoreFails)
{
    std::string head = "<configuration><owner>o</owner><!--";
    std::string tail = "--></configuration>";
    std::string file = head + std::string(1048576 - head.size() - tail.size(), 'x') + tail;
    ASSERT_EQ(file.size(), 1048576u);
    EXPECT_TRUE(Load(file)) << config.ErrorMessage();
    EXPECT_STREQ(config.owner, "o");
    file.insert(head.size(), "x");
    EXPECT_FALSE(Load(file));
    EXPECT_EQ(config.ErrorMessage(), File() + ": file of 1048577 bytes is larger than the limit of 1048576 bytes");
}

TEST_F(CConfigTest, TwoHundredFiftySixServicesPassAndOneMoreFails)
{
    std::string services;
    for (int index = 0; index < 256; ++index)
        services += "<service kind=\"1\" port=\"" + std::to_string(index) + "\"/>\n";
    ASSERT_TRUE(Load(Configuration(Services("\n" + services))));
    EXPECT_EQ(config.serviceList.Count(), 256u);
    EXPECT_EQ(config.serviceList[255u]->servicePort, 255u);
    EXPECT_EQ(config.serviceList[256u], nullptr);
    EXPECT_FALSE(Load(Configuration(Services("\n" + services + "<service kind=\"1\" port=\"256\"/>\n"))));
    EXPECT_EQ(OnlyFault(), "260:1: more than 256 service elements in services");
    EXPECT_EQ(config.serviceList.Count(), 256u);
}

TEST_F(CConfigTest, TextOfFourKibibytesPassesAndOneByteMoreFails)
{
    // Bytes are counted after decoding: "&amp;" is one byte, "é" two.
    std::string text = std::string(4094, 'a') + "\xC3\xA9";
    ASSERT_TRUE(Load(Configuration("<description>" + text + "</description>")));
    EXPECT_EQ(std::strlen(config.descriptionText), 4096u);
    ASSERT_TRUE(Load(Configuration("<description>" + std::string(4095, 'a') + "&amp;</description>")));
    EXPECT_EQ(std::strlen(config.descriptionText), 4096u);
    EXPECT_FALSE(Load(Configuration("<description>" + text + "b</description>")));
    EXPECT_EQ(OnlyFault(), "3:1: text of element description is longer than the limit of 4096 bytes");
    EXPECT_FALSE(Load(Configuration("<computerName>" + std::string(2048, 'a') + "<![CDATA[" +
                                    std::string(2049, 'b') + "]]></computerName>")));
    EXPECT_EQ(OnlyFault(), "3:1: text of element computerName is longer than the limit of 4096 bytes");
}

TEST_F(CConfigTest, EveryFaultOfAFileIsListedInFileOrder)
{
    EXPECT_FALSE(Load(Configuration("<timeZone>a</timeZone>\n"
                                    "<services>\n"
                                    "<service kind=\"x\" port=\"1\"/>\n"
                                    "<service kind=\"1\"/>\n"
                                    "</services>\n"
                                    "<timeZone>b</timeZone>\n")));
    ASSERT_EQ(config.ErrorMessages().size(), 3u) << config.ErrorMessage();
    EXPECT_EQ(config.ErrorMessages()[0], File() + ":5:1: attribute kind of service: \"x\" is not an unsigned decimal number");
    EXPECT_EQ(config.ErrorMessages()[1], File() + ":6:1: attribute port of service is missing");
    EXPECT_EQ(config.ErrorMessages()[2], File() + ":8:1: element timeZone of configuration is given twice (first at 3:1)");
    EXPECT_EQ(config.ErrorMessage(),
              config.ErrorMessages()[0] + "\n" + config.ErrorMessages()[1] + "\n" + config.ErrorMessages()[2]);
}

TEST_F(CConfigTest, ColumnsCountCharactersNotBytes)
{
    EXPECT_FALSE(Load(Configuration("<owner>\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80&bad;</owner>")));
    EXPECT_EQ(OnlyFault(), "3:11: unknown entity reference &bad;");
}

TEST_F(CConfigTest, LonelyCarriageReturnsCountAsLineEnds)
{
    EXPECT_FALSE(Load("<configuration>\r<owner>\r\n&bad;</owner></configuration>"));
    EXPECT_EQ(OnlyFault(), "3:1: unknown entity reference &bad;");
}

TEST_F(CConfigTest, SampleFaultsAreReportedWithFileLineAndColumn)
{
    for (const KivTest::BadRecordFile& sample : KivTest::BadRecordFiles()) {
        if (sample.kind != KivTest::BadRecordFile::Configuration)
            continue;
        EXPECT_FALSE(Load(sample.content)) << sample.fault;
        ASSERT_EQ(config.ErrorMessages().size(), 1u) << sample.fault << ": " << config.ErrorMessage();
        EXPECT_EQ(config.ErrorMessages()[0], File() + ":" + sample.expected) << sample.fault;
        ExpectDefaults();
    }
}

TEST_F(CConfigTest, AtMostAHundredFaultsAreListedThenOneLineSaysMoreWereLeftOut)
{
    std::string body;
    for (int index = 0; index < 5000; ++index)
        body += "<timeZone>a</timeZone>";
    EXPECT_FALSE(Load(Configuration(body)));
    ASSERT_EQ(config.ErrorMessages().size(), 101u);
    EXPECT_EQ(config.ErrorMessages()[0], File() + ":3:23: element timeZone of configuration is given twice (first at 3:1)");
    EXPECT_EQ(config.ErrorMessages()[99], File() + ":3:2201: element timeZone of configuration is given twice (first at 3:1)");
    EXPECT_EQ(config.ErrorMessages()[100], File() + ": further faults are not listed");
}

// SPDX-License-Identifier: Apache-2.0
// Round trip of the description file: random texts of every character XML
// can carry, including those that need escaping, must read back exactly,
// through our own reader (DescriptionReader, libexpat) and through two
// independent ones: pugixml and python3's xml.etree.

#include <KivDiscoveryClient/Discovery.h>

#include <KivDiscoveryClient/DescriptionReader.h>
#include <KivTest/TemporaryDirectory.h>
#include <KivTest/WorkingDirectoryGuard.h>

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using KivDiscoveryClient::DescriptionReader;
using KivDiscoveryClient::Discovery;
using KivTest::TemporaryDirectory;
using KivTest::WriteFile;

namespace {

const int Samples = 1000;

struct Sample
{
    std::string name;
    std::vector<std::string> types;
    std::vector<std::string> scopes;
    unsigned short port = 0;
    std::string metadata;
};

/// Makes texts from pieces that cover the escaping cases: markup characters,
/// both quotes, tab, line feed, carriage return (alone and before a line
/// feed), "]]>", and characters of two, three and four bytes at the edges of
/// the allowed ranges.
class TextSource
{
public:
    explicit TextSource(std::uint32_t seed) : engine(seed) {}

    std::string Text(std::size_t longest, bool forFileName)
    {
        static const std::vector<std::string> pieces = {
            "a", "Z", "0", " ", "  ", "\t", "\n", "\r", "\r\n", "\"", "'", "&", "<", ">", "]]>", "]]", "&amp;",
            "&#13;", "<![CDATA[", "-->", "/", ".", "=", "\xC3\xA9", "\xC2\x80", "\xDF\xBF", "\xE4\xB8\xAD",
            "\xED\x9F\xBF", "\xEE\x80\x80", "\xEF\xBF\xBD", "\xF0\x9F\x98\x80", "\xF0\x90\x80\x80",
            "\xF4\x8F\xBF\xBF", "\x7F"};
        std::uniform_int_distribution<std::size_t> length(0, longest);
        std::uniform_int_distribution<std::size_t> piece(0, pieces.size() - 1);
        std::string text;
        for (std::size_t count = length(engine); count > 0; --count) {
            const std::string& chosen = pieces[piece(engine)];
            if (forFileName && chosen.find('/') != std::string::npos)
                continue;
            text += chosen;
        }
        return text;
    }

    Sample Make(int index)
    {
        Sample sample;
        // A distinct prefix keeps the file names apart; the rest is random.
        sample.name = "s" + std::to_string(index) + Text(30, true);
        std::uniform_int_distribution<int> count(0, 3);
        for (int item = count(engine); item > 0; --item)
            sample.types.push_back(Text(20, false));
        for (int item = count(engine); item > 0; --item)
            sample.scopes.push_back(Text(20, false));
        sample.port = static_cast<unsigned short>(std::uniform_int_distribution<int>(0, 65535)(engine));
        sample.metadata = Text(200, false);
        return sample;
    }

private:
    std::mt19937 engine;
};

std::string Hex(const std::string& text)
{
    static const char digits[] = "0123456789abcdef";
    std::string hex = "x";
    for (unsigned char byte : text) {
        hex += digits[byte >> 4];
        hex += digits[byte & 0x0F];
    }
    return hex;
}

const char* const PythonChecker = R"PY(
import sys
import xml.etree.ElementTree as ElementTree

def text(field):
    return bytes.fromhex(field[1:]).decode("utf-8")

checked = 0
wrong = 0
for line in open(sys.argv[1], encoding="ascii"):
    fields = line.split()
    path, name, port, metadata = text(fields[0]), text(fields[1]), int(fields[2]), text(fields[3])
    type_count = int(fields[4])
    types = [text(field) for field in fields[5:5 + type_count]]
    scope_count = int(fields[5 + type_count])
    scopes = [text(field) for field in fields[6 + type_count:6 + type_count + scope_count]]
    root = ElementTree.parse(path).getroot()
    got = (root.tag, root.get("name"), [element.text or "" for element in root.findall("type")],
           [element.text or "" for element in root.findall("scope")], int(root.find("port").text),
           root.find("metadata").text or "")
    wanted = ("service", name, types, scopes, port, metadata)
    checked += 1
    if got != wanted:
        wrong += 1
        if wrong <= 5:
            print("mismatch in", repr(path), "got", repr(got), "wanted", repr(wanted))
print("checked", checked, "wrong", wrong)
sys.exit(1 if wrong or checked == 0 else 0)
)PY";

class DiscoveryRoundTripTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TextSource source(20240501);
        for (int index = 0; index < Samples; ++index)
            samples.push_back(source.Make(index));
    }

    bool Write(const Sample& sample)
    {
        Discovery description(sample.name);
        for (const std::string& type : sample.types)
            description.AddType(type);
        for (const std::string& scope : sample.scopes)
            description.AddScope(scope);
        description.SetPort(sample.port);
        description.SetMetaData(sample.metadata);
        bool written = description.WriteToFile();
        EXPECT_TRUE(written) << description.ErrorMessage();
        return written;
    }

    TemporaryDirectory directory;
    KivTest::WorkingDirectoryGuard enter{directory.Path()};
    std::vector<Sample> samples;
};

} // namespace

TEST_F(DiscoveryRoundTripTest, RandomTextsReadBackExactlyThroughDescriptionReader)
{
    int checked = 0;
    for (const Sample& sample : samples) {
        ASSERT_TRUE(Write(sample));
        DescriptionReader reader;
        ASSERT_TRUE(reader.Load((directory.Path() + "/" + sample.name + ".xml").c_str())) << reader.ErrorMessage();
        EXPECT_EQ(reader.Name(), sample.name);
        EXPECT_EQ(reader.Types(), sample.types);
        EXPECT_EQ(reader.Scopes(), sample.scopes);
        EXPECT_EQ(reader.Port(), sample.port);
        EXPECT_EQ(reader.MetaData(), sample.metadata);
        ++checked;
    }
    EXPECT_EQ(checked, Samples);
}

TEST_F(DiscoveryRoundTripTest, RandomTextsReadBackExactlyThroughPugixml)
{
    int checked = 0;
    for (const Sample& sample : samples) {
        ASSERT_TRUE(Write(sample));
        std::string path = directory.Path() + "/" + sample.name + ".xml";
        pugi::xml_document document;
        // Whitespace-only texts are texts too.
        pugi::xml_parse_result parsed = document.load_file(path.c_str(), pugi::parse_default | pugi::parse_ws_pcdata);
        ASSERT_TRUE(parsed) << path << ": " << parsed.description();
        pugi::xml_node service = document.child("service");
        ASSERT_TRUE(service) << path;
        std::vector<std::string> types;
        for (pugi::xml_node type : service.children("type"))
            types.push_back(type.child_value());
        std::vector<std::string> scopes;
        for (pugi::xml_node scope : service.children("scope"))
            scopes.push_back(scope.child_value());
        EXPECT_EQ(service.attribute("name").value(), sample.name);
        EXPECT_EQ(types, sample.types);
        EXPECT_EQ(scopes, sample.scopes);
        EXPECT_EQ(service.child("port").child_value(), std::to_string(sample.port));
        EXPECT_EQ(service.child("metadata").child_value(), sample.metadata);
        ++checked;
    }
    EXPECT_EQ(checked, Samples);
}

TEST_F(DiscoveryRoundTripTest, RandomTextsReadBackExactlyThroughPythonElementTree)
{
    if (std::system("python3 -c 'import xml.etree.ElementTree' >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "python3 with xml.etree is not available";
    std::string manifest;
    for (const Sample& sample : samples) {
        ASSERT_TRUE(Write(sample));
        manifest += Hex(directory.Path() + "/" + sample.name + ".xml") + " " + Hex(sample.name) + " " +
                    std::to_string(sample.port) + " " + Hex(sample.metadata) + " " +
                    std::to_string(sample.types.size());
        for (const std::string& type : sample.types)
            manifest += " " + Hex(type);
        manifest += " " + std::to_string(sample.scopes.size());
        for (const std::string& scope : sample.scopes)
            manifest += " " + Hex(scope);
        manifest += "\n";
    }
    // The manifest and the script live outside the written directory's names.
    std::string manifestFile = directory.Path() + "/manifest.txt";
    std::string scriptFile = directory.Path() + "/check.py";
    ASSERT_TRUE(WriteFile(manifestFile, manifest));
    ASSERT_TRUE(WriteFile(scriptFile, PythonChecker));
    std::string command = "python3 '" + scriptFile + "' '" + manifestFile + "' 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    std::string output;
    char buffer[4096];
    std::size_t count;
    while ((count = fread(buffer, 1, sizeof buffer, pipe)) > 0)
        output.append(buffer, count);
    int status = pclose(pipe);
    ASSERT_TRUE(WIFEXITED(status)) << output;
    EXPECT_EQ(WEXITSTATUS(status), 0) << output;
    EXPECT_NE(output.find("checked " + std::to_string(Samples) + " wrong 0"), std::string::npos) << output;
}

TEST_F(DiscoveryRoundTripTest, SamplesCoverEveryCharacterThatNeedsEscaping)
{
    std::string all;
    for (const Sample& sample : samples)
        all += sample.name + sample.metadata;
    for (const char* needed : {"\r", "\r\n", "\t", "\n", "\"", "'", "&", "<", ">", "]]>"})
        EXPECT_NE(all.find(needed), std::string::npos) << "no sample holds " << needed;
}

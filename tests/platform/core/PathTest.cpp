// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/Path.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>

#include <gtest/gtest.h>

#include <ostream>
#include <string>

using namespace KivPlr;

namespace {

// A path that keeps backslash style, as a class built on Path may.
class BackslashPath : public Path
{
public:
    explicit BackslashPath(const std::string& text) : Path(BackslashStyle) { SetPath(text); }
    using Path::operator=;
};

// A slash-style path holding \p text exactly as given, without normalisation:
// MakeAbsolute of "." takes its base verbatim and appends nothing. Mixed
// separators reach a path this way (or by assignment from a backslash path).
Path VerbatimPath(const std::string& text)
{
    Path path(".");
    path.MakeAbsolute(text);
    return path;
}

std::string FileOf(const Path& path)
{
    std::string file = "unchanged";
    path.GetFile(file);
    return file;
}

std::string DirectoryOf(const Path& path)
{
    std::string directory = "unchanged";
    path.GetDirectory(directory);
    return directory;
}

std::string Absolute(Path path, const std::string& base)
{
    path.MakeAbsolute(base);
    return path.GetPath();
}

} // namespace

// --- Construction and normalisation ---------------------------------------

TEST(PathTest, DefaultPathIsEmptyWithSlashStyle)
{
    Path path;
    EXPECT_STREQ(path.GetPath(), "");
    EXPECT_EQ(path.GetStyle(), Path::SlashStyle);
    EXPECT_FALSE(path.IsAbsolute());
}

TEST(PathTest, ConstructorsSetSlashStyle)
{
    EXPECT_EQ(Path("a\\b").GetStyle(), Path::SlashStyle);
    EXPECT_EQ(Path(std::string("a\\b")).GetStyle(), Path::SlashStyle);
}

TEST(PathTest, WindowsStylePathGetsForwardSlashes)
{
    Path path("C:\\dir\\file.txt");
    EXPECT_STREQ(path.GetPath(), "C:/dir/file.txt");
    EXPECT_EQ(FileOf(path), "file.txt");
    EXPECT_EQ(DirectoryOf(path), "C:/dir");
}

TEST(PathTest, BackslashBecomesSlash)
{
    EXPECT_STREQ(Path("a\\b").GetPath(), "a/b");
}

TEST(PathTest, MixedSeparatorPairCollapsesToOne)
{
    EXPECT_STREQ(Path("a/\\b").GetPath(), "a/b");
    EXPECT_STREQ(Path("a\\/b").GetPath(), "a/b");
}

TEST(PathTest, DoubledSlashStays)
{
    EXPECT_STREQ(Path("a//b").GetPath(), "a//b");
}

TEST(PathTest, StringAndCharacterConstructorsAgree)
{
    EXPECT_STREQ(Path(std::string("x\\/y\\z")).GetPath(), Path("x\\/y\\z").GetPath());
}

TEST(PathTest, NullTextGivesEmptyPath)
{
    const char* none = nullptr;
    Path path(none);
    EXPECT_STREQ(path.GetPath(), "");
}

TEST(PathTest, DotSegmentsAreNotTouchedByNormalisation)
{
    EXPECT_STREQ(Path("./x\\..\\y").GetPath(), "./x/../y");
}

struct NormalisationCase
{
    const char* text;
    const char* slashResult;
    const char* backslashResult;
};

std::ostream& operator<<(std::ostream& stream, const NormalisationCase& entry)
{
    return stream << '"' << entry.text << '"';
}

class PathNormalisationTest : public ::testing::TestWithParam<NormalisationCase>
{
};

TEST_P(PathNormalisationTest, NormalisesToTheStyle)
{
    const NormalisationCase& entry = GetParam();
    EXPECT_EQ(std::string(Path(entry.text).GetPath()), entry.slashResult);
    EXPECT_EQ(std::string(BackslashPath(entry.text).GetPath()), entry.backslashResult);
}

// Worked by hand: pairs "/\" collapse first (the search resumes where the
// replacement went, so runs collapse), then pairs "\/", then single
// separators of the other kind are turned round.
INSTANTIATE_TEST_SUITE_P(
    HandWorked, PathNormalisationTest,
    ::testing::Values(NormalisationCase{"", "", ""},
                      NormalisationCase{"/", "/", "\\"},
                      NormalisationCase{"\\", "/", "\\"},
                      NormalisationCase{"a/b", "a/b", "a\\b"},
                      NormalisationCase{"a\\b", "a/b", "a\\b"},
                      NormalisationCase{"a/\\b", "a/b", "a\\b"},
                      NormalisationCase{"a\\/b", "a/b", "a\\b"},
                      NormalisationCase{"a//b", "a//b", "a\\\\b"},
                      NormalisationCase{"a\\\\b", "a//b", "a\\\\b"},
                      // a / \ \ b: in slash style the pair at 1 collapses twice
                      // over; in backslash style the first pair leaves two backslashes.
                      NormalisationCase{"a/\\\\b", "a/b", "a\\\\b"},
                      // a / \ / \ b: pairs at 1 and then at 2; "//" is left.
                      NormalisationCase{"a/\\/\\b", "a//b", "a\\\\b"},
                      // a \ / \ / b: "/\" at 2, then "\/" at 1.
                      NormalisationCase{"a\\/\\/b", "a//b", "a\\\\b"},
                      // a \ \ / b: only "\/" at 2; the first "\" turns round.
                      NormalisationCase{"a\\\\/b", "a//b", "a\\\\b"},
                      // a / \ / b: "/\" at 1 leaves a sep then "/".
                      NormalisationCase{"a/\\/b", "a//b", "a\\b"},
                      NormalisationCase{"C:\\dir\\file.txt", "C:/dir/file.txt",
                                        "C:\\dir\\file.txt"}));

// --- SetPath ----------------------------------------------------------------

TEST(PathTest, SetPathReplacesAndNormalises)
{
    Path path("old");
    path.SetPath(std::string("new\\text"));
    EXPECT_STREQ(path.GetPath(), "new/text");
}

TEST(PathTest, SetPathTakesExactlyTheGivenLength)
{
    Path path("old");
    path.SetPath("a\\bcdef", 3);
    EXPECT_STREQ(path.GetPath(), "a/b");
}

TEST(PathTest, SetPathWithZeroLengthEmptiesThePath)
{
    Path path("old");
    path.SetPath("abc", 0);
    EXPECT_STREQ(path.GetPath(), "");
}

TEST(PathTest, SetPathWithNullTextEmptiesThePath)
{
    Path path("old");
    path.SetPath(nullptr, 5);
    EXPECT_STREQ(path.GetPath(), "");
}

TEST(PathTest, SetPathNormalisesToTheOwnStyle)
{
    BackslashPath path("x");
    path.SetPath(std::string("a/b\\c"));
    EXPECT_STREQ(path.GetPath(), "a\\b\\c");
    path.SetPath("d/e", 3);
    EXPECT_STREQ(path.GetPath(), "d\\e");
}

// --- Copying ----------------------------------------------------------------

TEST(PathTest, CopyConstructionCopiesStyleAndText)
{
    BackslashPath original("a/b");
    Path copy(original);
    EXPECT_EQ(copy.GetStyle(), Path::BackslashStyle);
    EXPECT_STREQ(copy.GetPath(), "a\\b");
}

TEST(PathTest, AssignmentCopiesTextAndKeepsOwnStyle)
{
    BackslashPath backslashed("a/b");
    Path slashed("x/y");
    slashed = backslashed;
    EXPECT_EQ(slashed.GetStyle(), Path::SlashStyle);
    EXPECT_STREQ(slashed.GetPath(), "a\\b"); // not normalised again

    BackslashPath target("q");
    target = Path("c\\d");
    EXPECT_EQ(target.GetStyle(), Path::BackslashStyle);
    EXPECT_STREQ(target.GetPath(), "c/d");
    // The kept style shows in the separator MakeAbsolute adds.
    target.MakeAbsolute("/r");
    EXPECT_STREQ(target.GetPath(), "/r\\c/d");
}

TEST(PathTest, SelfAssignmentChangesNothing)
{
    Path path("a/b");
    Path& alias = path;
    path = alias;
    EXPECT_STREQ(path.GetPath(), "a/b");
    EXPECT_EQ(path.GetStyle(), Path::SlashStyle);
}

TEST(PathTest, CopiesAreIndependent)
{
    Path original("a/b");
    Path copy(original);
    copy.SetPath(std::string("c"));
    EXPECT_STREQ(original.GetPath(), "a/b");
    EXPECT_STREQ(copy.GetPath(), "c");
}

// --- GetFile, GetDirectory, IsAbsolute ----------------------------------------

TEST(PathTest, GetFileWithoutSeparatorIsWholeText)
{
    EXPECT_EQ(FileOf(Path("name")), "name");
}

TEST(PathTest, GetFileOfTrailingSeparatorIsEmpty)
{
    EXPECT_EQ(FileOf(Path("dir/")), "");
}

TEST(PathTest, GetDirectoryWithoutSeparatorIsWholeText)
{
    EXPECT_EQ(DirectoryOf(Path("name")), "name");
}

TEST(PathTest, GetFileAndDirectorySplitAtTheLastSeparator)
{
    EXPECT_EQ(FileOf(Path("/a/b/c")), "c");
    EXPECT_EQ(DirectoryOf(Path("/a/b/c")), "/a/b");
    EXPECT_EQ(FileOf(Path("a//b")), "b");
    EXPECT_EQ(DirectoryOf(Path("a//b")), "a/");
    EXPECT_EQ(DirectoryOf(Path("dir/")), "dir");
}

TEST(PathTest, GetDirectoryOfRootEntryIsEmpty)
{
    EXPECT_EQ(DirectoryOf(Path("/x")), "");
    EXPECT_EQ(FileOf(Path("/x")), "x");
    EXPECT_EQ(DirectoryOf(Path("/")), "");
    EXPECT_EQ(FileOf(Path("/")), "");
}

TEST(PathTest, GetFileAndDirectoryOfEmptyPathAreEmpty)
{
    EXPECT_EQ(FileOf(Path()), "");
    EXPECT_EQ(DirectoryOf(Path()), "");
}

TEST(PathTest, GetFileAndDirectorySeeBothSeparators)
{
    Path mixed = VerbatimPath("a/b\\c");
    ASSERT_STREQ(mixed.GetPath(), "a/b\\c");
    EXPECT_EQ(FileOf(mixed), "c");
    EXPECT_EQ(DirectoryOf(mixed), "a/b");
    BackslashPath backslashed("x/y");
    EXPECT_EQ(FileOf(backslashed), "y");
    EXPECT_EQ(DirectoryOf(backslashed), "x");
}

TEST(PathTest, IsAbsoluteWhenFirstCharacterIsASeparator)
{
    EXPECT_TRUE(Path("/x").IsAbsolute());
    EXPECT_TRUE(Path("\\x").IsAbsolute());
    EXPECT_TRUE(Path("/").IsAbsolute());
    EXPECT_TRUE(BackslashPath("/x").IsAbsolute());
    EXPECT_TRUE(VerbatimPath("\\x").IsAbsolute());
}

TEST(PathTest, IsAbsoluteFalseForRelativeAndEmpty)
{
    EXPECT_FALSE(Path("x/y").IsAbsolute());
    EXPECT_FALSE(Path("C:/x").IsAbsolute());
    EXPECT_FALSE(Path("./x").IsAbsolute());
    EXPECT_FALSE(Path("").IsAbsolute());
}

// --- MakeAbsolute -------------------------------------------------------------

TEST(PathTest, MakeAbsoluteJoinsBaseAndName)
{
    EXPECT_EQ(Absolute(Path("sub"), "/var/lib"), "/var/lib/sub");
}

TEST(PathTest, MakeAbsoluteClimbsOneLevelPerParentReference)
{
    EXPECT_EQ(Absolute(Path("../x"), "/a/b"), "/a/x");
    EXPECT_EQ(Absolute(Path("../../x"), "/a/b/c"), "/a/x");
}

TEST(PathTest, MakeAbsoluteOfDotKeepsBaseWithTrailingSeparator)
{
    EXPECT_EQ(Absolute(Path("."), "/a/"), "/a/");
}

TEST(PathTest, MakeAbsoluteLeavesAbsolutePathUnchanged)
{
    EXPECT_EQ(Absolute(Path("/abs/../x"), "/r"), "/abs/../x");
    EXPECT_EQ(Absolute(Path("\\abs"), "/r"), "/abs");
}

TEST(PathTest, MakeAbsoluteAddsNoSecondSeparatorAfterTrailingOne)
{
    EXPECT_EQ(Absolute(Path("sub"), "/var/lib/"), "/var/lib/sub");
    EXPECT_EQ(Absolute(Path("sub"), "/var/lib\\"), "/var/lib\\sub");
}

TEST(PathTest, MakeAbsoluteRemovesLeadingCharactersWhereverParentReferenceIs)
{
    // "../" sits after "x", yet "x.." goes and "/y" stays.
    EXPECT_EQ(Absolute(Path("x../y"), "/a/b"), "/a//y");
}

TEST(PathTest, MakeAbsoluteConsumesSlashParentsBeforeBackslashParents)
{
    // "../" is found at 3, so the leading "..\" goes first.
    EXPECT_EQ(Absolute(VerbatimPath("..\\../x"), "/a/b/c"), "/a/x");
    EXPECT_EQ(Absolute(VerbatimPath("../..\\x"), "/a/b/c"), "/a/x");
}

TEST(PathTest, MakeAbsoluteRemovesCurrentDirectoryReferenceOnce)
{
    EXPECT_EQ(Absolute(Path("./x"), "/a"), "/a/x");
    EXPECT_EQ(Absolute(Path("././x"), "/a"), "/a/./x");
}

TEST(PathTest, MakeAbsoluteCutsBaseToEmptyAtSeparatorInFirstPosition)
{
    EXPECT_EQ(Absolute(Path("../x"), "/a"), "/x");
    EXPECT_EQ(Absolute(Path("../x"), "/"), "/x");
}

TEST(PathTest, MakeAbsoluteLeavesBaseWithoutSeparatorAlone)
{
    EXPECT_EQ(Absolute(Path("../x"), "a"), "a/x");
}

TEST(PathTest, MakeAbsoluteTakesBaseVerbatim)
{
    EXPECT_EQ(Absolute(Path("x"), "C:\\dir"), "C:\\dir/x");
}

TEST(PathTest, MakeAbsoluteAppendsSeparatorOfOwnStyle)
{
    EXPECT_EQ(Absolute(BackslashPath("sub"), "C:\\dir"), "C:\\dir\\sub");
    EXPECT_EQ(Absolute(BackslashPath("sub"), "/a/"), "/a/sub");
}

TEST(PathTest, MakeAbsoluteOfEmptyPathEndsBaseWithSeparator)
{
    EXPECT_EQ(Absolute(Path(""), "/a"), "/a/");
    EXPECT_EQ(Absolute(Path(""), ""), "/");
}

TEST(PathTest, MakeAbsoluteTwiceLeavesTheFirstResult)
{
    Path path("x");
    path.MakeAbsolute("/a");
    path.MakeAbsolute("/b");
    EXPECT_STREQ(path.GetPath(), "/a/x");
}

struct AbsoluteCase
{
    const char* text;     ///< handed to the Path constructor (normalised)
    bool verbatim;        ///< true: the text is kept exactly, mixed separators and all
    const char* base;
    const char* expected;
};

std::ostream& operator<<(std::ostream& stream, const AbsoluteCase& entry)
{
    return stream << '"' << entry.text << "\" on \"" << entry.base << '"'
                  << (entry.verbatim ? " (verbatim)" : "");
}

class PathMakeAbsoluteTest : public ::testing::TestWithParam<AbsoluteCase>
{
};

TEST_P(PathMakeAbsoluteTest, ResolvesAgainstBase)
{
    const AbsoluteCase& entry = GetParam();
    Path path = entry.verbatim ? VerbatimPath(entry.text) : Path(entry.text);
    path.MakeAbsolute(entry.base);
    EXPECT_STREQ(path.GetPath(), entry.expected);
    EXPECT_EQ(path.GetStyle(), Path::SlashStyle);
}

// Every expectation below was worked out by hand from the resolution steps:
// climb for each "../" anywhere in the rest (dropping its leading three
// characters), then for each "..\", drop two leading characters once for a
// "./" anywhere and once for a ".\" anywhere, then join.
INSTANTIATE_TEST_SUITE_P(
    HandWorked, PathMakeAbsoluteTest,
    ::testing::Values(
        // plain joins
        AbsoluteCase{"x", false, "/a/b", "/a/b/x"},
        AbsoluteCase{"sub", false, "/var/lib/", "/var/lib/sub"},
        AbsoluteCase{"sub", false, "/var/lib\\", "/var/lib\\sub"},
        AbsoluteCase{"sub", false, "", "/sub"},
        AbsoluteCase{"a//b", false, "/r", "/r/a//b"},
        AbsoluteCase{"a\\b", false, "/r", "/r/a/b"},
        AbsoluteCase{"x", false, "C:\\dir", "C:\\dir/x"},
        // empty texts
        AbsoluteCase{"", false, "/a", "/a/"},
        AbsoluteCase{"", false, "/a/", "/a/"},
        AbsoluteCase{"", false, "", "/"},
        AbsoluteCase{".", false, "", ""},
        AbsoluteCase{".", false, "/a", "/a"},
        AbsoluteCase{".", false, "/a/", "/a/"},
        // ".." without a separator after it is a plain name
        AbsoluteCase{"..", false, "/a/b", "/a/b/.."},
        AbsoluteCase{"x/..", false, "/a/b", "/a/b/x/.."},
        AbsoluteCase{".x", false, "/a", "/a/.x"},
        // climbing
        AbsoluteCase{"../x", false, "/a/b", "/a/x"},
        AbsoluteCase{"../x", false, "/a/b/", "/a/b/x"},
        AbsoluteCase{"../../x", false, "/a/b/c", "/a/x"},
        AbsoluteCase{"..\\x", false, "/a/b", "/a/x"},
        AbsoluteCase{"../", false, "/a/b", "/a/"},
        AbsoluteCase{"../.", false, "/a/b", "/a"},
        AbsoluteCase{"x", false, "C:\\dir\\sub", "C:\\dir\\sub/x"},
        AbsoluteCase{"../x", false, "C:\\dir\\sub", "C:\\dir/x"},
        // separator at position 0 of the base, and bases without separator
        AbsoluteCase{"../x", false, "/a", "/x"},
        AbsoluteCase{"../x", false, "/", "/x"},
        AbsoluteCase{"../../../x", false, "/a", "/x"},
        AbsoluteCase{"../x", false, "a", "a/x"},
        AbsoluteCase{"../x", false, "", "/x"},
        // "../" found anywhere, leading characters removed
        AbsoluteCase{"x../y", false, "/a/b", "/a//y"},
        AbsoluteCase{"x/../y", false, "/a/b", "/a/y"},
        AbsoluteCase{"x/../../y", false, "/a/b/c", "/a/y"},
        AbsoluteCase{"a/b/../c", false, "/r/s", "//c"},
        // "./" and ".\" removed once each
        AbsoluteCase{"./x", false, "/a", "/a/x"},
        AbsoluteCase{"././x", false, "/a", "/a/./x"},
        AbsoluteCase{"x/./y", false, "/a", "/a/./y"},
        AbsoluteCase{"./", false, "/a", "/a/"},
        AbsoluteCase{"./.", false, "/a/", "/a/"},
        AbsoluteCase{".\\x", true, "/a", "/a/x"},
        AbsoluteCase{"./.\\x", true, "/a", "/a/x"},
        // "..\" only after every "../" is gone
        AbsoluteCase{"..\\..\\x", true, "/a/b/c", "/a/x"},
        AbsoluteCase{"..\\../x", true, "/a/b/c", "/a/x"},
        AbsoluteCase{"../..\\x", true, "/a/b/c", "/a/x"},
        AbsoluteCase{"..\\x/../y", true, "/a/b/c", "/a/y"},
        AbsoluteCase{"..\\", true, "/a/b", "/a/"},
        // absolute texts stay
        AbsoluteCase{"/abs", false, "/r", "/abs"},
        AbsoluteCase{"\\abs\\..\\x", false, "/r", "/abs/../x"},
        AbsoluteCase{"\\x", true, "/r", "\\x"}));

TEST(PathTest, MakeAbsoluteOfBackslashParentUsesBackslashSeparator)
{
    // "../x" becomes "..\x" in backslash style; it climbs, then joins with "\".
    EXPECT_EQ(Absolute(BackslashPath("../x"), "/a/b"), "/a\\x");
}

TEST(PathTest, ANullFileOrDirectoryReferenceIsFatal)
{
    const Path path("/var/lib/discovery");
    EXPECT_FATAL_MESSAGE(KivTest::WithNullReference<std::string>([&](std::string& none) { path.GetFile(none); }),
                         L"Path: file NULL reference.");
    EXPECT_FATAL_MESSAGE(
        KivTest::WithNullReference<std::string>([&](std::string& none) { path.GetDirectory(none); }),
        L"Path: directory NULL reference.");
}

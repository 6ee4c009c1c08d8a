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
    const char* behaviour; ///< the case's name
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
    ::testing::Values(NormalisationCase{"EmptyStaysEmpty", "", "", ""},
                      NormalisationCase{"SlashAlone", "/", "/", "\\"},
                      NormalisationCase{"BackslashAlone", "\\", "/", "\\"},
                      NormalisationCase{"Slash", "a/b", "a/b", "a\\b"},
                      NormalisationCase{"Backslash", "a\\b", "a/b", "a\\b"},
                      NormalisationCase{"SlashBackslashPairCollapsesToOne", "a/\\b", "a/b", "a\\b"},
                      NormalisationCase{"BackslashSlashPairCollapsesToOne", "a\\/b", "a/b", "a\\b"},
                      NormalisationCase{"DoubledSlashStays", "a//b", "a//b", "a\\\\b"},
                      NormalisationCase{"DoubledBackslashStays", "a\\\\b", "a//b", "a\\\\b"},
                      // a / \ \ b: in slash style the pair at 1 collapses twice
                      // over; in backslash style the first pair leaves two backslashes.
                      NormalisationCase{"PairCollapsesTwiceOver", "a/\\\\b", "a/b", "a\\\\b"},
                      // a / \ / \ b: pairs at 1 and then at 2; "//" is left.
                      NormalisationCase{"TwoSlashBackslashPairsLeaveTwoSeparators", "a/\\/\\b", "a//b", "a\\\\b"},
                      // a \ / \ / b: "/\" at 2, then "\/" at 1.
                      NormalisationCase{"PairsCollapseInEitherOrder", "a\\/\\/b", "a//b", "a\\\\b"},
                      // a \ \ / b: only "\/" at 2; the first "\" turns round.
                      NormalisationCase{"OnlyTheBackslashSlashPairCollapses", "a\\\\/b", "a//b", "a\\\\b"},
                      // a / \ / b: "/\" at 1 leaves a sep then "/".
                      NormalisationCase{"PairThenSlash", "a/\\/b", "a//b", "a\\b"},
                      NormalisationCase{"WindowsPath", "C:\\dir\\file.txt", "C:/dir/file.txt",
                                        "C:\\dir\\file.txt"}),
    [](const ::testing::TestParamInfo<NormalisationCase>& entry) { return std::string(entry.param.behaviour); });

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

struct SplitCase
{
    const char* behaviour; ///< the case's name
    const char* text;
    const char* file;
    const char* directory;
};

std::ostream& operator<<(std::ostream& stream, const SplitCase& entry)
{
    return stream << '"' << entry.text << '"';
}

class PathSplitTest : public ::testing::TestWithParam<SplitCase>
{
};

TEST_P(PathSplitTest, SplitsAtTheLastSeparator)
{
    const SplitCase& entry = GetParam();
    EXPECT_EQ(FileOf(Path(entry.text)), entry.file);
    EXPECT_EQ(DirectoryOf(Path(entry.text)), entry.directory);
}

INSTANTIATE_TEST_SUITE_P(
    GetFileAndDirectory, PathSplitTest,
    ::testing::Values(SplitCase{"NoSeparatorGivesTheWholeTextToBoth", "name", "name", "name"},
                      SplitCase{"TrailingSeparatorGivesAnEmptyFile", "dir/", "", "dir"},
                      SplitCase{"NestedPath", "/a/b/c", "c", "/a/b"},
                      SplitCase{"DoubledSeparatorKeepsOneWithTheDirectory", "a//b", "b", "a/"},
                      SplitCase{"RootEntryHasAnEmptyDirectory", "/x", "x", ""},
                      SplitCase{"RootAloneGivesBothEmpty", "/", "", ""},
                      SplitCase{"EmptyPathGivesBothEmpty", "", "", ""}),
    [](const ::testing::TestParamInfo<SplitCase>& entry) { return std::string(entry.param.behaviour); });

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

TEST(PathTest, MakeAbsoluteAppendsSeparatorOfOwnStyle)
{
    EXPECT_EQ(Absolute(BackslashPath("sub"), "C:\\dir"), "C:\\dir\\sub");
    EXPECT_EQ(Absolute(BackslashPath("sub"), "/a/"), "/a/sub");
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
    const char* behaviour; ///< the case's name
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
        AbsoluteCase{"JoinsBaseAndName", "x", false, "/a/b", "/a/b/x"},
        AbsoluteCase{"AddsNoSecondSeparatorAfterTrailingSlash", "sub", false, "/var/lib/", "/var/lib/sub"},
        AbsoluteCase{"AddsNoSecondSeparatorAfterTrailingBackslash", "sub", false, "/var/lib\\", "/var/lib\\sub"},
        AbsoluteCase{"EmptyBaseGivesARootedName", "sub", false, "", "/sub"},
        AbsoluteCase{"KeepsADoubledSlash", "a//b", false, "/r", "/r/a//b"},
        AbsoluteCase{"JoinsTheNormalisedText", "a\\b", false, "/r", "/r/a/b"},
        AbsoluteCase{"TakesBaseVerbatim", "x", false, "C:\\dir", "C:\\dir/x"},
        // empty texts
        AbsoluteCase{"EmptyPathEndsBaseWithSeparator", "", false, "/a", "/a/"},
        AbsoluteCase{"EmptyPathKeepsTheTrailingSeparator", "", false, "/a/", "/a/"},
        AbsoluteCase{"EmptyPathOnEmptyBaseIsTheRoot", "", false, "", "/"},
        AbsoluteCase{"DotOnEmptyBaseIsEmpty", ".", false, "", ""},
        AbsoluteCase{"DotIsTheBase", ".", false, "/a", "/a"},
        AbsoluteCase{"DotKeepsBaseWithTrailingSeparator", ".", false, "/a/", "/a/"},
        // ".." without a separator after it is a plain name
        AbsoluteCase{"DotDotAloneIsAName", "..", false, "/a/b", "/a/b/.."},
        AbsoluteCase{"TrailingDotDotIsAName", "x/..", false, "/a/b", "/a/b/x/.."},
        AbsoluteCase{"DotPrefixedNameIsAName", ".x", false, "/a", "/a/.x"},
        // climbing
        AbsoluteCase{"ParentReferenceClimbsOneLevel", "../x", false, "/a/b", "/a/x"},
        AbsoluteCase{"ClimbFromTrailingSeparatorRemovesOnlyIt", "../x", false, "/a/b/", "/a/b/x"},
        AbsoluteCase{"ClimbsOneLevelPerParentReference", "../../x", false, "/a/b/c", "/a/x"},
        AbsoluteCase{"NormalisedBackslashParentClimbs", "..\\x", false, "/a/b", "/a/x"},
        AbsoluteCase{"ClimbWithNothingAfterEndsWithSeparator", "../", false, "/a/b", "/a/"},
        AbsoluteCase{"ClimbThenDotIsTheParent", "../.", false, "/a/b", "/a"},
        AbsoluteCase{"BackslashBaseIsJoinedWithSlash", "x", false, "C:\\dir\\sub", "C:\\dir\\sub/x"},
        AbsoluteCase{"ClimbsAtABackslashOfTheBase", "../x", false, "C:\\dir\\sub", "C:\\dir/x"},
        // separator at position 0 of the base, and bases without separator
        AbsoluteCase{"CutsBaseToEmptyAtSeparatorInFirstPosition", "../x", false, "/a", "/x"},
        AbsoluteCase{"ClimbFromRootStaysAtRoot", "../x", false, "/", "/x"},
        AbsoluteCase{"ClimbsNoHigherThanEmpty", "../../../x", false, "/a", "/x"},
        AbsoluteCase{"LeavesBaseWithoutSeparatorAlone", "../x", false, "a", "a/x"},
        AbsoluteCase{"ClimbOnEmptyBaseGivesARootedName", "../x", false, "", "/x"},
        // "../" found anywhere, leading characters removed
        AbsoluteCase{"RemovesLeadingCharactersWhereverParentReferenceIs", "x../y", false, "/a/b", "/a//y"},
        AbsoluteCase{"InnerParentReferenceRemovesLeadingCharacters", "x/../y", false, "/a/b", "/a/y"},
        AbsoluteCase{"TwoInnerParentReferencesClimbTwice", "x/../../y", false, "/a/b/c", "/a/y"},
        AbsoluteCase{"InnerParentReferenceCutsTheTextFromTheFront", "a/b/../c", false, "/r/s", "//c"},
        // "./" and ".\" removed once each
        AbsoluteCase{"RemovesCurrentDirectoryReference", "./x", false, "/a", "/a/x"},
        AbsoluteCase{"RemovesCurrentDirectoryReferenceOnce", "././x", false, "/a", "/a/./x"},
        AbsoluteCase{"InnerCurrentDirectoryReferenceCutsTheTextFromTheFront", "x/./y", false, "/a", "/a/./y"},
        AbsoluteCase{"CurrentDirectoryAloneEndsBaseWithSeparator", "./", false, "/a", "/a/"},
        AbsoluteCase{"CurrentDirectoryThenDotIsTheBase", "./.", false, "/a/", "/a/"},
        AbsoluteCase{"RemovesBackslashCurrentDirectoryReference", ".\\x", true, "/a", "/a/x"},
        AbsoluteCase{"RemovesEachKindOfCurrentDirectoryReferenceOnce", "./.\\x", true, "/a", "/a/x"},
        // "..\" only after every "../" is gone
        AbsoluteCase{"ClimbsOncePerBackslashParentReference", "..\\..\\x", true, "/a/b/c", "/a/x"},
        AbsoluteCase{"ConsumesSlashParentsBeforeBackslashParents", "..\\../x", true, "/a/b/c", "/a/x"},
        AbsoluteCase{"ClimbsForSlashThenBackslashParent", "../..\\x", true, "/a/b/c", "/a/x"},
        AbsoluteCase{"InnerSlashParentGoesBeforeLeadingBackslashParent", "..\\x/../y", true, "/a/b/c", "/a/y"},
        AbsoluteCase{"BackslashParentAloneEndsWithSeparator", "..\\", true, "/a/b", "/a/"},
        // absolute texts stay
        AbsoluteCase{"LeavesAbsolutePathUnchanged", "/abs", false, "/r", "/abs"},
        AbsoluteCase{"LeavesParentReferencesOfAnAbsolutePath", "/abs/../x", false, "/r", "/abs/../x"},
        AbsoluteCase{"LeavesNormalisedAbsolutePathUnchanged", "\\abs\\..\\x", false, "/r", "/abs/../x"},
        AbsoluteCase{"LeavesVerbatimBackslashRootedPathUnchanged", "\\x", true, "/r", "\\x"}),
    [](const ::testing::TestParamInfo<AbsoluteCase>& entry) { return std::string(entry.param.behaviour); });

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

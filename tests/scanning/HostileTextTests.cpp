#include "scanning/SourceFileScanner.h"
#include "scanning/SourceScan.h"
#include "tests/scanning/FindingsText.h"
#include "tests/scanning/IdealScan.h"
#include "tests/scanning/ScratchFolder.h"
#include "tests/scanning/plain/PlainScan.h"

#include <gmock/gmock.h>

#include <memory>

// Texts made to keep a scan busy or to make it give up: a megabyte of each ends, with the result
// that the patterns mean.
namespace navrel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr qsizetype kMegabyte = qsizetype(1) << 20;

QByteArray megabyteOf(const QByteArray& piece) {
    return piece.repeated(kMegabyte / piece.size());
}

std::vector<std::string> scan(const char* path, const QByteArray& text) {
    return kFastScanner.scan(text, path);
}

struct HostileText {
    const char* name;
    QByteArray before;
    QByteArray repeated;
    QByteArray behind;

    QByteArray text() const { return before + megabyteOf(repeated) + behind; }
};

void PrintTo(const HostileText& text, std::ostream* out) {
    *out << text.name;
}

class HostileTextTest : public ::testing::TestWithParam<HostileText> {
protected:
    static void expectIdealResult(const char* path) {
        const QByteArray text = GetParam().text();
        const SourceName name = SourceName(path);
        const auto expected = std::make_unique<SourceFindings>();
        IdealScan().scan(text, name, *expected);
        const auto found = std::make_unique<SourceFindings>();
        scanSource(text, name, *found);
        EXPECT_TRUE(linesOf(*found) == linesOf(*expected)) << path;
    }
};

TEST_P(HostileTextTest, givesWhatThePatternsMean) {
    expectIdealResult("/p/Foo.m");
    expectIdealResult("/p/Foo.h");
    expectIdealResult("/p/Foo.swift");
}

INSTANTIATE_TEST_SUITE_P(
    Texts, HostileTextTest,
    ::testing::Values(
        HostileText{"methodsWithoutEnd", "", "-(a", ""},
        HostileText{"oneLongMethod", "-(a)", "b:(c)d ", "{"},
        HostileText{"colons", "-(a)", ":", "{"},
        HostileText{"colonsThenOneBracket", "-(a)", ":", ")b{"},
        HostileText{"openBrackets", "-(a)", "(", "{"},
        HostileText{"openBracketsAndBlanks", "-(a)", "( ", "{"},
        HostileText{"openBracketsAndStars", "-(a)", "(*", "){"},
        HostileText{"emptyCasts", "-(a)", "()", "{"}, HostileText{"signs", "", "-+", "(a)b{"},
        HostileText{"signsAndBrackets", "", "-(", "(a)b{"},
        HostileText{"propertiesWithoutSemicolon", "", "@property int a, ", ""},
        HostileText{"propertiesAndOneSemicolon", "", "@property int a, ", ";"},
        HostileText{"propertyOfBlanks", "@property", " ", ""},
        HostileText{"propertyOfBlanksAndOneSemicolon", "@property", " ", "a;"},
        HostileText{"propertyOfBrackets", "@property", "(", ";"},
        HostileText{"propertyOfLetters", "@property ", "t", ";"},
        HostileText{"propertyOfOutlets", "@property (a)", "t ", "x;"},
        HostileText{"dynamics", "", "@dynamic ", ""},
        HostileText{"semicolons", "", "@dynamic;", ""}, HostileText{"blanks", "", " ", ""},
        HostileText{"classes", "", "class class", ""},
        HostileText{"oneLongClass", "class ", "a", ""}, HostileText{"lets", "", "let", ""},
        HostileText{"functions", "", "func", ""},
        HostileText{"otherForms", "", "cla\xC3\x9F\xC5\xBF\xE2\x84\xAA", ""},
        HostileText{"longS", "class", "\xC5\xBF", ""},
        HostileText{"almostLineBreaks", "// MARK: ", "\xE2\x80\xA7\xC2\x84", ""},
        HostileText{"slashes", "", "/", " mark: a"},
        HostileText{"slashesAndBlanks", "", "// ", "mark: a"},
        HostileText{"marks", "", "//mark:", " a"}, HostileText{"dashes", "#pragma mark", "-", "a"},
        HostileText{"shortcutsWithoutBlank", "", "//navrel:", " a"},
        HostileText{"shortcuts", "", "//navrel: \r", ""},
        HostileText{"interfaces", "", "@interface Foo", " : A"},
        HostileText{"superclasses", "", "@interface Foo : ", "A"},
        HostileText{"protocolLists", "@interface Foo : A ", "<a>", ""},
        HostileText{"protocolListWithoutEnd", "@interface Foo : A ", "<a", ""},
        HostileText{"lineFeeds", "", "\n", "let a"},
        HostileText{"carriageReturns", "", "\r", "// navrel: a"},
        HostileText{"nulBytes", "", QByteArray(1, '\0'), "let a"}),
    [](const auto& text) { return std::string(text.param.name); });

TEST(HostileText, aPropertyOfBlanksThatICUNeverEndsHasItsResult) {
    EXPECT_THAT(scan("/p/a.m", "@property" + megabyteOf(" ")), IsEmpty());
    EXPECT_THAT(scan("/p/a.m", "@property" + megabyteOf(" ") + "b;"), ElementsAre("property 1 b"));
}

TEST(HostileText, icuGivesUpOnABacktrackingTextAndTheFastScanDoesNot) {
    const QByteArray text = "@property" + QByteArray(300, ' ') + "\n- (void)a {";
    const auto findings = std::make_unique<SourceFindings>();
    EXPECT_NE(PlainScan().scan(text, SourceName("/p/a.m"), *findings, 1'000'000), std::nullopt);
    EXPECT_THAT(scan("/p/a.m", text), ElementsAre("method 2 -a"));
}

TEST(HostileText, aBaseNameThatBacktracksWithoutEndGivesNoSuperclass) {
    // Without a limit this would take years.
    const QByteArray line = "@interface " + QByteArray(40, 'a') + " : A\n";
    EXPECT_THAT(scan("/p/(a+)+b.h", line.repeated(1000)), IsEmpty());
    EXPECT_THAT(scan("/p/(){1000000000}b.h", line.repeated(1000)), IsEmpty());
}

TEST(HostileText, manyQuickSearchesEndTogetherToo) {
    // Each line is short work for the pattern, but there are many.
    const QByteArray line = "@interface " + QByteArray(12, 'a') + " : A\n";
    EXPECT_THAT(scan("/p/(a+)+b.h", megabyteOf(line)), IsEmpty());
}

TEST(HostileText, aLongLineIsNotSearchedForANameThatRepeats) {
    EXPECT_THAT(scan("/p/(?:(?>[ab]*)c|a)*d.h", "@interface " + megabyteOf("a") + " : A\n"),
                IsEmpty());
}

TEST(HostileText, allHeadersShareWhatMayBeSpentOnNamesThatArePatterns) {
    const ScratchFolder folder;
    SourceFileScanner scanner;
    const auto superclassIn = [&](const QByteArray& path) -> std::optional<QByteArray> {
        const auto found = scanner.scan(path).superclass();
        return found ? std::optional(found->toByteArray()) : std::nullopt;
    };
    const QByteArray costly = folder.write("[\\p{L}]+.h", "@interface Foo : A\n");
    const QByteArray honest = folder.write("Foo+Bar.h", "@interface FooBar : A\n");
    const QByteArray hostile =
        folder.write("(a+)+b.h", "@interface " + QByteArray(40, 'a') + " : A\n");
    EXPECT_EQ(superclassIn(costly), "A");
    for (int record = 0; record < 1000; ++record) {
        EXPECT_EQ(superclassIn(hostile), std::nullopt);
    }
    EXPECT_EQ(superclassIn(costly), std::nullopt);
    EXPECT_EQ(superclassIn(honest), "A");
}

TEST(HostileText, recordsAreLimitedInNumber) {
    const QByteArray text = QByteArrayLiteral("//navrel:a\n#warning a\n").repeated(1'000'100);
    const auto findings = std::make_unique<SourceFindings>();
    scanSource(text, SourceName("/p/a.m"), *findings);
    EXPECT_THAT(findings->shortcuts(), SizeIs(SourceFindings::kMostRecords));
    std::size_t elements = 0;
    findings->visitElements([&elements](const SourceElement&) { ++elements; });
    EXPECT_EQ(elements, SourceFindings::kMostRecords);

    scanSource("//navrel:a\n", SourceName("/p/b.m"), *findings);
    EXPECT_LE(findings->recordCapacity(), 2 * SourceFindings::kMostKeptRecords);
}

} // namespace
} // namespace navrel

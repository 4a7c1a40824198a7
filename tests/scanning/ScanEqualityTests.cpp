#include "scanning/SourceScan.h"
#include "scanning/search/CandidateSearch.h"
#include "tests/scanning/FindingsText.h"
#include "tests/scanning/IdealScan.h"
#include "tests/scanning/TellingTexts.h"
#include "tests/scanning/plain/PlainScan.h"

#include <QDirIterator>
#include <QFile>
#include <gmock/gmock.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <optional>

// The fast scan held against the patterns. More is tried by hand with the environment:
// NAVREL_SCAN_ROUNDS, the number of random texts, NAVREL_SCAN_SEED, what they are made from (the
// same texts again, where a run failed), and NAVREL_SCAN_SOURCES, a folder of sources.
namespace navrel {
namespace {

constexpr RegularExpression::Steps kGenerousLimit = 200'000'000;
constexpr quint32 kDefaultRounds = 20'000;
constexpr quint32 kDefaultSeed = 1;
/// A property of some hundred blanks without a semicolon keeps ICU busy for longer than it is
/// given. Of half a million texts one is so.
constexpr quint32 kTextsToOneGivenUp = 50'000;
/// No planted fault is so well hidden that it takes more texts to show.
constexpr int kRoundsToFindAFault = 20'000;

class ScanComparison {
public:
    explicit ScanComparison(ScanPatterns patterns = {}) : plain_(std::move(patterns)) {}

    /// Whether the fast scan finds what the patterns find; where ICU gives up, what they mean. Also
    /// true of a text that nothing tells the findings of, which is counted.
    bool isEqual(const TellingText& source, RegularExpression::Steps limit = kGenerousLimit) {
        const SourceName name = SourceName(source.path);
        if (plain_.scan(source.text, name, *expected_, limit)) {
            ++givenUp_;
            if (!IdealScan::holdsFor(source.text, name)) {
                ++notCompared_;
                return true;
            }
            ideal_.scan(source.text, name, *expected_);
        }
        expectedLines_ = linesOf(*expected_);
        scanSource(source.text, name, *found_);
        foundLines_ = linesOf(*found_);
        count_ += expectedLines_.size();
        return foundLines_ == expectedLines_;
    }

    const std::vector<std::string>& expectedLines() const { return expectedLines_; }
    const std::vector<std::string>& foundLines() const { return foundLines_; }
    /// How many findings were compared.
    std::size_t count() const { return count_; }
    /// How many texts ICU gave up on, and how many of these were not compared at all.
    quint32 givenUp() const { return givenUp_; }
    quint32 notCompared() const { return notCompared_; }

private:
    PlainScan plain_;
    IdealScan ideal_;
    std::unique_ptr<SourceFindings> expected_ = std::make_unique<SourceFindings>();
    std::unique_ptr<SourceFindings> found_ = std::make_unique<SourceFindings>();
    std::vector<std::string> expectedLines_;
    std::vector<std::string> foundLines_;
    std::size_t count_ = 0;
    quint32 givenUp_ = 0;
    quint32 notCompared_ = 0;
};

/// A number that the environment names; nil where it names none.
std::optional<quint32> numberFromEnvironment(const char* name) {
    const QString text = qEnvironmentVariable(name);
    bool isNumber = false;
    const quint32 number = text.toUInt(&isNumber);
    EXPECT_TRUE(isNumber || text.isEmpty()) << name << " is no number";
    return isNumber ? std::optional(number) : std::nullopt;
}

TEST(ScanEquality, randomTextsOfTellingPiecesGiveWhatThePatternsGive) {
    const auto wantedRounds = numberFromEnvironment("NAVREL_SCAN_ROUNDS");
    const auto wantedSeed = numberFromEnvironment("NAVREL_SCAN_SEED");
    const quint32 rounds = wantedRounds.value_or(kDefaultRounds);
    const quint32 usualSeed = wantedRounds ? QRandomGenerator::global()->generate() : kDefaultSeed;
    const quint32 seed = wantedSeed.value_or(usualSeed);
    std::printf("seed %u, %u rounds\n", seed, rounds);
    QRandomGenerator random(seed);
    ScanComparison comparison;
    for (quint32 round = 0; round < rounds; ++round) {
        const TellingText source = makeTellingText(random);
        ASSERT_TRUE(comparison.isEqual(source))
            << "seed " << seed << ", round " << round << ", " << source.path.constData() << "\n"
            << readable(source.text).constData() << "\nexpected "
            << ::testing::PrintToString(comparison.expectedLines()) << "\nfound    "
            << ::testing::PrintToString(comparison.foundLines());
    }
    std::printf("ICU gave up on %u texts, of which %u were not compared\n", comparison.givenUp(),
                comparison.notCompared());
    EXPECT_LE(comparison.givenUp(), 1 + rounds / kTextsToOneGivenUp);
    EXPECT_GT(comparison.count(), std::size_t(rounds));
}

/// Too much for ICU in the steps it is given here, with an element that follows.
const QByteArray kBacktrackingText = "@property" + QByteArray(300, ' ') + "\n- (void)a {};";
constexpr RegularExpression::Steps kShortLimit = 1'000'000;

TEST(ScanEquality, whereICUGivesUpTheFastScanIsHeldToTheIdealOne) {
    ScanComparison comparison;
    EXPECT_TRUE(comparison.isEqual({"/p/Foo.m", kBacktrackingText}, kShortLimit));
    EXPECT_THAT(comparison.expectedLines(), ::testing::ElementsAre("method 2 -a"));
    EXPECT_EQ(comparison.givenUp(), 1U);
    EXPECT_EQ(comparison.notCompared(), 0U);
}

TEST(ScanEquality, whereTheIdealScanDoesNotHoldEitherATextIsCountedAsNotCompared) {
    ScanComparison comparison;
    EXPECT_TRUE(comparison.isEqual({"/p/Foo+Bar.h", kBacktrackingText}, kShortLimit));
    EXPECT_TRUE(comparison.isEqual({"/p/Kissff.h", kBacktrackingText}, kShortLimit));
    EXPECT_EQ(comparison.givenUp(), 2U);
    EXPECT_EQ(comparison.notCompared(), 2U);
    EXPECT_EQ(comparison.count(), 0U);
    EXPECT_FALSE(IdealScan::holdsFor("\xE9", SourceName("/p/Foo.m")));
    EXPECT_TRUE(IdealScan::holdsFor("a", SourceName("/p/Foo+Bar.m")));
}

TEST(ScanEquality, theIdealScanAgreesWithThePatternsOnTextsThatICUEnds) {
    QRandomGenerator random(2);
    PlainScan plain;
    const IdealScan ideal;
    const auto expected = std::make_unique<SourceFindings>();
    const auto found = std::make_unique<SourceFindings>();
    for (int round = 0; round < 2000; ++round) {
        const TellingText source = makeTellingText(random);
        const SourceName name = SourceName(source.path);
        if (!IdealScan::holdsFor(source.text, name)) {
            continue;
        }
        ASSERT_EQ(plain.scan(source.text, name, *expected, kGenerousLimit), std::nullopt);
        ideal.scan(source.text, name, *found);
        ASSERT_EQ(linesOf(*found), linesOf(*expected)) << readable(source.text).constData();
    }
}

bool isSourcePath(const QString& path) {
    static const QStringList kExtensions = {
        QStringLiteral("h"), QStringLiteral("m"),  QStringLiteral("swift"),
        QStringLiteral("c"), QStringLiteral("mm"), QStringLiteral("cpp"),
    };
    return kExtensions.contains(QFileInfo(path).suffix());
}

TEST(ScanEquality, realSourcesGiveWhatThePatternsGive) {
    const QString folder = qEnvironmentVariable("NAVREL_SCAN_SOURCES");
    if (folder.isEmpty()) {
        GTEST_SKIP() << "NAVREL_SCAN_SOURCES names no folder";
    }
    ScanComparison comparison;
    int files = 0;
    QDirIterator found(folder, QDir::Files, QDirIterator::Subdirectories);
    while (found.hasNext()) {
        QFile file(found.next());
        if (!isSourcePath(file.fileName()) || !file.open(QIODevice::ReadOnly)) {
            continue;
        }
        ++files;
        EXPECT_TRUE(comparison.isEqual({file.fileName().toUtf8(), file.readAll()}))
            << file.fileName().toStdString();
    }
    std::printf("%d files, %zu findings; ICU gave up on %u files, of which %u were not compared\n",
                files, comparison.count(), comparison.givenUp(), comparison.notCompared());
    EXPECT_GT(files, 0);
}

// A comparison that finds no fault is worth what it would find.

struct PlantedFault {
    using Pattern = ScanPattern ScanPatterns::*;

    const char* name;
    Pattern pattern;
    const char* from;
    const char* to;
};

void PrintTo(const PlantedFault& fault, std::ostream* out) {
    *out << fault.name;
}

class PlantedFaultTest : public ::testing::TestWithParam<PlantedFault> {};

TEST_P(PlantedFaultTest, isFoundByTheComparison) {
    const PlantedFault& fault = GetParam();
    ScanPatterns patterns;
    ScanPattern& pattern = patterns.*fault.pattern;
    const qsizetype place = pattern.text.indexOf(QLatin1StringView(fault.from));
    ASSERT_GE(place, 0);
    pattern.text.replace(place, qsizetype(qstrlen(fault.from)), QLatin1StringView(fault.to));

    QRandomGenerator random(3);
    ScanComparison comparison(patterns);
    int rounds = 1;
    while (rounds < kRoundsToFindAFault && comparison.isEqual(makeTellingText(random))) {
        ++rounds;
    }
    EXPECT_LT(rounds, kRoundsToFindAFault);
}

using Patterns = ScanPatterns;
constexpr const char* kDotWithoutSomeBreaks = "([^\\n\\r\\u000B\\u000C]*)";

INSTANTIATE_TEST_SUITE_P(
    Rules, PlantedFaultTest,
    ::testing::Values(
        PlantedFault{"superclassDigits", &Patterns::superclass, "[a-z0-9]", "[a-z]"},
        PlantedFault{"superclassOtherForms", &Patterns::superclass, "[a-z0-9]",
                     "(?-i:[a-zA-Z0-9])"},
        PlantedFault{"superclassBlankBeforeColon", &Patterns::superclass, " *: *", ": *"},
        PlantedFault{"superclassBlankAfterColon", &Patterns::superclass, " *: *", " *:"},
        PlantedFault{"superclassCase", &Patterns::superclass, "@interface", "(?-i)@interface"},
        PlantedFault{"shortcutLineBlanks", &Patterns::shortcutLine, "// *", "//"},
        PlantedFault{"shortcutLineText", &Patterns::shortcutLine, ": *", ":"},
        PlantedFault{"shortcutLineDot", &Patterns::shortcutLine, "(.*)", kDotWithoutSomeBreaks},
        PlantedFault{"shortcutLineCase", &Patterns::shortcutLine, "navrel", "(?-i:navrel)"},
        PlantedFault{"classDigits", &Patterns::swiftClass, "[a-z0-9]", "[a-z]"},
        PlantedFault{"classBlanks", &Patterns::swiftClass, " *", " ?"},
        PlantedFault{"classOtherForms", &Patterns::swiftClass, "class", "cla(s|S)(s|S)"},
        PlantedFault{"classSharpS", &Patterns::swiftClass, "class", "clas[s]"},
        PlantedFault{"functionBlanks", &Patterns::swiftFunction, " *", ""},
        PlantedFault{"functionCase", &Patterns::swiftFunction, "func", "(?-i:func)"},
        PlantedFault{"variableLet", &Patterns::swiftVariable, "let *", "let"},
        PlantedFault{"variableVar", &Patterns::swiftVariable, "var *", "var"},
        PlantedFault{"methodLineFeed", &Patterns::method, "*\n]", "*]"},
        PlantedFault{"methodPlus", &Patterns::method, "(-|\\+)", "(-)"},
        PlantedFault{"methodBlanks", &Patterns::method, " *\\(", " ?\\("},
        PlantedFault{"methodUnderline", &Patterns::method, "_", ""},
        PlantedFault{"methodStar", &Patterns::method, "[a-z0-9 *]", "[a-z0-9 ]"},
        PlantedFault{"methodOtherForms", &Patterns::method, "[a-z :", "(?-i)[a-zA-Z :"},
        PlantedFault{"declarationLineFeed", &Patterns::methodDeclaration, "*\n]", "*]"},
        PlantedFault{"declarationEnd", &Patterns::methodDeclaration, "\\;", "[;{]"},
        PlantedFault{"argumentType", &Patterns::argument, "[^\\)]+", "[^\\)]*"},
        PlantedFault{"argumentBlanks", &Patterns::argument, " *", ""},
        PlantedFault{"argumentName", &Patterns::argument, "[^ ]+", "[^ \\n]+"},
        PlantedFault{"castBlanks", &Patterns::typeCast, "\\( *", "\\("},
        PlantedFault{"castStars", &Patterns::typeCast, "[ *]*", "[ ]*"},
        PlantedFault{"castInnerBlanks", &Patterns::typeCast, "[^\\) *]", "[^\\)*]"},
        PlantedFault{"propertyBrackets", &Patterns::property, "\\(*", "\\(?"},
        PlantedFault{"propertyClosingBrackets", &Patterns::property, "\\)*", "\\)?"},
        PlantedFault{"propertyAttributes", &Patterns::property, "0-9, ]", "0-9,]"},
        PlantedFault{"propertyAttributeOtherForms", &Patterns::property, "[a-z0-9, ]",
                     "(?-i:[a-zA-Z0-9, ])"},
        PlantedFault{"propertyOutlet", &Patterns::property, "[IBOutlet ]*", ""},
        PlantedFault{"propertyOutletBlank", &Patterns::property, "[IBOutlet ]", "[IBOutlet]"},
        PlantedFault{"propertyTypeUnderline", &Patterns::property, "0-9_]", "0-9]"},
        PlantedFault{"propertyStar", &Patterns::property, "[ \\*]+", "[ ]+"},
        PlantedFault{"propertyEnd", &Patterns::property, "(.*);", "(.*?);"},
        PlantedFault{"propertyPossessive", &Patterns::property, "[a-z0-9, ]*", "[a-z0-9, ]*+"},
        PlantedFault{"dynamicBlanks", &Patterns::property, "@dynamic[ ]*", "@dynamic"},
        PlantedFault{"dynamicCase", &Patterns::property, "@dynamic", "(?-i:@dynamic)"},
        PlantedFault{"markBlanks", &Patterns::mark, "// *MARK", "//MARK"},
        PlantedFault{"markSeparator", &Patterns::mark, "[ -]+", "[ -]*"},
        PlantedFault{"markDashes", &Patterns::mark, "[ -]+", "[ ]+"},
        PlantedFault{"markKelvinSign", &Patterns::mark, "pragma mark", "pragma mar(k|(?-i:K))"},
        PlantedFault{"markWarning", &Patterns::mark, "|#warning", ""},
        PlantedFault{"markWarningComment", &Patterns::mark, "|// *WARNING:", ""},
        PlantedFault{"markDot", &Patterns::mark, "(.*)", kDotWithoutSomeBreaks},
        PlantedFault{"shortcutSeparator", &Patterns::shortcut, "[ -]+", "[ -]*"},
        PlantedFault{"shortcutDashes", &Patterns::shortcut, "[ -]+", "[ ]+"},
        PlantedFault{"shortcutDot", &Patterns::shortcut, "(.*)", kDotWithoutSomeBreaks}),
    [](const auto& fault) { return std::string(fault.param.name); });

// The forms of the search for candidates.

std::vector<CandidateSearch> vectorSearches() {
    std::vector<CandidateSearch> searches = {fastestCandidateSearch()};
#if defined(NAVREL_X86_SEARCHES)
    if (__builtin_cpu_supports("ssse3") != 0) {
        searches.push_back(findCandidatesWithSSSE3);
    }
#endif
    return searches;
}

TEST(ScanEquality, vectorInstructionsFindTheCandidatesThatPlainCodeFinds) {
    constexpr char kBytes[] = "-+ (/@#dDyiInNpPrRwWqcClLaAfFuUvVeEtT\n\x80\xFF";
    constexpr qsizetype kBlocks = 3;
    using Offsets = std::array<quint16, kBlocks * kCandidateBlockSize + kCandidateSurplus>;
    QRandomGenerator random(4);
    std::array<char, kBlocks * kCandidateBlockSize + kCandidateLookahead> text{};
    for (int round = 0; round < 10'000; ++round) {
        for (char& byte : text) {
            byte = kBytes[random.bounded(quint32(sizeof kBytes))];
        }
        for (const auto kind : {Candidates::ObjectiveC, Candidates::Header, Candidates::Swift}) {
            Offsets expected{};
            const qsizetype count =
                findCandidatesPortably(kind, text.data(), kBlocks, expected.data());
            for (const CandidateSearch search : vectorSearches()) {
                Offsets found{};
                ASSERT_EQ(search(kind, text.data(), kBlocks, found.data()), count);
                ASSERT_TRUE(std::equal(found.begin(), found.begin() + count, expected.begin()));
            }
        }
    }
}

} // namespace
} // namespace navrel

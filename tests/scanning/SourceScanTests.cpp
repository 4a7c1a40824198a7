#include "tests/scanning/FindingsText.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace navrel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Every scanner gives these results: the patterns by ICU and both forms of the fast scan.
class SourceScan : public ::testing::TestWithParam<Scanner> {
protected:
    static std::vector<std::string> scan(const char* path, const QByteArray& text) {
        return GetParam().scan(text, path);
    }
    static std::vector<std::string> header(const QByteArray& text) {
        return scan("/p/Foo.h", text);
    }
    static std::vector<std::string> implementation(const QByteArray& text) {
        return scan("/p/Foo.m", text);
    }
    static std::vector<std::string> swift(const QByteArray& text) {
        return scan("/p/Foo.swift", text);
    }
};

INSTANTIATE_TEST_SUITE_P(Scanners, SourceScan,
                         ::testing::Values(kPlainScanner, kPortableScanner, kFastScanner),
                         [](const auto& scanner) { return std::string(scanner.param.name); });

// Superclass.

TEST_P(SourceScan, aHeaderNamesTheSuperclassOfItsOwnClass) {
    EXPECT_THAT(header("@interface Foo : NSObject <UITableViewDelegate, Bar>\n"),
                ElementsAre("superclass NSObject"));
    EXPECT_THAT(header("@interface Foo:UIView\n"), ElementsAre("superclass UIView"));
    EXPECT_THAT(header("@interface Foo   :   UIView"), ElementsAre("superclass UIView"));
    EXPECT_THAT(header("@interface  Foo : UIView"), IsEmpty());
}

TEST_P(SourceScan, letterCaseDoesNotMatterForTheSuperclass) {
    EXPECT_THAT(header("@INTERFACE foo : base\n"), ElementsAre("superclass base"));
}

TEST_P(SourceScan, anotherClassIsPassedOver) {
    EXPECT_THAT(header("@interface FooBar : X\n"), IsEmpty());
    EXPECT_THAT(header("@interface FooBar : X\n@interface Foo : Y\n"), ElementsAre("superclass Y"));
}

TEST_P(SourceScan, aCategoryOrExtensionNamesNoSuperclass) {
    EXPECT_THAT(header("@interface Foo ()\n@interface Foo (More) : X\n"), IsEmpty());
}

TEST_P(SourceScan, aSuperclassEndsBeforeWhatIsNeitherLetterNorDigit) {
    EXPECT_THAT(header("@interface Foo : My_Base\n"), ElementsAre("superclass My"));
    EXPECT_THAT(header("@interface Foo : _Base\n"), ElementsAre("superclass "));
    EXPECT_THAT(header("@interface Foo :\n"), ElementsAre("superclass "));
}

TEST_P(SourceScan, onlyTheFirstLineWithASuperclassCounts) {
    EXPECT_THAT(header("@interface Foo : A\n@interface Foo : B\n"), ElementsAre("superclass A"));
    EXPECT_THAT(header("@interface Foo : _A\n@interface Foo : B\n"), ElementsAre("superclass "));
}

TEST_P(SourceScan, theLastSuperclassOfALineCounts) {
    EXPECT_THAT(header("@interface Foo : A <B, C><D> @interface Foo : E\r@interface Foo : F\n"),
                ElementsAre("superclass F"));
}

TEST_P(SourceScan, aDeclarationAcrossLinesNamesNoSuperclass) {
    EXPECT_THAT(header("@interface Foo\n: A\n"), IsEmpty());
}

TEST_P(SourceScan, onlyHeadersHaveASuperclass) {
    EXPECT_THAT(implementation("@interface Foo : A\n"), IsEmpty());
    EXPECT_THAT(swift("@interface Foo : A\n"), IsEmpty());
    EXPECT_THAT(scan("/p/Foo.H", "@interface Foo : A\n"), IsEmpty());
}

TEST_P(SourceScan, specialCharactersInABaseNameAreThePatterns) {
    EXPECT_THAT(scan("/p/Foo+Bar.h", "@interface Foo : A\n@interface FoooBar : B\n"),
                ElementsAre("superclass B"));
    EXPECT_THAT(scan("/p/F(o*).h", "x\n@interface Foo : B\n"), ElementsAre("superclass oo"));
    EXPECT_THAT(scan("/p/Foo.Bar.h", "@interface FooxBar : B\n"), ElementsAre("superclass B"));
    EXPECT_THAT(scan("/p/A|B.h", "@interface A : C\nB : D\n"), ElementsAre("superclass D"));
    EXPECT_THAT(scan("/p/A$B.h", "@interface A$B : C\n"), IsEmpty());
    EXPECT_THAT(scan("/p/?Foo.h", "@interfaceFoo : C\n"), ElementsAre("superclass C"));
}

TEST_P(SourceScan, aBaseNameCanTakeTheColonOutOfThePattern) {
    EXPECT_THAT(scan("/p/(A)|B.h", "@interface A"), ElementsAre("superclass A"));
    EXPECT_THAT(scan("/p/(a)(?x)#.h", "@interface a"), ElementsAre("superclass a"));
    EXPECT_THAT(scan("/p/a(?#b.h", "@interface a <x>"), ElementsAre("superclass <x>"));
    EXPECT_THAT(scan("/p/a(?x)b.h", "@interface abBase"), ElementsAre("superclass "));
}

TEST_P(SourceScan, aBaseNameThatIsNoPatternGivesNoSuperclass) {
    EXPECT_THAT(scan("/p/Foo(.h", "@interface Foo( : A\n"), IsEmpty());
    EXPECT_THAT(scan("/p/[.h", "@interface [ : A\n"), IsEmpty());
    EXPECT_THAT(scan("/p/\\Q.h", "@interface A : A\n"), IsEmpty());
    EXPECT_THAT(scan("/p/a{3,1}.h", "@interface aaa : A\n"), IsEmpty());
    EXPECT_THAT(scan("/p/\xFF.h", "@interface A : A\n"), IsEmpty());
}

TEST_P(SourceScan, aBaseNameThatTakesTheGroupOutOfThePatternGivesNoSuperclass) {
    EXPECT_THAT(scan("/p/\\Q.h", "@interface  *: *([a-z0-9]*) *(<([a-z, ]*)>)*"), IsEmpty());
    EXPECT_THAT(scan("/p/(?x)Foo#.h", "@interface Foo : A"), IsEmpty());
}

TEST_P(SourceScan, aGroupOfTheBaseNameThatTakesNoPartGivesNoSuperclass) {
    EXPECT_THAT(scan("/p/A(b)?.h", "@interface A : C\n@interface Ab : C\n"),
                ElementsAre("superclass b"));
}

TEST_P(SourceScan, aBaseNameOutsideASCIIIsMatchedWithoutLetterCase) {
    EXPECT_THAT(scan("/p/\xC3\x9C.h", "@interface \xC3\xBC : A\n"), ElementsAre("superclass A"));
}

TEST_P(SourceScan, aBaseNameMatchesItsLettersInOtherForms) {
    EXPECT_THAT(scan("/p/Kiss.h", "@interface \xE2\x84\xAAi\xC3\x9F : A\n"),
                ElementsAre("superclass A"));
    EXPECT_THAT(scan("/p/office.h", "@interface o\xEF\xAC\x83"
                                    "ce : A\n"),
                ElementsAre("superclass A"));
    EXPECT_THAT(scan("/p/ofce.h", "@interface o\xEF\xAC\x83"
                                  "ce : A\n"),
                IsEmpty());
    EXPECT_THAT(scan("/p/flist.h", "@interface \xEF\xAC\x82i\xEF\xAC\x85 : \xC5\xBF\xE2\x84\xAA\n"),
                ElementsAre("superclass \xC5\xBF\xE2\x84\xAA"));
}

// Shortcut comments, line by line.

TEST_P(SourceScan, aShortcutCommentIsFoundWithItsLine) {
    EXPECT_THAT(scan("/p/a.c", "\n\nx = 1; // navrel: Setup\n"),
                ElementsAre("shortcut comment 3 Setup", "shortcut 3 Setup"));
    EXPECT_THAT(scan("/p/a.c", "\n\n\n\n\n\n//NAVREL:Intro"),
                ElementsAre("shortcut comment 7 Intro"));
    EXPECT_THAT(scan("/p/a.c", "///  Navrel: a"),
                ElementsAre("shortcut comment 1 a", "shortcut 1 a"));
}

TEST_P(SourceScan, aShortcutCommentWithoutTextIsNone) {
    EXPECT_THAT(scan("/p/a.c", "\n\n// navrel:\n// navrel: b\n"),
                ElementsAre("shortcut comment 4 b", "shortcut 4 b"));
    EXPECT_THAT(scan("/p/a.c", "// navrel:   \n"), ElementsAre("shortcut 1 "));
}

TEST_P(SourceScan, onlyLeadingBlanksOfAShortcutCommentAreSkipped) {
    EXPECT_THAT(scan("/p/a.c", "// navrel:   Setup  \n"),
                ElementsAre("shortcut comment 1 Setup  ", "shortcut 1 Setup  "));
    EXPECT_THAT(scan("/p/a.c", "// navrel: - Setup\n"),
                ElementsAre("shortcut comment 1 - Setup", "shortcut 1 Setup"));
}

TEST_P(SourceScan, aShortcutCommentTakesTheRestOfItsLine) {
    EXPECT_THAT(scan("/p/a.c", "// navrel: a // navrel: b\n"),
                ElementsAre("shortcut comment 1 a // navrel: b", "shortcut 1 a // navrel: b"));
    EXPECT_THAT(scan("/p/a.c", "//navrel:a // navrel: b\n"),
                ElementsAre("shortcut comment 1 a // navrel: b", "shortcut 1 b"));
}

TEST_P(SourceScan, theLastShortcutCommentOfALineCounts) {
    EXPECT_THAT(scan("/p/a.c", "//navrel:a\r//navrel:b\r//navrel:\n//navrel:c\n"),
                ElementsAre("shortcut comment 1 b", "shortcut comment 2 c"));
    EXPECT_THAT(scan("/p/a.c", "//navrel:a\xE2\x80\xA8//navrel:b"),
                ElementsAre("shortcut comment 1 b"));
}

TEST_P(SourceScan, lineBreaksOfAllKindsEndAShortcut) {
    for (const char* lineBreak :
         {"\n", "\r\n", "\x0B", "\x0C", "\r", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"}) {
        EXPECT_THAT(scan("/p/a.c", QByteArray("// navrel: a b") + lineBreak + "c"),
                    ElementsAre("shortcut comment 1 a b", "shortcut 1 a b"));
    }
    EXPECT_THAT(scan("/p/a.c", "//navrel:a\t\xC2\x84\xE2\x80\xA7\xE2\x80\xAA"),
                ElementsAre("shortcut comment 1 a\t\xC2\x84\xE2\x80\xA7\xE2\x80\xAA"));
}

TEST_P(SourceScan, carriageReturnsBeforeLineFeedsDoNotCountAsLines) {
    EXPECT_THAT(scan("/p/a.c", "a\r\nb\r\n//navrel:x\r\n"), ElementsAre("shortcut comment 3 x"));
    EXPECT_THAT(scan("/p/a.c", "a\rb\r//navrel:x\rc\r"), ElementsAre("shortcut comment 1 x"));
}

// Text that is not UTF-8.

TEST_P(SourceScan, aLineThatIsNotUTF8EndsSuperclassAndShortcuts) {
    EXPECT_THAT(scan("/p/a.c", "//navrel:a\n//navrel:b \xE9\n//navrel:c\n"),
                ElementsAre("shortcut comment 1 a"));
    EXPECT_THAT(header("// \xA9\n@interface Foo : A\n"), IsEmpty());
    EXPECT_THAT(header("@interface Foo : A\n// \xA9"), ElementsAre("superclass A"));
    EXPECT_THAT(header("\xA9//navrel:a"), IsEmpty());
}

TEST_P(SourceScan, aFileThatIsNotUTF8HasNoElements) {
    EXPECT_THAT(implementation("#pragma mark - A\n- (void)b {\n\xE9"), IsEmpty());
    EXPECT_THAT(swift("class A\n\xED\xA0\x80"), IsEmpty());
    EXPECT_THAT(swift("class A\n\xC0\xAF"), IsEmpty());
    EXPECT_THAT(swift("class A\n\xE2\x84"), IsEmpty());
}

TEST_P(SourceScan, nulBytesAndTheByteOrderMarkAreText) {
    EXPECT_THAT(swift(QByteArray("\xEF\xBB\xBF"
                                 "class A\0let b\nvar c",
                                 22)),
                ElementsAre("class 1 A", "property 1 b", "property 2 c"));
    EXPECT_THAT(swift(QByteArray("// MARK: a\0b", 12)),
                ElementsAre(std::string("mark 1 a\0b", 10)));
}

TEST_P(SourceScan, anEmptyFileHoldsNothing) {
    EXPECT_THAT(header(""), IsEmpty());
    EXPECT_THAT(implementation(""), IsEmpty());
    EXPECT_THAT(swift(""), IsEmpty());
}

// Elements.

TEST_P(SourceScan, methodsAreNamedByTheirSelector) {
    EXPECT_THAT(implementation("- (void)viewDidLoad {"), ElementsAre("method 1 -viewDidLoad"));
    EXPECT_THAT(implementation("- (NSInteger)tableView:(UITableView *)tableView "
                               "numberOfRowsInSection:(NSInteger)section {"),
                ElementsAre("method 1 -tableView:numberOfRowsInSection:"));
    EXPECT_THAT(implementation("-(void)a:(int)x b:(int)y{"), ElementsAre("method 1 -a:b:"));
    EXPECT_THAT(implementation("+ (id) make : (int) x {"), ElementsAre("method 1 +make:"));
    EXPECT_THAT(implementation("- (void)a:b c:(int)d {"), ElementsAre("method 1 -a:"));
    EXPECT_THAT(implementation("- (void)a:()b c:(int)d {"), ElementsAre("method 1 -a:c:"));
}

TEST_P(SourceScan, aMethodsHeadMayRunOverLines) {
    EXPECT_THAT(implementation("\n- (id)initWithFrame:(CGRect)frame\n{"),
                ElementsAre("method 2 -initWithFrame:"));
    EXPECT_THAT(implementation("- (void)a:(int)b \n    c:(int)d\n{"),
                ElementsAre("method 1 -a:\nc:"));
    EXPECT_THAT(implementation("- (void)a:(int)b\n    c:(int)d\n{"), ElementsAre("method 1 -a:c:"));
}

TEST_P(SourceScan, aMethodWithoutArgumentsKeepsTheLineFeedBeforeItsBrace) {
    EXPECT_THAT(implementation("- (void)viewDidLoad\n{"), ElementsAre("method 1 -viewDidLoad\n"));
}

TEST_P(SourceScan, aTypeWithInnerBlanksStaysInTheName) {
    EXPECT_THAT(implementation("- (unsigned long long)size {"),
                ElementsAre("method 1 -(unsignedlonglong)size"));
    EXPECT_THAT(implementation("- ( NSString * * )size {"), ElementsAre("method 1 -size"));
}

TEST_P(SourceScan, charactersOutsideTheClassesMakeNoMethod) {
    EXPECT_THAT(implementation("- (void)doIt:(NSArray<NSString *> *)a {"), IsEmpty());
    EXPECT_THAT(implementation("- (void)run:(void (^)(void))block {"), IsEmpty());
    EXPECT_THAT(implementation("- (void)run\r\n{"), IsEmpty());
    EXPECT_THAT(implementation("-\t(void)run {"), IsEmpty());
}

TEST_P(SourceScan, headersDeclareMethodsAndTheOthersDefineThem) {
    EXPECT_THAT(header("+ (instancetype)sharedInstance;"), ElementsAre("method 1 +sharedInstance"));
    EXPECT_THAT(header("- (void)setValue:(id)value forKey:(NSString *)key;"),
                ElementsAre("method 1 -setValue:forKey:"));
    EXPECT_THAT(header("- (void)a {\n- (void)b;"), ElementsAre("method 2 -b"));
    for (const char* path : {"/p/a.m", "/p/a.c", "/p/a.cpp", "/p/a.mm", "/p/a", "/p/a.H"}) {
        EXPECT_THAT(scan(path, "- (void)b;\n- (void)a {"), ElementsAre("method 2 -a")) << path;
    }
}

TEST_P(SourceScan, marksAndWarningsTakeTheRestOfTheirLine) {
    EXPECT_THAT(implementation("#pragma mark - Table view"), ElementsAre("mark 1 Table view"));
    EXPECT_THAT(implementation("#pragma mark -"), ElementsAre("mark 1 "));
    EXPECT_THAT(implementation("#pragma mark"), IsEmpty());
    EXPECT_THAT(implementation("#pragma  mark - A"), IsEmpty());
    EXPECT_THAT(swift("// MARK: - Setup"), ElementsAre("mark 1 Setup"));
    EXPECT_THAT(swift("//MARK:Setup"), IsEmpty());
    EXPECT_THAT(implementation("#warning fix this"), ElementsAre("warning 1 fix this"));
    EXPECT_THAT(header("x //  WARNING: -- fix\r\n// MARK: a // MARK: b"),
                ElementsAre("warning 1 fix", "mark 2 a // MARK: b"));
}

TEST_P(SourceScan, aMarkWithTheKelvinSignIsAMark) {
    EXPECT_THAT(swift("// MAR\xE2\x84\xAA: a\n#pragma mar\xE2\x84\xAA b"),
                ElementsAre("mark 1 a", "mark 2 b"));
}

TEST_P(SourceScan, aShortcutElementNeedsABlankOrDash) {
    EXPECT_THAT(implementation("// navrel: - Setup"),
                ElementsAre("shortcut comment 1 - Setup", "shortcut 1 Setup"));
    EXPECT_THAT(implementation("//navrel:-Setup"),
                ElementsAre("shortcut comment 1 -Setup", "shortcut 1 Setup"));
    EXPECT_THAT(implementation("//navrel:Setup"), ElementsAre("shortcut comment 1 Setup"));
}

TEST_P(SourceScan, propertiesAreNamedByWhatFollowsTheType) {
    EXPECT_THAT(implementation("@property (nonatomic, strong) NSString *title;"),
                ElementsAre("property 1 title"));
    EXPECT_THAT(implementation("@property (nonatomic, weak) IBOutlet UILabel *label;"),
                ElementsAre("property 1 label"));
    EXPECT_THAT(header("@property int count;"), ElementsAre("property 1 count"));
    EXPECT_THAT(implementation("@dynamic foo, bar;"), ElementsAre("property 1 foo, bar"));
    EXPECT_THAT(implementation("@property (nonatomic) NSArray<NSString *> *items;"),
                ElementsAre("property 1 NSArray<NSString *> *items"));
    EXPECT_THAT(implementation("@property BOOL a; @property BOOL b;"),
                ElementsAre("property 1 a; @property BOOL b"));
}

TEST_P(SourceScan, aPropertyNeedsASemicolonOnItsLine) {
    EXPECT_THAT(header("@property int a\n;@property int b;"), ElementsAre("property 2 b"));
    EXPECT_THAT(header("@property int a\xE2\x80\xA9;"), IsEmpty());
    EXPECT_THAT(header("@property;"), IsEmpty());
    EXPECT_THAT(header("@dynamic;"), ElementsAre("property 1 "));
    EXPECT_THAT(header("@property int a; b\r@property int c;"),
                ElementsAre("property 1 a", "property 1 c"));
}

TEST_P(SourceScan, aPropertyGivesBackABlankThatItTookTooSoon) {
    EXPECT_THAT(header("@property int a;"), ElementsAre("property 1 a"));
    EXPECT_THAT(header("@property (copy) t x;"), ElementsAre("property 1 x"));
    EXPECT_THAT(header("@property (copy)out x;"), ElementsAre("property 1 x"));
    EXPECT_THAT(header("@property ((a b))c;"), ElementsAre("property 1 b))c"));
    EXPECT_THAT(header("@property (<a>)c;"), ElementsAre("property 1 (<a>)c"));
    EXPECT_THAT(header("@property(a)c;"), IsEmpty());
    EXPECT_THAT(header("@property k\xE2\x84\xAA_ \xC5\xBF;"), ElementsAre("property 1 \xC5\xBF"));
}

TEST_P(SourceScan, swiftDeclarationsAreNamedByTheirWord) {
    EXPECT_THAT(swift("class ViewController: UIViewController {"),
                ElementsAre("class 1 ViewController"));
    EXPECT_THAT(swift("var name = 1"), ElementsAre("property 1 name"));
    EXPECT_THAT(swift("class func make()"), ElementsAre("class 1 func", "method 1 make()"));
    EXPECT_THAT(swift("// function"), ElementsAre("method 1 tion()"));
    EXPECT_THAT(swift("let x = y.classForCoder"), ElementsAre("class 1 ForCoder", "property 1 x"));
    EXPECT_THAT(swift("letter"), ElementsAre("property 1 ter"));
    EXPECT_THAT(swift("class\n"), ElementsAre("class 1 "));
}

TEST_P(SourceScan, aKeywordInCapitalsMatchesButStaysInTheName) {
    EXPECT_THAT(swift("Class Foo"), ElementsAre("class 1 ClassFoo"));
    EXPECT_THAT(swift("VAR x FUNC y"), ElementsAre("method 1 FUNCy()", "property 1 VARx"));
    EXPECT_THAT(swift("cla\xC3\x9F A"), ElementsAre("class 1 cla\xC3\x9F"
                                                    "A"));
    EXPECT_THAT(implementation("#PRAGMA MARK a\n// mark: b\n@PROPERTY int c;\n@Dynamic d;"),
                ElementsAre("mark 1 a", "mark 2 b", "property 3 c", "property 4 d"));
}

TEST_P(SourceScan, aKeywordIsRemovedWhereverItStandsInTheMatch) {
    EXPECT_THAT(swift("class Subclass"), ElementsAre("class 1 Sub"));
    EXPECT_THAT(swift("var outlet"), ElementsAre("property 1 out"));
    EXPECT_THAT(swift("let levart"), ElementsAre("property 1 "));
    EXPECT_THAT(swift("let LETTER"), ElementsAre("property 1 LETTER"));
}

TEST_P(SourceScan, swiftFilesHaveNoMethodsOrPropertiesOfObjectiveC) {
    EXPECT_THAT(swift("- (void)a {\n@property int b;"), IsEmpty());
    EXPECT_THAT(implementation("class A\nfunc b\nvar c"), IsEmpty());
}

TEST_P(SourceScan, elementsComeByTypeAndThenByPosition) {
    EXPECT_THAT(implementation("@property int p;\n//navrel: s\n#warning w\n// MARK: m\n- (v)a {\n"
                               "- (v)b {\n@dynamic q;"),
                ElementsAre("shortcut comment 2 s", "method 5 -a", "method 6 -b", "warning 3 w",
                            "mark 4 m", "shortcut 2 s", "property 1 p", "property 7 q"));
}

TEST_P(SourceScan, elementsAreFoundInCommentsAndStringsToo) {
    EXPECT_THAT(implementation("/* - (void)a { */ \"#warning b\""),
                ElementsAre("method 1 -a", "warning 1 b\""));
}

TEST_P(SourceScan, linesAreCountedByLineFeedsAlone) {
    EXPECT_THAT(swift("var a\nvar b"), ElementsAre("property 1 a", "property 2 b"));
    EXPECT_THAT(swift("x\r\n\r\nvar a\r\n"), ElementsAre("property 3 a"));
    EXPECT_THAT(swift("x\r\rvar a\rvar b"), ElementsAre("property 1 a", "property 1 b"));
    EXPECT_THAT(swift(QByteArray(100000, '\n') + "var a"), ElementsAre("property 100001 a"));
}

TEST_P(SourceScan, aMatchIsFoundWhereverItStandsInABlock) {
    for (int before = 0; before < 140; ++before) {
        const QByteArray blanks(before, ' ');
        EXPECT_THAT(implementation(blanks + "-(a)b{"), ElementsAre("method 1 -b"));
        EXPECT_THAT(implementation(blanks + "//mark: b"), ElementsAre("mark 1 b"));
        EXPECT_THAT(swift(blanks + "let"), ElementsAre("property 1 "));
        EXPECT_THAT(header(blanks + "@interface Foo:a"), ElementsAre("superclass a"));
        EXPECT_THAT(swift(blanks + "l"), IsEmpty());
        EXPECT_THAT(implementation(blanks + "-"), IsEmpty());
        EXPECT_THAT(implementation(blanks + "//"), IsEmpty());
        EXPECT_THAT(header(blanks + "@i"), IsEmpty());
    }
}

} // namespace
} // namespace navrel

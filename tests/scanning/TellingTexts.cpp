#include "tests/scanning/TellingTexts.h"

#include <array>
#include <vector>

namespace navrel {

namespace {

constexpr std::array kPaths = {
    "/p/Foo.h",    "/p/Foo.h",     "/p/Foo.m", "/p/Foo.m",   "/p/Foo.swift",  "/p/Foo.swift",
    "/p/Kissff.h", "/p/Foo+Bar.h", "/p/Foo.c", "/p/(A)|B.h", "/p/(a)(?x)#.h", "/p/a(?#b.h",
};

using Pieces = std::vector<const char*>;

/// One vocabulary a rule or two, so that what belongs together meets often.
const std::vector<Pieces>& themes() {
    static const std::vector<Pieces> kThemes = {
        // Methods
        {"-",    "+",       "- (", "-(",       "+  (",         "- (void)", "-(a *)", "+(id)",  "(",
         ")",    "()",      "((",  "(a b)",    "( a *)",       "(int)",    ":",      ":",      ": ",
         ":(a)", ":(a *) ", ":()", ":)",       ":)c",          "::",       "b",      "c:(d)e", "_",
         " ",    " ",       "*",   "1",        "\n",           "\n",       "{",      "{",      ";",
         ";",    " {",      "\n{", "\xC5\xBF", "\xE2\x84\xAA", ",",        "\r\n"},
        // Properties
        {"@property",
         "@property ",
         "@Property  ",
         "@property (",
         "@property (a) ",
         "(a)t ",
         ") int ",
         "@dynamic",
         "@DYNAMIC ",
         "@property int",
         "@propert",
         "(",
         "((",
         ")",
         "))",
         "a",
         "a, b",
         ",",
         " ",
         " ",
         "  ",
         "*",
         "**",
         "t",
         "out",
         "IBOutlet",
         "IBOutlet ",
         "IBOUTLET ",
         "iboutlet",
         "x_",
         "_",
         "1",
         "b;",
         ";",
         ";",
         ";",
         "\n",
         "\r",
         "\xC2\x85",
         "\xC5\xBF",
         "\xE2\x84\xAA",
         "<",
         "\xC3\xA9"},
        // Superclass
        {"@interface ",
         "@INTERFACE Foo",
         "@interface Foo",
         "@interface Foo : NSObject",
         "@interface Kissff",
         "@interface Foo+Bar",
         "@interface \xE2\x84\xAAiss",
         "@interface A",
         "@interface a <x>",
         "Foo",
         "Kissff",
         "Ki\xC3\x9F\xEF\xAC\x80",
         "\xEF\xAC\x80",
         "FooBar",
         "FoooBar",
         " ",
         ":",
         " : ",
         "A",
         "b1",
         "_",
         "<a, b>",
         "<",
         ">",
         "<a>",
         "\n",
         "\r",
         "\xC5\xBF",
         "\xE2\x84\xAA",
         "@",
         "@i"},
        // Marks, warnings and shortcuts
        {"#pragma mark",
         "#PRAGMA MARK",
         "#pragma mark -",
         "#pragma ",
         "#pragma mar\xE2\x84\xAA",
         "#warning",
         "#Warning ",
         "//",
         "// ",
         "/",
         "MARK:",
         "mark: ",
         "// MARK: - ",
         "//mark:",
         "// MAR\xE2\x84\xAA: ",
         "WARNING:",
         "// warning: ",
         "navrel:",
         "navrel: ",
         "// navrel: ",
         "//NAVREL:",
         "// navrel:-",
         "navre",
         " ",
         "-",
         "a",
         "b c",
         "\n",
         "\r\n",
         "\r",
         "\x0B",
         "\x0C",
         "\xC2\x85",
         "\xE2\x80\xA8",
         "\xE2\x80\xA9",
         "\xE2\x80\xA7",
         "\xC2\x84",
         "\t"},
        // Swift
        {"class",
         "class ",
         "Class",
         "clas",
         "cla",
         "cla\xC3\x9F",
         "cla\xC5\xBFs",
         "cla\xE1\xBA\x9E",
         "ss",
         "s",
         "\xC5\xBF",
         "func",
         "func ",
         "FUNC",
         "functio",
         "fun",
         "var",
         "Var ",
         "let",
         "LET ",
         "letter",
         "levart",
         " ",
         "  ",
         "a",
         "B1",
         "_",
         "(",
         "\n",
         "\xC3\xA9",
         "\xE2\x84\xAA"},
        // Anything else
        {".", "|", "@", "#", "K", "\xEF\xAC\x81", "\xEF\xAC\x86", "\xC5\xBE", "\xE2\x84\xAB",
         "\xF0\x9F\x99\x82", "\xEF\xBB\xBF", "\n", "\t", "                                 "},
    };
    return kThemes;
}

template <typename Choices>
const auto& anyOf(const Choices& choices, QRandomGenerator& random) {
    return choices[random.bounded(quint32(choices.size()))];
}

QByteArray makePassage(QRandomGenerator& random) {
    const Pieces& theme = anyOf(themes(), random);
    QByteArray passage;
    for (quint32 count = random.bounded(1U, 16U); count > 0; --count) {
        const bool strays = random.bounded(20U) == 0;
        passage += anyOf(strays ? anyOf(themes(), random) : theme, random);
    }
    return passage;
}

} // namespace

TellingText makeTellingText(QRandomGenerator& random) {
    TellingText result{anyOf(kPaths, random), {}};
    for (quint32 count = random.bounded(1U, 6U); count > 0; --count) {
        result.text += makePassage(random);
    }
    // A byte that is not UTF-8 takes the elements away, so it must be rare.
    if (random.bounded(40U) == 0) {
        result.text.insert(qsizetype(random.bounded(quint32(result.text.size()))), '\xE9');
    }
    if (random.bounded(40U) == 0) {
        result.text.insert(qsizetype(random.bounded(quint32(result.text.size()))), '\0');
    }
    return result;
}

QByteArray readable(const QByteArray& text) {
    QByteArray result;
    for (const char byte : text) {
        if (byte >= ' ' && byte <= '~') {
            result += byte;
        } else {
            result += "\\x" + QByteArray(1, byte).toHex().toUpper();
        }
    }
    return result;
}

} // namespace navrel

#include "support/propertylist/ASCIIPropertyList.h"
#include "support/propertylist/PropertyList.h"
#include "support/propertylist/PropertyListDocument.h"
#include "support/propertylist/PropertyListLimits.h"
#include "tests/support/propertylist/PropertyListTest.h"

#include <gtest/gtest.h>

#include <random>

namespace navrel {
namespace {

using propertylist::NodeArray;

QString readText(const QByteArray& text) {
    return readList(text).toString();
}

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");
const QString c = QStringLiteral("c");

TEST(ASCIIPropertyList, dictionariesArraysAndStringsNest) {
    EXPECT_EQ(readList("{ a = ( b, { c = \"x y\"; } ); b = (); c = {}; }"),
              QVariant(map({{a, QVariantList{b, map({{c, QStringLiteral("x y")}})}},
                            {b, QVariantList()},
                            {c, QVariantMap()}})));
}

TEST(ASCIIPropertyList, theRootMayBeAnyValue) {
    EXPECT_EQ(readList("word"), QVariant(QStringLiteral("word")));
    EXPECT_EQ(readList("(a, b)"), QVariant(QVariantList{a, b}));
    EXPECT_EQ(readList("<0aFF>"), QVariant(QByteArray("\x0A\xFF")));
}

TEST(ASCIIPropertyList, whiteSpaceIsTabToCarriageReturnBlankAndTheUnicodeSeparators) {
    EXPECT_EQ(readList("\t\n\v\f\r \xE2\x80\xA8\xE2\x80\xA9(a\xE2\x80\xA8,\xE2\x80\xA9"
                       "b\v)\f"),
              QVariant(QVariantList{a, b}));
}

TEST(ASCIIPropertyList, otherUnicodeSpacesAreNoWhiteSpace) {
    EXPECT_EQ(reasonOf("\xC2\xA0(a)"), QStringLiteral("line 1, column 1: expected a value"));
    EXPECT_EQ(reasonOf("(a\xE2\x80\xA7)"),
              QStringLiteral("line 1, column 3: expected \",\" or \")\" after an element"));
}

TEST(ASCIIPropertyList, commentsStandBetweenAnyTwoTokens) {
    EXPECT_EQ(
        readList("/*1*/{/*2*/a /*3*/=/*4*/b /**/;//5\n b // 6\n = // 7\r(//8\n/***/)/*/*/;}//9")
            .toMap()
            .value(b),
        QVariant(QVariantList()));
}

TEST(ASCIIPropertyList, aLineCommentEndsAtAnyLineBreak) {
    for (const char* lineBreak : {"\n", "\r", "\r\n", "\xE2\x80\xA8", "\xE2\x80\xA9"}) {
        EXPECT_EQ(readText(QByteArray("// one") + lineBreak + "word"), QStringLiteral("word"));
    }
}

TEST(ASCIIPropertyList, anUnterminatedCommentRunsToTheEnd) {
    EXPECT_EQ(readText("word /* } ) ; word"), QStringLiteral("word"));
    EXPECT_EQ(readText("word /*/"), QStringLiteral("word"));
}

TEST(ASCIIPropertyList, anUnquotedStringIsLettersDigitsAndSixMarks) {
    const QByteArray all = "ABCXYZabcxyz0189_$/:.-";
    EXPECT_EQ(readText(all), QString::fromLatin1(all));
    for (int byte = 0x21; byte < 0x7F; ++byte) {
        const QByteArray text = QByteArray("x") + static_cast<char>(byte);
        const bool mayStand = std::isalnum(byte) != 0 || QByteArray("_$/:.-").contains(text.at(1));
        EXPECT_EQ(propertyListWithData(text).has_value(), mayStand) << text.constData();
    }
}

TEST(ASCIIPropertyList, aSlashWithinAnUnquotedStringBeginsNoComment) {
    EXPECT_EQ(readText("http://host//path"), QStringLiteral("http://host//path"));
    EXPECT_EQ(readText("/usr/lib"), QStringLiteral("/usr/lib"));
}

TEST(ASCIIPropertyList, unquotedTextBeyondASCIIIsRefused) {
    EXPECT_EQ(reasonOf("{ a = \xC3\xA9; }"), QStringLiteral("line 1, column 7: expected a value"));
    EXPECT_EQ(reasonOf("{ a = $(NAME); }"),
              QStringLiteral("line 1, column 8: expected \";\" after a value"));
}

TEST(ASCIIPropertyList, quotesAreDoubleOrSingleAndHoldTheOther) {
    EXPECT_EQ(readText("\"it's\""), QStringLiteral("it's"));
    EXPECT_EQ(readText("'say \"so\"'"), QStringLiteral("say \"so\""));
    EXPECT_EQ(readText("\"\""), QString());
}

TEST(ASCIIPropertyList, rawLineBreaksAndTabsStandWithinQuotes) {
    EXPECT_EQ(readText("\"one\n\ttwo\r\nthree\""), QStringLiteral("one\n\ttwo\r\nthree"));
}

TEST(ASCIIPropertyList, quotedTextIsTakenAsItStands) {
    EXPECT_EQ(readText("\"/* no comment */ // \xF0\x9F\x98\x80 \xE4\xB8\xAD $(X)+&\""),
              QString::fromUtf8("/* no comment */ // \xF0\x9F\x98\x80 \xE4\xB8\xAD $(X)+&"));
}

TEST(ASCIIPropertyList, controlCharactersHaveEscapes) {
    EXPECT_EQ(readText("\"\\a\\b\\f\\n\\r\\t\\v\""), QStringLiteral("\a\b\f\n\r\t\v"));
}

TEST(ASCIIPropertyList, anyOtherEscapedCharacterStandsForItself) {
    EXPECT_EQ(readText("\"\\\"\\'\\\\\\q\\8\\\n\\u0041\\\xC3\xA9\""),
              QString::fromUtf8("\"'\\q8\nu0041\xC3\xA9"));
}

TEST(ASCIIPropertyList, oneToThreeOctalDigitsAreANeXTSTEPByte) {
    EXPECT_EQ(readText("\"\\7|\\101|\\1019|\\12z\""), QStringLiteral("\a|A|A9|\nz"));
    EXPECT_EQ(readText("\"\\200\\341\\256\\320\\375\""),
              QString::fromUtf8("\u00A0\u00C6\uFB01\u2014\u00FF"));
}

TEST(ASCIIPropertyList, anOctalEscapeKeepsEightBits) {
    EXPECT_EQ(readText("\"\\501\""), QStringLiteral("A")); // 0501 is 0x141
}

TEST(ASCIIPropertyList, theTwoBytesWithoutACharacterGiveTheReplacement) {
    EXPECT_EQ(readText("\"\\376\\377\""), QString::fromUtf8("\uFFFD\uFFFD"));
}

TEST(ASCIIPropertyList, aUEscapeIsAUTF16Unit) {
    EXPECT_EQ(readText("\"\\U00e9\\U4E2D\\U41g\\U0001\""), QString::fromUtf8("\u00E9\u4E2D"
                                                                             "Ag\x01"));
    EXPECT_EQ(readText("\"\\U004142\""), QStringLiteral("A42"));
    EXPECT_EQ(readText("\"\\Ug\""), QString(QChar(u'\0')) + QStringLiteral("g"));
}

TEST(ASCIIPropertyList, aSurrogatePairComesAsTwoEscapes) {
    EXPECT_EQ(readText("\"\\Ud83d\\Ude00\""), QString::fromUtf8("\U0001F600"));
}

TEST(ASCIIPropertyList, aHalfOfAPairGivesTheReplacement) {
    EXPECT_EQ(readText("\"\\Ud83d\""), QString::fromUtf8("\uFFFD"));
    EXPECT_EQ(readText("\"\\Ud83dx\\Ude00\""), QString::fromUtf8("\uFFFDx\uFFFD"));
    EXPECT_EQ(readText("\"\\Ud83d\\Ud83d\\Ude00\""), QString::fromUtf8("\uFFFD\U0001F600"));
    EXPECT_EQ(readText("\"\\Ude00\\Ud83d\\101\""), QString::fromUtf8("\uFFFD\uFFFD"
                                                                     "A"));
}

TEST(ASCIIPropertyList, aStringThatIsNotClosedIsAnErrorAtItsBeginning) {
    EXPECT_EQ(reasonOf("{\n\ta = \"x\\\";\n}"),
              QStringLiteral("line 2, column 6: expected the string to be closed"));
    EXPECT_EQ(reasonOf("\"\\"),
              QStringLiteral("line 1, column 1: expected the string to be closed"));
}

TEST(ASCIIPropertyList, aKeyWithoutAValueIsItsOwnValue) {
    EXPECT_EQ(readList("{ a; \"b\\n\" ; }"),
              QVariant(map({{a, a}, {QStringLiteral("b\n"), QStringLiteral("b\n")}})));
}

TEST(ASCIIPropertyList, aMissingSemicolonIsAnErrorEvenBeforeTheBrace) {
    EXPECT_EQ(reasonOf("{ a = b }"),
              QStringLiteral("line 1, column 9: expected \";\" after a value"));
    EXPECT_EQ(reasonOf("{ a = { b = c; } }"),
              QStringLiteral("line 1, column 18: expected \";\" after a value"));
    EXPECT_EQ(reasonOf("{ a }"),
              QStringLiteral("line 1, column 5: expected \"=\" or \";\" after a key"));
}

TEST(ASCIIPropertyList, anArraysLastCommaIsOptional) {
    EXPECT_EQ(readList("(a, b,)"), readList("(a, b)"));
    EXPECT_EQ(readList("((a), (b),)"), readList("((a), (b))"));
}

TEST(ASCIIPropertyList, twoCommasAreAnError) {
    EXPECT_EQ(reasonOf("(a,, b)"), QStringLiteral("line 1, column 4: expected a value"));
    EXPECT_EQ(reasonOf("(,)"), QStringLiteral("line 1, column 2: expected a value"));
}

TEST(ASCIIPropertyList, dataIsHexadecimalDigitsWithBlanksAnywhere) {
    EXPECT_EQ(
        readList("{ a = <0123 4567\n89ab C DEF>; b = <>; }"),
        QVariant(map({{a, QByteArray("\x01\x23\x45\x67\x89\xAB\xCD\xEF")}, {b, QByteArray()}})));
    EXPECT_EQ(readList("<\xE2\x80\xA8"
                       "0\xE2\x80\xA9\t1 \xE2\x80\xA8>"),
              QVariant(QByteArray("\x01")));
}

TEST(ASCIIPropertyList, dataOfAnOddNumberOfDigitsOrOtherCharactersIsRefused) {
    EXPECT_EQ(reasonOf("<012>"),
              QStringLiteral("line 1, column 5: expected an even number of hexadecimal digits"));
    EXPECT_EQ(reasonOf("(<0g>)"),
              QStringLiteral("line 1, column 4: expected hexadecimal digits or \">\""));
    EXPECT_EQ(reasonOf("<01"),
              QStringLiteral("line 1, column 4: expected hexadecimal digits or \">\""));
    EXPECT_EQ(reasonOf("<01 // a\n>"),
              QStringLiteral("line 1, column 5: expected hexadecimal digits or \">\""));
}

TEST(ASCIIPropertyList, theLastOfRepeatedKeysWins) {
    EXPECT_EQ(readList("{ a = b; \"\\101\" = b; a = c; A = a; }"),
              QVariant(map({{a, c}, {QStringLiteral("A"), a}})));
}

TEST(ASCIIPropertyList, nothingButBlanksStandsBehindTheList) {
    EXPECT_EQ(readList("{} // end\n/* of file */ "), QVariant(QVariantMap()));
    EXPECT_EQ(reasonOf("{}\n}"),
              QStringLiteral("line 2, column 1: expected nothing more after the list"));
    EXPECT_EQ(reasonOf("a b"),
              QStringLiteral("line 1, column 3: expected nothing more after the list"));
    EXPECT_EQ(reasonOf(QByteArray("{}\0", 3)),
              QStringLiteral("line 1, column 3: expected nothing more after the list"));
}

TEST(ASCIIPropertyList, mergeConflictsAndLostBracketsAreErrors) {
    EXPECT_EQ(reasonOf("{\n<<<<<<< HEAD\n\ta = b;\n=======\n>>>>>>> other\n}"),
              QStringLiteral("line 2, column 1: expected a key or \"}\""));
    EXPECT_EQ(reasonOf("{\n\ta = {\n\t\tb = c;\n}\n"),
              QStringLiteral("line 5, column 1: expected \";\" after a value"));
    EXPECT_EQ(reasonOf("{ a = (\n b,\n c = ( d, );\n}"),
              QStringLiteral("line 3, column 4: expected \",\" or \")\" after an element"));
    EXPECT_EQ(reasonOf("{ a = (b; }"),
              QStringLiteral("line 1, column 9: expected \",\" or \")\" after an element"));
    EXPECT_EQ(reasonOf("{ a = ; }"), QStringLiteral("line 1, column 7: expected a value"));
    EXPECT_EQ(reasonOf("{ (a) = b; }"),
              QStringLiteral("line 1, column 3: expected a key or \"}\""));
}

TEST(ASCIIPropertyList, everyBeginningOfAListIsAnError) {
    const QByteArray list = "{a=(b,\"c\\n\",<00>,{d;},);}";
    for (qsizetype size = 0; size < list.size(); ++size) {
        EXPECT_FALSE(propertyListWithData(list.first(size)).has_value()) << size;
    }
    EXPECT_TRUE(propertyListWithData(list).has_value());
}

TEST(ASCIIPropertyList, carriageReturnsAreWhiteSpace) {
    EXPECT_EQ(readList("// !$*UTF8*$!\r\n{\r\n\ta = b;\n\tb = (\r\n\t\tc,\r\n\t);\r\n}\r\n"),
              QVariant(map({{a, b}, {b, QVariantList{c}}})));
    EXPECT_EQ(reasonOf("{\r\n\ra = ;\r\n}"), QStringLiteral("line 3, column 5: expected a value"));
}

TEST(ASCIIPropertyList, aByteOrderMarkIsAcceptedAtTheBeginningOnly) {
    EXPECT_EQ(readText("\xEF\xBB\xBFword"), QStringLiteral("word"));
    EXPECT_EQ(reasonOf(" \xEF\xBB\xBFword"), QStringLiteral("line 1, column 2: expected a value"));
}

TEST(ASCIIPropertyList, nothingAndBlanksAloneAreNoList) {
    for (const char* text : {"", " \n", "\xEF\xBB\xBF", "// comment", "/* comment */"}) {
        EXPECT_TRUE(reasonOf(text).endsWith(QStringLiteral("expected a value"))) << text;
    }
}

TEST(ASCIIPropertyList, bytesThatAreNotUTF8AreNoListWhereverTheyStand) {
    const QByteArray filling(100, 'x');
    for (const char* bad : {"\xA9", "\xC3", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                            "\xE2\x80", "\xF0\x9F\x98", "\xFF"}) {
        EXPECT_EQ(reasonOf("(" + filling + ", /* \xC3\xA9\n" + bad + " */ \"x\")"),
                  QStringLiteral("line 2, column 1: expected UTF-8"));
        EXPECT_EQ(reasonOf(QByteArray("\"") + bad),
                  QStringLiteral("line 1, column 2: expected UTF-8"));
    }
}

TEST(ASCIIPropertyList, columnsCountCharacters) {
    EXPECT_EQ(reasonOf("(\"\xC3\xA9\xF0\x9F\x98\x80\" \"\")"),
              QStringLiteral("line 1, column 7: expected \",\" or \")\" after an element"));
}

TEST(ASCIIPropertyList, nestingHasALimit) {
    const auto nested = [](int depth) { return QByteArray(depth, '(') + QByteArray(depth, ')'); };

    EXPECT_TRUE(propertyListWithData(nested(kMaxPropertyListDepth)).has_value());
    std::optional<Error> error;
    EXPECT_FALSE(propertyListWithData(nested(kMaxPropertyListDepth + 1), &error).has_value());
    EXPECT_EQ(error->code(), static_cast<qint64>(PropertyListErrorCode::tooLarge));
    EXPECT_EQ(reasonOf(QByteArray(1'000'000, '{')),
              QStringLiteral("line 1, column 2: expected a key or \"}\""));
    EXPECT_TRUE(reasonOf(QByteArray("{a=").repeated(1'000'000)).contains(QStringLiteral("nested")));
}

TEST(ASCIIPropertyList, valuesHaveALimit) {
    const auto arrayOf = [](qsizetype elements) {
        return "(" + QByteArray("a,").repeated(elements) + ")";
    };
    const auto most = static_cast<qsizetype>(kMaxPropertyListValues) - 1; // and the array

    EXPECT_TRUE(propertyListWithData(arrayOf(most)).has_value());
    EXPECT_EQ(reasonOf(arrayOf(most + 1)),
              QStringLiteral("line 1, column 2000000: the list has too many values"));
}

TEST(ASCIIPropertyList, aFullNodeArrayRefusesWhicheverValueComesNext) {
    for (const char* text : {"(a, b, c)", "(a, b, \"c\")", "(a, b, <00>)", "(a, b, {})",
                             "(a, b, ())", "{a = b; c;}", "{a; b;}", "{a; \"b\";}"}) {
        NodeArray nodes(3);
        const auto failure = propertylist::parseASCII(text, nodes);
        ASSERT_TRUE(failure.has_value()) << text;
        EXPECT_EQ(failure->code, PropertyListErrorCode::tooLarge) << text;
        EXPECT_LE(nodes.capacity(), 3U);
    }
    NodeArray enough(3);
    EXPECT_FALSE(propertylist::parseASCII("(a, b)", enough).has_value());
}

TEST(ASCIIPropertyList, bytesHaveALimit) {
    const auto size = static_cast<qsizetype>(kMaxPropertyListBytes) + 1;
    const QByteArray tooLong(size, ' ');

    EXPECT_EQ(reasonOf(tooLong), QStringLiteral("line 1, column 1: the list has too many bytes"));
}

// The outcome of a parser as text, to compare.
std::string outcomeOf(const std::optional<propertylist::TextFailure>& failure,
                      const NodeArray& nodes) {
    if (failure) {
        return std::to_string(failure->position) + " " + failure->reason;
    }
    std::string text;
    for (std::uint32_t i = 0; i < nodes.size(); ++i) {
        text += std::to_string(static_cast<int>(nodes.at(i).kind())) + ":" +
                std::to_string(nodes.at(i).position()) + "+" + std::to_string(nodes.at(i).size()) +
                " ";
    }
    return text;
}

void expectSameWithoutVectors(std::string_view text) {
    NodeArray nodes;
    NodeArray portableNodes;
    const auto failure = propertylist::parseASCII(text, nodes);
    const auto portableFailure = propertylist::parseASCIIPortably(text, portableNodes);

    ASSERT_EQ(outcomeOf(failure, nodes), outcomeOf(portableFailure, portableNodes)) << text;
}

TEST(ASCIIPropertyList, vectorsAndPlainCodeAgreeOnEveryByteAtEveryPlaceOfABlock) {
    for (int byte = 0; byte < 256; ++byte) {
        for (std::size_t place = 0; place < 70; ++place) {
            for (const char* form : {"%s", "\"%s\"", "/*%s*/x", "(\n%s)"}) {
                std::string filling(70, form[0] == '(' ? ' ' : 'x');
                filling[place] = static_cast<char>(byte);
                std::string text(form);
                text.replace(text.find("%s"), 2, filling);
                ASSERT_NO_FATAL_FAILURE(expectSameWithoutVectors(text));
            }
        }
    }
}

TEST(ASCIIPropertyList, vectorsAndPlainCodeAgreeOnRandomTextsOfTellingTokens) {
    const std::vector<std::string> tokens = {"{",
                                             "}",
                                             "(",
                                             ")",
                                             ";",
                                             ",",
                                             "=",
                                             " ",
                                             "\n\t\t\t",
                                             "\"",
                                             "'",
                                             "\\",
                                             "/*",
                                             "*/",
                                             "*",
                                             "/",
                                             "//",
                                             "\n",
                                             "\r\n",
                                             "<",
                                             "0a",
                                             ">",
                                             "isa",
                                             "\xC3",
                                             "\xC3\xA9",
                                             "\xE2\x80\xA8",
                                             "0123456789ABCDEF01234567",
                                             "/* some name in Sources */",
                                             "\"a quoted string of some length\"",
                                             "\"\\U00e9\""};
    std::mt19937 random(20240501);
    for (int round = 0; round < 20'000; ++round) {
        std::string text = round % 2 == 0 ? "{ a = (" : "";
        for (std::size_t i = random() % 40; i > 0; --i) {
            text += tokens[random() % tokens.size()];
        }
        ASSERT_NO_FATAL_FAILURE(expectSameWithoutVectors(text));
    }
}

} // namespace
} // namespace navrel

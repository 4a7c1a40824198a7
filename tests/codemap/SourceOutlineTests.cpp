#include "codemap/OutlineBuilder.h"
#include "codemap/SourceOutline.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace navrel {
namespace {

using namespace std::string_literals;

TEST(DecodedSource, utf8NeedsNoChange) {
    EXPECT_EQ(decodedSource(""), std::nullopt);
    EXPECT_EQ(decodedSource("let caf\xC3\xA9 = 1"), std::nullopt);
    EXPECT_EQ(decodedSource("\xEF\xBB\xBFlet a = 1"), std::nullopt);
}

TEST(DecodedSource, utf16IsReadByItsByteOrderMark) {
    EXPECT_EQ(decodedSource("\xFF\xFE"s + "a\0\xE9\0"s), "a\xC3\xA9");
    EXPECT_EQ(decodedSource("\xFE\xFF"s + "\0a\0\xE9"s), "a\xC3\xA9");
    EXPECT_EQ(decodedSource("\xFF\xFE"s + "\xAC\x20"s), "\xE2\x82\xAC");
    EXPECT_EQ(decodedSource("\xFF\xFE"s + "\x3D\xD8\x00\xDE"s), "\xF0\x9F\x98\x80");
}

TEST(DecodedSource, halfACharacterOfUTF16IsReplaced) {
    EXPECT_EQ(decodedSource("\xFF\xFE"s + "\x3D\xD8"s + "a\0"s), "\xEF\xBF\xBD"
                                                                 "a");
    EXPECT_EQ(decodedSource("\xFF\xFE"s + "\x00\xDE"s), "\xEF\xBF\xBD");
    EXPECT_EQ(decodedSource("\xFF\xFE"s + "a\0b"s), "a");
}

TEST(DecodedSource, whatIsNoUTF8IsLatin1) {
    EXPECT_EQ(decodedSource("caf\xE9"), "caf\xC3\xA9");
    EXPECT_EQ(decodedSource("caf\xC3\xA9 caf\xE9"), "caf\xC3\x83\xC2\xA9 caf\xC3\xA9");
}

TEST(SourceOutline, whatIsNoSourceHasLinesAlone) {
    const Outline outline = outlineOfSource(Language::none, "class A {}\n\n");
    EXPECT_EQ(outline.language(), Language::none);
    EXPECT_EQ(outline.lines(), 2u);
    EXPECT_TRUE(outline.symbols().empty());
}

TEST(OutlineBuilder, bytesThatAreNoUTF8BecomeQuestionMarks) {
    OutlineBuilder builder(Language::swift);
    builder.add({SymbolKind::function, Access::unstated, 1, "f\xFFg", "func f\xC3", ""}, 1);
    const Outline outline = builder.finish(1);
    EXPECT_EQ(outline.nameOf(outline.symbols()[0]), "f?g");
    EXPECT_EQ(outline.text(outline.symbols()[0].signature), "func f?");
}

TEST(OutlineBuilder, aLongSignatureIsCutBetweenCharacters) {
    OutlineBuilder builder(Language::swift);
    const std::string text = std::string(kMaximumSignatureLength - 1, 'a') + "\xC3\xA9";
    builder.add({SymbolKind::function, Access::unstated, 1, "f", text, ""}, 1);
    const Outline outline = builder.finish(1);
    EXPECT_EQ(outline.text(outline.symbols()[0].signature),
              std::string(kMaximumSignatureLength - 1, 'a'));
}

/// The name of the symbol at a line; empty where there is none.
std::string symbolAt(const Outline& outline, std::uint32_t line) {
    const std::size_t index = outline.symbolAtLine(line);
    return index < outline.symbols().size() ? std::string(outline.nameOf(outline.symbols()[index]))
                                            : std::string();
}

TEST(SymbolAtLine, theInnermostThatHoldsTheLineCounts) {
    const Outline outline = outlineOfSource(Language::swift, "import Foundation\n"
                                                             "struct Tide {\n"
                                                             "    func rise() {\n"
                                                             "        print(1)\n"
                                                             "    }\n"
                                                             "\n"
                                                             "    func fall() {\n"
                                                             "    }\n"
                                                             "}\n"
                                                             "\n"
                                                             "func wait() {\n"
                                                             "}\n"
                                                             "// the end\n");
    const std::vector<std::string> expected = {"",       "Tide",   "rise()", "rise()", "rise()",
                                               "Tide",   "fall()", "fall()", "Tide",   "Tide",
                                               "wait()", "wait()", "wait()"};
    for (std::size_t line = 1; line <= expected.size(); ++line) {
        EXPECT_EQ(symbolAt(outline, static_cast<std::uint32_t>(line)), expected[line - 1]) << line;
    }
    EXPECT_EQ(symbolAt(outline, 1'000'000), "wait()");
    EXPECT_EQ(symbolAt(outlineOfSource(Language::swift, ""), 1), "");
}

TEST(SymbolAtLine, ofSeveralInALineTheFirstCounts) {
    const Outline outline = outlineOfSource(Language::swift, "enum Kind {\n"
                                                             "    case spring, neap\n"
                                                             "}\n");
    EXPECT_EQ(symbolAt(outline, 2), "spring");
    EXPECT_EQ(symbolAt(outline, 3), "Kind");
}

} // namespace
} // namespace navrel

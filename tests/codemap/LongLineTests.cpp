// Sources of one long line, as no hand writes them: each takes time in proportion to its length.
// One that takes the square of it is ended by the time that a test may take.

#include "codemap/SourceOutline.h"
#include "tests/Sanitizers.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>

namespace navrel {
namespace {

constexpr int kRepeats = loadOf(400'000, 40'000);

using Piece = std::pair<Language, std::string_view>;

class LongLines : public testing::TestWithParam<Piece> {};

TEST_P(LongLines, areReadToTheirEnd) {
    const auto& [language, piece] = GetParam();
    std::string text;
    for (int repeat = 0; repeat < kRepeats; ++repeat) {
        text += piece;
    }
    EXPECT_EQ(outlineOfSource(language, text + "\n\n").lines(), 2u) << piece;
}

INSTANTIATE_TEST_SUITE_P(
    AllLanguages, LongLines,
    testing::Values(Piece(Language::cpp, "x<y{1}, y{1}, "), Piece(Language::cpp, "A<B> x<{}>, "),
                    Piece(Language::cpp, "int a{1}, "), Piece(Language::cpp, "do {} while "),
                    Piece(Language::cpp, "A(1) b = 1, "), Piece(Language::header, "int a = 1, "),
                    Piece(Language::objectiveC, "@property (a) int b, "),
                    Piece(Language::objectiveCpp, "f() : a(1), b{2} "),
                    Piece(Language::swift, "var a = { "), Piece(Language::swift, "\"\"\" "),
                    Piece(Language::swift, "func a<"), Piece(Language::swift, " ")));

} // namespace
} // namespace navrel

#include "bench/scanning/HostileTexts.h"

#include <array>

namespace navrel::bench {

namespace {

constexpr qsizetype kSize = qsizetype(1) << 20;

struct Piece {
    const char* path;
    const char* before;
    const char* repeated;
    const char* behind;
};

constexpr std::array kPieces = {
    Piece{"a.m", "", "-(a", ""},
    Piece{"a.m", "", "-(", ""},
    Piece{"a.m", "", "-(a){", ""},
    Piece{"a.m", "-(a)", ":", "{"},
    Piece{"a.m", "-(a)", "(", "{"},
    Piece{"a.m", "-(a)", "( ", "{"},
    Piece{"a.m", "-(a)", "b:(c)d ", "{"},
    Piece{"a.m", "", "@property int a, ", ""},
    Piece{"a.m", "", "@property ", ";"},
    Piece{"a.m", "@property", " ", ""},
    Piece{"a.m", "", "@dynamic;\n", ""},
    Piece{"a.m", "", "@p", ""},
    Piece{"a.m", "", "//", ""},
    Piece{"a.m", "", "// mark: \n", ""},
    Piece{"a.m", "", "//navrel: a\n", ""},
    Piece{"a.m", "", "//navrel:", ""},
    Piece{"a.m", "", "#warning \n", ""},
    Piece{"a.m", "", "\xC3\xA9", ""},
    Piece{"a.m", "", "\n", ""},
    Piece{"a.h", "", "@i", ""},
    Piece{"a.h", "", "@interface a", ""},
    Piece{"a.h", "", "@interface a:", ""},
    Piece{"a+b.h", "", "@interface a:", ""},
    Piece{"a+b.h", "", "@interface a:\n", ""},
    Piece{"a|b.h", "", ":\n", ""},
    Piece{"a.swift", "", "class class", ""},
    Piece{"a.swift", "", "let", ""},
    Piece{"a.swift", "", "let ", ""},
    Piece{"a.swift", "", "func", ""},
    Piece{"a.swift", "", "cla\xC3\x9F", ""},
    Piece{"a.swift", "class", "\xC5\xBF", ""},
};

} // namespace

std::vector<HostileText> makeHostileTexts() {
    std::vector<HostileText> texts;
    for (const Piece& piece : kPieces) {
        const QByteArray repeated(piece.repeated);
        texts.push_back(
            {piece.path, piece.before + repeated.repeated(kSize / repeated.size()) + piece.behind});
    }
    return texts;
}

} // namespace navrel::bench

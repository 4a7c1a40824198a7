#pragma once

#include <QByteArrayView>

#include <array>
#include <string_view>

namespace navrel {

/// The character classes of the patterns, which ignore letter case. One bit each.
enum class CharacterClass : quint16 {
    Blank = 1,         ///< [ ]
    BlankOrDash = 2,   ///< [ -]
    BlankOrStar = 4,   ///< [ *]
    LetterOrDigit = 8, ///< [a-z0-9]
    Word = 16,         ///< [a-z0-9_]
    Cast = 32,         ///< [a-z0-9 *]
    Head = 64,         ///< [a-z :()_0-9*\n]
    Attribute = 128,   ///< [a-z0-9, ]
    Outlet = 256,      ///< [IBOutlet ]
    Protocol = 512,    ///< [a-z, ]
};

namespace characterclasses {

constexpr quint16 bitOf(CharacterClass characterClass) {
    return static_cast<quint16>(characterClass);
}

/// The classes that contain all letters. Without regard to case, they also contain U+017F (long s)
/// and U+212A (Kelvin sign), which fold to "s" and "k".
inline constexpr quint16 kWithAllLetters =
    bitOf(CharacterClass::LetterOrDigit) | bitOf(CharacterClass::Word) |
    bitOf(CharacterClass::Cast) | bitOf(CharacterClass::Head) | bitOf(CharacterClass::Attribute) |
    bitOf(CharacterClass::Protocol);

using Table = std::array<quint16, 256>;

constexpr void add(Table& table, CharacterClass characterClass, std::string_view members) {
    for (const char member : members) {
        table[static_cast<uchar>(member)] |= bitOf(characterClass);
    }
}

constexpr Table makeTable() {
    constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    Table table{};
    for (const auto characterClass :
         {CharacterClass::LetterOrDigit, CharacterClass::Word, CharacterClass::Cast,
          CharacterClass::Head, CharacterClass::Attribute, CharacterClass::Protocol}) {
        add(table, characterClass, kLetters);
    }
    for (const auto characterClass :
         {CharacterClass::LetterOrDigit, CharacterClass::Word, CharacterClass::Cast,
          CharacterClass::Head, CharacterClass::Attribute}) {
        add(table, characterClass, "0123456789");
    }
    add(table, CharacterClass::Blank, " ");
    add(table, CharacterClass::BlankOrDash, " -");
    add(table, CharacterClass::BlankOrStar, " *");
    add(table, CharacterClass::Word, "_");
    add(table, CharacterClass::Cast, " *");
    add(table, CharacterClass::Head, " :()_*\n");
    add(table, CharacterClass::Attribute, ", ");
    add(table, CharacterClass::Outlet, "IBOUTLEiboutle ");
    add(table, CharacterClass::Protocol, ", ");
    return table;
}

inline constexpr Table kTable = makeTable();

/// Maps ASCII to lower case, and every other byte to NUL, which no keyword holds.
constexpr std::array<char, 256> makeFolded() {
    std::array<char, 256> folded{};
    for (int byte = 0; byte < 0x80; ++byte) {
        const bool isCapital = byte >= 'A' && byte <= 'Z';
        folded[static_cast<std::size_t>(byte)] = static_cast<char>(isCapital ? byte | 0x20 : byte);
    }
    return folded;
}

inline constexpr std::array<char, 256> kFolded = makeFolded();

} // namespace characterclasses

/// A place in a text, for matching a pattern from there on: each function moves over what its part
/// of the pattern matches. The text must be valid UTF-8, is not owned, and must outlive the cursor.
struct TextCursor {
    const char* at;
    const char* end;

    /// The byte at the cursor; NUL, which no pattern holds, at the end.
    char current() const { return at < end ? *at : '\0'; }

    /// Moves over one byte if it is `byte`, and says whether it was.
    bool take(char byte) {
        const bool isHere = current() == byte;
        at += isHere ? 1 : 0;
        return isHere;
    }

    /// Moves over all bytes of this value.
    void skipAll(char byte) {
        while (at < end && *at == byte) {
            ++at;
        }
    }

    /// Moves over all characters of the class.
    void skipAll(CharacterClass characterClass) {
        const quint16 bit = characterclasses::bitOf(characterClass);
        for (;;) {
            while (at < end && (characterclasses::kTable[static_cast<uchar>(*at)] & bit) != 0) {
                ++at;
            }
            if ((bit & characterclasses::kWithAllLetters) == 0 || !takeLetterBeyondASCII()) {
                return;
            }
        }
    }

    /// Moves over a text without regard to letter case, and says whether all of it was there; if
    /// not, stays. `folded` must be ASCII in lower case. Characters outside ASCII match by their
    /// full case folding: U+00DF matches "ss".
    bool takeFolded(std::string_view folded) {
        const char* place = at;
        std::size_t taken = 0;
        while (taken < folded.size() && place < end &&
               characterclasses::kFolded[static_cast<uchar>(*place)] == folded[taken]) {
            ++place;
            ++taken;
        }
        if (taken == folded.size()) {
            at = place;
            return true;
        }
        const bool isBeyondASCII = place < end && static_cast<uchar>(*place) >= 0x80;
        return isBeyondASCII && takeFoldedBeyondASCII(place, folded.substr(taken));
    }

    /// The end of what "." matches from here on: the next line break, of which there are seven
    /// (LF, VT, FF, CR, U+0085, U+2028, U+2029), or the end of the text.
    const char* endOfLine() const;

    QByteArrayView textFrom(const char* begin) const { return {begin, at - begin}; }

private:
    bool takeLetterBeyondASCII() {
        constexpr std::string_view kLongS = "\xC5\xBF";
        constexpr std::string_view kKelvinSign = "\xE2\x84\xAA";
        if (current() == kLongS[0]) {
            return takeBytes(kLongS);
        }
        return current() == kKelvinSign[0] && takeBytes(kKelvinSign);
    }

    /// Moves over a character of several bytes if it is here.
    bool takeBytes(std::string_view bytes) {
        std::size_t taken = 0; // one by one: a call to compare two or three would take longer
        while (taken < bytes.size() && at + taken < end && at[taken] == bytes[taken]) {
            ++taken;
        }
        const bool areHere = taken == bytes.size();
        at += areHere ? taken : 0;
        return areHere;
    }

    bool takeFoldedBeyondASCII(const char* place, std::string_view folded);
    std::string_view takeCaseFolding();
};

} // namespace navrel

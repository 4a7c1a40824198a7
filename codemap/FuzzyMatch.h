#pragma once

#include "codemap/NameLetters.h"
#include "codemap/ShortName.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace navrel {

/// Longer queries are cut off: nobody types them.
inline constexpr std::size_t kMaximumQueryLength = 64;
/// Of longer names only the beginning is looked at.
inline constexpr std::size_t kMaximumMatchedLength = 512;

/// Finds a query's characters in names, in their order, with others between them, letter case
/// aside. Of all ways to place them the one with the highest score counts: characters in a row, at
/// the beginning of words, at capitals and at digits score higher, gaps lower. Blanks divide a
/// query into words, each of which must be found by itself; the scores add up.
///
/// The scale is that of command-line fuzzy finders, so that the order is the one that hands are
/// used to. Letter case never decides: telephones begin every input with a capital.
///
/// One thread at a time: the memory of the calculation is kept from one name to the next.
class FuzzyMatch {
public:
    explicit FuzzyMatch(std::string_view query);

    /// Whether the query has nothing to look for.
    bool isEmpty() const { return words_.empty(); }

    /// What a name must hold to be found.
    LetterSet letters() const { return letters_; }

    /// A score that no name reaches beyond, by its first character and its letters alone.
    int bound(std::string_view name, const NameLetters& letters) const;

    /// The score of a name; nothing where the query is not in it, or where it is certain that the
    /// score is below `atLeast`, which is cheaper to find out.
    std::optional<int> score(std::string_view name, int atLeast = 0);

    /// The characters of a name that make up its score, in UTF-16 units, ascending; none where
    /// the query is not in it.
    std::vector<std::uint32_t> positions(std::string_view name);

private:
    using Characters = std::u32string;

    /// Of one character of a word: the bits that it has in a name's letters.
    struct Sought {
        std::uint64_t pair; ///< with the character before it
        std::uint32_t wordLetter;
    };

    /// A place of a short name that holds a character of a word.
    struct Match {
        int column = 0;
        int score = 0; ///< the best one that ends here or before
        int later = 0; ///< that score for what is to the right: each column there takes one more
        int run = 0;   ///< how many characters in a row end here

        /// The best score up to a column to the right, or up to this one.
        int scoreAt(int other) const {
            const int lowered = later - (other - column);
            return other == column ? score : lowered < 0 ? 0 : lowered;
        }
    };

    std::optional<int> scoreOfCharacter(std::string_view name) const;
    std::optional<int> scoreOfShortName(std::string_view name);
    bool findPlaces(const Characters& word);
    int scoreOfPlaces(std::string_view name, std::size_t length);
    void matchFirst(std::string_view name);
    void matchNext(std::string_view name, std::size_t row);
    static Match matchAfter(std::string_view name, const Match& last, int column);
    bool prepare(std::string_view name);
    void prepareOther(std::string_view name);
    void findBonuses();
    bool findFirstPlaces(const Characters& word);
    int boundOfWord(const Characters& word) const;
    int scoreOfWord(const Characters& word);
    void fillFirstRow(char32_t character);
    void fillRow(const Characters& word, std::size_t row);
    void trace(const Characters& word, std::vector<std::uint32_t>& places) const;
    std::size_t bestColumn(std::size_t row) const;
    std::size_t at(std::size_t row, std::size_t column) const { return row * length_ + column; }

    std::vector<Characters> words_; // folded
    std::vector<std::vector<Sought>> sought_;
    LetterSet letters_ = 0;

    // Of the name at hand, if it is short.
    ShortName short_;
    std::array<std::uint64_t, kMaximumQueryLength> places_{}; // of a word's characters
    std::array<std::vector<Match>, 2> matches_; // of a character, and of the one before

    // Of any other one.
    std::size_t length_ = 0;
    bool hasBonuses_ = false;
    std::vector<char32_t> folded_;
    std::vector<std::uint8_t> classes_;
    std::vector<std::int16_t> bonus_;
    std::vector<std::uint32_t> units_;  // places in UTF-16
    std::vector<std::uint32_t> firsts_; // of a word's characters: the first column that may hold it
    std::vector<std::int16_t> scores_;  // a row for each character of the word
    std::vector<std::int16_t> runs_;    // how many characters in a row end there
};

} // namespace navrel

#include "codemap/FuzzyMatch.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <bit>
#include <climits>
#include <utility>

// The best placement is found by dynamic programming: the score of the query's first r characters
// with the last of them at or before column c follows from the scores of one character fewer. That
// takes (length of the query) x (length of the name) steps, whatever the texts are. In a short name
// only the columns that hold a character of the query are looked at: what is between two of them
// lowers a score by its width.

namespace navrel {

namespace {

constexpr int kMatch = 16;
constexpr int kGapStart = -3;
constexpr int kGapExtension = -1;
constexpr int kBoundary = 8;
constexpr int kAfterDelimiter = kBoundary + 1;
constexpr int kAfterBlank = kBoundary + 2;
constexpr int kSign = kBoundary;
constexpr int kCamelCase = kBoundary + kGapExtension;
constexpr int kInARow = -(kGapStart + kGapExtension);
// The query's first character is the one that was thought of first.
constexpr int kFirstCharacterFactor = 2;

enum class Class : std::uint8_t { blank, sign, delimiter, lower, upper, letter, digit };
constexpr std::size_t kClasses = 7;

constexpr Class classOfASCII(char character) {
    if (character >= 'a' && character <= 'z') {
        return Class::lower;
    }
    if (character >= 'A' && character <= 'Z') {
        return Class::upper;
    }
    if (character >= '0' && character <= '9') {
        return Class::digit;
    }
    if (character == ' ' || (character >= '\t' && character <= '\r')) {
        return Class::blank;
    }
    const bool isDelimiter = std::string_view("/,:;|").find(character) != std::string_view::npos;
    return isDelimiter ? Class::delimiter : Class::sign;
}

Class classOfOther(char32_t character) {
    const auto point = static_cast<UChar32>(character);
    if (u_islower(point) != 0) {
        return Class::lower;
    }
    if (u_isupper(point) != 0) {
        return Class::upper;
    }
    if (u_isdigit(point) != 0) {
        return Class::digit;
    }
    if (u_isUWhiteSpace(point) != 0) {
        return Class::blank;
    }
    return u_isalpha(point) != 0 ? Class::letter : Class::sign;
}

constexpr int bonusBetween(Class before, Class here) {
    if (here == Class::blank) {
        return kAfterBlank;
    }
    if (here == Class::sign || here == Class::delimiter) {
        return kSign;
    }
    switch (before) {
    case Class::blank:
        return kAfterBlank;
    case Class::delimiter:
        return kAfterDelimiter;
    case Class::sign:
        return kBoundary;
    default:
        break;
    }
    const bool isHump = before == Class::lower && here == Class::upper;
    const bool isNumber = before != Class::digit && here == Class::digit;
    return isHump || isNumber ? kCamelCase : 0;
}

struct ASCIICharacter {
    Class kind{};
    char32_t folded = 0;
};

constexpr auto kASCII = [] {
    std::array<ASCIICharacter, 128> table{};
    for (std::size_t index = 0; index < table.size(); ++index) {
        const auto character = static_cast<char>(index);
        const Class kind = classOfASCII(character);
        table[index] = {kind,
                        static_cast<char32_t>(kind == Class::upper ? index + 'a' - 'A' : index)};
    }
    return table;
}();

constexpr auto kBonus = [] {
    std::array<std::array<std::int16_t, kClasses>, kClasses> table{};
    for (std::size_t before = 0; before < kClasses; ++before) {
        for (std::size_t here = 0; here < kClasses; ++here) {
            table[before][here] = static_cast<std::int16_t>(
                bonusBetween(static_cast<Class>(before), static_cast<Class>(here)));
        }
    }
    return table;
}();

bool isASCII(std::string_view text) {
    unsigned char all = 0;
    for (const char character : text) {
        all |= static_cast<unsigned char>(character);
    }
    return all < kASCII.size();
}

/// The bonus of a place in ASCII.
int bonusAt(std::string_view ascii, int place) {
    const auto classAt = [ascii](int index) {
        const auto byte = static_cast<unsigned char>(ascii[static_cast<std::size_t>(index)]);
        return static_cast<std::size_t>(kASCII[byte].kind);
    };
    const auto before = place == 0 ? static_cast<std::size_t>(Class::blank) : classAt(place - 1);
    return kBonus[before][classAt(place)];
}

/// Whether a text may hold a word's characters in their order: true also where it is not ASCII.
bool mayHoldInOrder(std::string_view text, std::u32string_view word) {
    std::size_t found = 0;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte >= kASCII.size()) {
            return true;
        }
        found += kASCII[byte].folded == word[found] ? 1 : 0;
        if (found == word.size()) {
            return true;
        }
    }
    return false;
}

char32_t folded(char32_t character) {
    return character < kASCII.size() ? kASCII[character].folded
                                     : static_cast<char32_t>(u_foldCase(
                                           static_cast<UChar32>(character), U_FOLD_CASE_DEFAULT));
}

/// The character at a place of UTF-8, past which the place moves; U+FFFD for what is invalid.
char32_t nextCharacter(std::string_view text, std::size_t& place) {
    UChar32 character = 0;
    auto index = static_cast<std::int32_t>(place);
    U8_NEXT_OR_FFFD(text.data(), index, static_cast<std::int32_t>(text.size()), character);
    place = static_cast<std::size_t>(index);
    return static_cast<char32_t>(character);
}

/// A score that no placement of a word reaches beyond: takes each character at its best place,
/// wherever that is. One that never stands right behind the one before it costs a gap, and begins
/// a run of its own. `bonusAt` gives the highest bonus that the name has for a place of the word,
/// `mayGoOnAt` whether its character may stand right behind the one before.
template <typename BonusAt, typename MayGoOnAt>
int boundOf(std::size_t length, BonusAt bonusAt, MayGoOnAt mayGoOnAt) {
    int ofRun = bonusAt(0);
    int sum = kMatch + ofRun * kFirstCharacterFactor;
    for (std::size_t index = 1; index < length; ++index) {
        const int own = bonusAt(index);
        const bool mayGoOn = mayGoOnAt(index);
        ofRun = mayGoOn ? std::max(own, ofRun) : own;
        sum += kMatch + (mayGoOn ? std::max(ofRun, kInARow) : own + kGapStart);
    }
    return sum;
}

} // namespace

FuzzyMatch::FuzzyMatch(std::string_view query) {
    Characters word;
    std::size_t place = 0;
    for (std::size_t count = 0; place < query.size() && count < kMaximumQueryLength; ++count) {
        const std::size_t begin = place;
        const char32_t character = nextCharacter(query, place);
        if (character != U' ') {
            word += folded(character);
            letters_ |= letterSetOf(query.substr(begin, place - begin));
        } else if (!word.empty()) {
            words_.push_back(std::exchange(word, {}));
        }
    }
    if (!word.empty()) {
        words_.push_back(std::move(word));
    }
    for (const Characters& each : words_) {
        char32_t before = 0;
        std::vector<Sought>& sought = sought_.emplace_back();
        for (const char32_t here : each) {
            sought.push_back({NameLetters::pairOf(before, here), NameLetters::wordLetter(here)});
            before = here;
        }
    }
}

std::optional<int> FuzzyMatch::score(std::string_view name, int atLeast) {
    if (words_.size() == 1 && words_.front().size() == 1 && isASCII(name)) {
        return scoreOfCharacter(name);
    }
    if (short_.set(name)) {
        return scoreOfShortName(name);
    }
    for (const Characters& word : words_) {
        if (!mayHoldInOrder(name, word)) {
            return std::nullopt;
        }
    }
    if (!prepare(name)) {
        return std::nullopt;
    }
    int sum = 0;
    for (const Characters& word : words_) {
        if (!findFirstPlaces(word)) {
            return std::nullopt;
        }
        if (words_.size() == 1 && atLeast > 0 && boundOfWord(word) < atLeast) {
            return std::nullopt;
        }
        sum += scoreOfWord(word);
    }
    return sum;
}

std::vector<std::uint32_t> FuzzyMatch::positions(std::string_view name) {
    std::vector<std::uint32_t> places;
    if (!prepare(name)) {
        return places;
    }
    for (const Characters& word : words_) {
        if (!findFirstPlaces(word)) {
            return {};
        }
        scoreOfWord(word);
        trace(word, places);
    }
    std::sort(places.begin(), places.end());
    places.erase(std::unique(places.begin(), places.end()), places.end());
    for (std::uint32_t& place : places) {
        place = units_[place];
    }
    return places;
}

/// What every first keystroke asks of every name: without a table.
std::optional<int> FuzzyMatch::scoreOfCharacter(std::string_view name) const {
    const char32_t wanted = words_.front().front();
    int best = -1;
    auto before = static_cast<std::size_t>(Class::blank);
    for (const char character : name.substr(0, kMaximumMatchedLength)) {
        const ASCIICharacter& here = kASCII[static_cast<unsigned char>(character)];
        const auto kind = static_cast<std::size_t>(here.kind);
        if (here.folded == wanted) {
            best = std::max<int>(best, kBonus[before][kind]);
        }
        before = kind;
    }
    return best < 0 ? std::nullopt : std::optional(kMatch + best * kFirstCharacterFactor);
}

std::optional<int> FuzzyMatch::scoreOfShortName(std::string_view name) {
    if (words_.empty()) {
        return std::nullopt;
    }
    int sum = 0;
    for (const Characters& word : words_) {
        if (!findPlaces(word)) {
            return std::nullopt;
        }
        sum += scoreOfPlaces(name, word.size());
    }
    return sum;
}

/// The places of a word's characters from which all others can be reached, to the left and to the
/// right. False where there are none.
bool FuzzyMatch::findPlaces(const Characters& word) {
    std::uint64_t mayFollow = UINT64_MAX;
    for (std::size_t row = 0; row < word.size(); ++row) {
        const std::uint64_t places = short_.placesOf(word[row]) & mayFollow;
        if (places == 0) {
            return false;
        }
        places_[row] = places;
        mayFollow = ~(places ^ (places - 1)); // what is above the lowest bit
    }
    for (std::size_t row = word.size() - 1; row > 0; --row) {
        places_[row - 1] &= std::bit_floor(places_[row]) - 1;
    }
    return true;
}

int FuzzyMatch::scoreOfPlaces(std::string_view name, std::size_t length) {
    matchFirst(name);
    for (std::size_t row = 1; row < length; ++row) {
        matchNext(name, row);
    }
    int best = 0;
    for (const Match& match : matches_[(length - 1) % 2]) {
        best = std::max(best, match.score);
    }
    return best;
}

/// The matches of a word's first character.
void FuzzyMatch::matchFirst(std::string_view name) {
    matches_[0].clear();
    for (std::uint64_t rest = places_[0]; rest != 0; rest &= rest - 1) {
        const int column = std::countr_zero(rest);
        const int score = kMatch + bonusAt(name, column) * kFirstCharacterFactor;
        matches_[0].push_back({column, score, score + kGapStart - kGapExtension, 1});
    }
}

/// The matches of another one, from those of the one before.
void FuzzyMatch::matchNext(std::string_view name, std::size_t row) {
    const std::vector<Match>& before = matches_[(row - 1) % 2];
    std::vector<Match>& here = matches_[row % 2];
    here.clear();
    auto last = before.begin(); // the nearest one to the left
    for (std::uint64_t rest = places_[row]; rest != 0; rest &= rest - 1) {
        const int column = std::countr_zero(rest);
        while (last + 1 != before.end() && (last + 1)->column < column) {
            ++last;
        }
        const Match match = matchAfter(name, *last, column);
        const int skipped = here.empty() ? 0 : here.back().scoreAt(column);
        here.push_back(match.score < skipped ? Match{column, skipped, skipped, 0} : match);
    }
}

/// Goes on from a match of the character before.
FuzzyMatch::Match FuzzyMatch::matchAfter(std::string_view name, const Match& last, int column) {
    const int own = bonusAt(name, column);
    int run = last.column + 1 == column ? last.run + 1 : 1;
    int bonus = own;
    if (run > 1) {
        // A run keeps the bonus of its first character, unless a better one begins here.
        const int first = bonusAt(name, column + 1 - run);
        const bool beginsRun = own >= kBoundary && own > first;
        run = beginsRun ? 1 : run;
        bonus = beginsRun ? own : std::max({own, kInARow, first});
    }
    const int score = last.scoreAt(column - 1) + kMatch + bonus;
    return {column, score, score + kGapStart - kGapExtension, run};
}

int FuzzyMatch::bound(std::string_view name, const NameLetters& letters) const {
    constexpr LetterSet kBlank = letterBitOf(' ');
    const char first = name.empty() ? '\0' : name.front();
    const bool mayFollowBlank = mayHold(letters.all, kBlank) || (first & '\x80') != 0;
    const char32_t begin = kASCII[static_cast<unsigned char>(first) & 0x7F].folded;
    int sum = 0;
    for (std::size_t word = 0; word < words_.size(); ++word) {
        const auto bonusAt = [&](std::size_t index) {
            const Sought& sought = sought_[word][index];
            if ((letters.starts & sought.wordLetter) != 0) {
                const bool isFirst = mayFollowBlank || words_[word][index] == begin;
                return isFirst ? kAfterBlank : kAfterDelimiter;
            }
            return (letters.humps & sought.wordLetter) != 0 ? kCamelCase : 0;
        };
        const auto mayGoOnAt = [&](std::size_t index) {
            return (letters.pairs & sought_[word][index].pair) != 0;
        };
        sum += boundOf(words_[word].size(), bonusAt, mayGoOnAt);
    }
    return sum;
}

/// False for a name that needs no look.
bool FuzzyMatch::prepare(std::string_view name) {
    folded_.resize(kMaximumMatchedLength);
    classes_.resize(kMaximumMatchedLength);
    bonus_.resize(kMaximumMatchedLength);
    units_.resize(kMaximumMatchedLength);
    hasBonuses_ = false;
    length_ = 0;
    const std::size_t most = std::min(name.size(), kMaximumMatchedLength);
    for (; length_ < most; ++length_) {
        const auto byte = static_cast<unsigned char>(name[length_]);
        if (byte >= kASCII.size()) {
            prepareOther(name);
            break;
        }
        folded_[length_] = kASCII[byte].folded;
        classes_[length_] = static_cast<std::uint8_t>(kASCII[byte].kind);
        units_[length_] = static_cast<std::uint32_t>(length_);
    }
    return length_ > 0 && !words_.empty();
}

/// Goes on where the first character is that is not ASCII.
void FuzzyMatch::prepareOther(std::string_view name) {
    auto unit = static_cast<std::uint32_t>(length_);
    for (std::size_t place = length_; place < name.size() && length_ < kMaximumMatchedLength;
         ++length_) {
        const char32_t character = nextCharacter(name, place);
        const Class kind =
            character < kASCII.size() ? kASCII[character].kind : classOfOther(character);
        folded_[length_] = folded(character);
        classes_[length_] = static_cast<std::uint8_t>(kind);
        units_[length_] = unit;
        unit += character > 0xFFFF ? 2 : 1;
    }
}

/// Once it is known that there is something to score.
void FuzzyMatch::findBonuses() {
    if (std::exchange(hasBonuses_, true)) {
        return;
    }
    auto before = static_cast<std::size_t>(Class::blank);
    for (std::size_t column = 0; column < length_; ++column) {
        bonus_[column] = kBonus[before][classes_[column]];
        before = classes_[column];
    }
}

bool FuzzyMatch::findFirstPlaces(const Characters& word) {
    firsts_.clear();
    std::uint32_t column = 0;
    for (const char32_t character : word) {
        while (column < length_ && folded_[column] != character) {
            ++column;
        }
        if (column == length_) {
            return false;
        }
        firsts_.push_back(column++);
    }
    findBonuses();
    return true;
}

int FuzzyMatch::boundOfWord(const Characters& word) const {
    std::array<std::int16_t, 128> best{};
    std::uint64_t pairs = 0;
    char32_t before = 0;
    for (std::size_t column = firsts_.front(); column < length_; ++column) {
        const char32_t here = folded_[column];
        if (here >= best.size()) {
            return INT_MAX;
        }
        best[here] = std::max(best[here], bonus_[column]);
        pairs |= NameLetters::pairOf(before, here);
        before = here;
    }
    return boundOf(
        word.size(), [&](std::size_t index) { return int{best[word[index]]}; },
        [&](std::size_t index) {
            return (pairs & NameLetters::pairOf(word[index - 1], word[index])) != 0;
        });
}

int FuzzyMatch::scoreOfWord(const Characters& word) {
    const std::size_t cells = word.size() * length_;
    if (scores_.size() < cells) {
        scores_.resize(cells);
        runs_.resize(cells);
    }
    fillFirstRow(word.front());
    for (std::size_t row = 1; row < word.size(); ++row) {
        fillRow(word, row);
    }
    const std::size_t last = word.size() - 1;
    return scores_[at(last, bestColumn(last))];
}

void FuzzyMatch::fillFirstRow(char32_t character) {
    int left = 0;
    int gap = kGapStart;
    for (std::size_t column = firsts_.front(); column < length_; ++column) {
        const bool isMatch = folded_[column] == character;
        left = isMatch ? kMatch + bonus_[column] * kFirstCharacterFactor : std::max(left + gap, 0);
        gap = isMatch ? kGapStart : kGapExtension;
        scores_[at(0, column)] = static_cast<std::int16_t>(left);
        runs_[at(0, column)] = isMatch ? 1 : 0;
    }
}

void FuzzyMatch::fillRow(const Characters& word, std::size_t row) {
    const char32_t character = word[row];
    int left = 0;
    int gap = kGapStart;
    for (std::size_t column = firsts_[row]; column < length_; ++column) {
        const int skipped = left + gap;
        int matched = 0;
        int run = 0;
        if (folded_[column] == character) {
            const std::size_t before = at(row - 1, column - 1);
            const int own = bonus_[column];
            int bonus = own;
            run = runs_[before] + 1;
            if (run > 1) {
                // A run keeps the bonus of its first character, unless a better one begins here.
                const int first = bonus_[column + 1 - static_cast<std::size_t>(run)];
                const bool beginsRun = own >= kBoundary && own > first;
                run = beginsRun ? 1 : run;
                bonus = beginsRun ? own : std::max({own, kInARow, first});
            }
            matched = scores_[before] + kMatch + bonus;
            if (matched < skipped) {
                matched += own - bonus;
                run = 0;
            }
        }
        gap = matched < skipped ? kGapExtension : kGapStart;
        left = std::max({matched, skipped, 0});
        scores_[at(row, column)] = static_cast<std::int16_t>(left);
        runs_[at(row, column)] = static_cast<std::int16_t>(run);
    }
}

std::size_t FuzzyMatch::bestColumn(std::size_t row) const {
    const auto begin = scores_.begin() + static_cast<std::ptrdiff_t>(at(row, firsts_[row]));
    const auto end = scores_.begin() + static_cast<std::ptrdiff_t>(at(row, length_));
    return firsts_[row] + static_cast<std::size_t>(std::max_element(begin, end) - begin);
}

void FuzzyMatch::trace(const Characters& word, std::vector<std::uint32_t>& places) const {
    std::size_t row = word.size() - 1;
    std::size_t column = bestColumn(row);
    bool prefersMatch = true;
    for (;;) {
        const int score = scores_[at(row, column)];
        const int diagonal =
            row > 0 && column > firsts_[row - 1] ? scores_[at(row - 1, column - 1)] : 0;
        const int left = column > firsts_[row] ? scores_[at(row, column - 1)] : 0;
        const bool isPlace = score > diagonal && (score > left || (score == left && prefersMatch));
        // A run goes on to the right: a step to the left would tear it.
        const bool goesOn = row + 1 < word.size() && column + 1 < length_ &&
                            column + 1 >= firsts_[row + 1] && runs_[at(row + 1, column + 1)] > 0;
        prefersMatch = runs_[at(row, column)] > 1 || goesOn;
        if (isPlace && folded_[column] == word[row]) {
            places.push_back(static_cast<std::uint32_t>(column));
            if (row == 0) {
                return;
            }
            --row;
        }
        if (column == 0) {
            return;
        }
        --column;
    }
}

} // namespace navrel

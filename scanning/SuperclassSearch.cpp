#include "scanning/SuperclassSearch.h"

#include "scanning/TextCursor.h"

#include <algorithm>
#include <utility>

namespace navrel {

namespace {

using Steps = SuperclassBudget::Steps;

bool isPlain(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9') || byte == '_' || byte == '-';
}

/// What a match begins with, in lower case: the pattern up to its first special character, but for
/// the character before, which that one may make optional.
QByteArray beginningOfMatches(const QByteArray& baseName) {
    const auto* const special = std::find_if_not(
        baseName.begin(), baseName.end(), [](char byte) { return isPlain(byte) || byte == ' '; });
    QByteArray beginning = "@interface " + baseName.first(special - baseName.begin());
    if (special != baseName.end()) {
        beginning.chop(1);
    }
    return std::move(beginning).toLower();
}

/// Whether the beginning of a match may stand at a place. What is not ASCII may be its letters in
/// another form: ICU knows.
bool mayBeginAt(const char* place, const char* end, const QByteArray& beginning) {
    for (const char letter : beginning) {
        if (place == end) {
            return false;
        }
        const auto byte = static_cast<uchar>(*place++);
        if (byte >= 0x80) {
            return true;
        }
        if (characterclasses::kFolded[byte] != letter) {
            return false;
        }
    }
    return true;
}

bool mayHold(QByteArrayView line, const QByteArray& beginning) {
    const char* const end = line.end();
    for (const char* at = line.begin(); (at = std::find(at, end, '@')) != end; ++at) {
        if (mayBeginAt(at, end, beginning)) {
            return true;
        }
    }
    return false;
}

/// What making an expression costs. ICU does not count that: mostly it is a few microseconds, but a
/// class takes up to a quarter of a millisecond, and one of a property or a range some
/// milliseconds.
Steps costOfMaking(const QByteArray& baseName) {
    constexpr Steps kAny = 300;
    constexpr Steps kCharacter = 10;
    constexpr Steps kClass = 5'000;
    constexpr Steps kLargeClass = 50'000;
    qsizetype largeClasses = 0;
    for (const char* part : {"\\p", "\\P", "\\N", "[:"}) {
        largeClasses += baseName.count(part);
    }
    const qsizetype firstClass = baseName.indexOf('[');
    if (firstClass >= 0) {
        largeClasses += baseName.sliced(firstClass).count('-');
    }
    return kAny + kCharacter * baseName.size() + kClass * baseName.count('[') +
           kLargeClass * largeClasses;
}

/// How much longer than short ones the steps on a line may take: one can run along all of it.
Steps weightOfSteps(QByteArrayView line) {
    constexpr qsizetype kShort = 64;
    return 1 + line.size() / kShort;
}

/// The most steps on a line that ICU takes before it counts any: each repetition in the name may
/// try every part of the line again, for each way in which those before it went.
Steps mostUncountedSteps(const QByteArray& baseName, QByteArrayView line) {
    const auto repetitions = std::count_if(baseName.begin(), baseName.end(), [](char byte) {
        return byte == '*' || byte == '+' || byte == '?' || byte == '{';
    });
    Steps steps = line.size();
    for (auto i = repetitions; i > 0 && steps < RegularExpression::kStepsAtATime; --i) {
        steps *= line.size();
    }
    return repetitions == 0 ? steps : std::min(steps, RegularExpression::kStepsAtATime);
}

} // namespace

bool isPlainBaseName(QByteArrayView baseName) {
    return std::all_of(baseName.begin(), baseName.end(), isPlain);
}

SuperclassSearch::SuperclassSearch(QByteArray baseName, SuperclassBudget& budget)
    : baseName_(std::move(baseName)), beginning_(beginningOfMatches(baseName_)), budget_(budget),
      isPlain_(isPlainBaseName(baseName_)), canBeginAnywhere_(baseName_.contains('|')),
      // A comment that begins in the name can hold the colon of the pattern, and where the name
      // says that blanks do not count, the star behind one of them makes the colon optional.
      needsColon_(!canBeginAnywhere_ && !baseName_.contains('#') && !baseName_.contains("(?")) {}

bool SuperclassSearch::canHoldMatch(QByteArrayView line) const {
    return canBeginAnywhere_ || ((!needsColon_ || line.contains(':')) && mayHold(line, beginning_));
}

std::optional<QByteArray> SuperclassSearch::superclassOnLine(QByteArrayView line) {
    if (isOver_ || !canHoldMatch(line)) {
        return std::nullopt;
    }
    return isPlain_ ? askICU(line, std::nullopt) : askICUWithinBudget(line);
}

std::optional<QByteArray> SuperclassSearch::askICU(QByteArrayView line,
                                                   std::optional<Steps> atMost) {
    if (!expression_) {
        expression_ = SuperclassExpression::forBaseName(baseName_);
    }
    auto superclass = expression_ ? expression_->superclassOnLine(line, atMost) : std::nullopt;
    isOver_ = superclass || !expression_ || expression_->error();
    return superclass;
}

/// All that ICU will not count is spent before it is asked.
std::optional<QByteArray> SuperclassSearch::askICUWithinBudget(QByteArrayView line) {
    if (!std::exchange(hasBegun_, true)) {
        budget_.beginHeader();
        if (!spend(costOfMaking(baseName_))) {
            return std::nullopt;
        }
    }
    const Steps weight = weightOfSteps(line);
    if (!spend(weight * mostUncountedSteps(baseName_, line))) {
        return std::nullopt;
    }
    auto superclass = askICU(line, budget_.left() / weight);
    if (expression_) {
        budget_.spend(weight * expression_->steps());
    }
    return superclass;
}

/// False, and the search is over, where the budget does not allow it.
bool SuperclassSearch::spend(Steps steps) {
    isOver_ = steps > budget_.left();
    if (!isOver_) {
        budget_.spend(steps);
    }
    return !isOver_;
}

} // namespace navrel

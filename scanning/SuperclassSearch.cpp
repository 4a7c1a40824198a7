#include "scanning/SuperclassSearch.h"

#include "scanning/TextCursor.h"

#include <algorithm>
#include <utility>

namespace navrel {

namespace {

/// ICU loads its tables for the first expression of a program, which takes as long as a header may:
/// that is no header's fault.
void loadTablesOfICU() {
    [[maybe_unused]] static const bool areLoaded =
        SuperclassExpression::forBaseName("Foo").has_value();
}

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

std::optional<QByteArray>
SuperclassSearch::askICU(QByteArrayView line, std::optional<RegularExpression::Deadline> deadline) {
    if (!expression_) {
        expression_ = SuperclassExpression::forBaseName(baseName_);
    }
    auto superclass = expression_ ? expression_->superclassOnLine(line, deadline) : std::nullopt;
    isOver_ = superclass || !expression_ || expression_->error();
    return superclass;
}

/// Making the expression counts too: classes of many characters take milliseconds.
std::optional<QByteArray> SuperclassSearch::askICUWithinBudget(QByteArrayView line) {
    if (!std::exchange(hasBegun_, true)) {
        budget_.beginHeader();
    }
    const auto left = budget_.left();
    if (left == SuperclassBudget::Duration::zero()) {
        isOver_ = true;
        return std::nullopt;
    }
    loadTablesOfICU();
    const auto begin = RegularExpression::Clock::now();
    auto superclass = askICU(line, begin + left);
    budget_.spend(RegularExpression::Clock::now() - begin);
    return superclass;
}

} // namespace navrel

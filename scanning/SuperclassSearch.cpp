#include "scanning/SuperclassSearch.h"

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

/// Whether the text holds the beginning of "@interface", in either case.
bool holdsBeginning(QByteArrayView line) {
    qsizetype at = line.indexOf('@');
    while (at >= 0 && at + 1 < line.size()) {
        if (line[at + 1] == 'i' || line[at + 1] == 'I') {
            return true;
        }
        at = line.indexOf('@', at + 1);
    }
    return false;
}

} // namespace

bool isPlainBaseName(QByteArrayView baseName) {
    return std::all_of(baseName.begin(), baseName.end(), [](char byte) {
        return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
               (byte >= '0' && byte <= '9') || byte == '_' || byte == '-';
    });
}

SuperclassSearch::SuperclassSearch(QByteArray baseName, SuperclassBudget& budget)
    : baseName_(std::move(baseName)), budget_(budget), isPlain_(isPlainBaseName(baseName_)),
      canBeginAnywhere_(baseName_.contains('|')),
      // A number sign can make a comment of the colon in the pattern.
      needsColon_(!canBeginAnywhere_ && !baseName_.contains('#')) {}

bool SuperclassSearch::canHoldMatch(QByteArrayView line) const {
    return canBeginAnywhere_ || ((!needsColon_ || line.contains(':')) && holdsBeginning(line));
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

#pragma once

#include "scanning/SuperclassBudget.h"
#include "scanning/SuperclassExpression.h"

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

namespace navrel {

/// Whether a base name has no special characters of patterns. ICU must search for all others.
bool isPlainBaseName(QByteArrayView baseName);

/// Searches for the superclass of one header line by line. Finds what `SuperclassExpression` finds,
/// but searches only the lines that can have a match and, unless the base name is plain, within a
/// budget. One thread at a time.
class SuperclassSearch {
public:
    /// The budget must outlive the search, and must not be used for another header meanwhile. A
    /// plain name takes nothing from it, since its pattern never backtracks.
    SuperclassSearch(QByteArray baseName, SuperclassBudget& budget);

    /// The superclass that a line names, or nil.
    std::optional<QByteArray> superclassOnLine(QByteArrayView line);

    /// Whether nothing more will be found: a superclass was found, the base name makes no valid
    /// pattern, or its steps or ICU's memory are used up.
    bool isOver() const { return isOver_; }

    /// Whether matches may begin elsewhere than at "@i": a bar in the name splits the pattern into
    /// two, of which the second begins after the bar.
    bool canBeginAnywhere() const { return canBeginAnywhere_; }

private:
    bool canHoldMatch(QByteArrayView line) const;
    std::optional<QByteArray> askICU(QByteArrayView line,
                                     std::optional<SuperclassBudget::Steps> atMost);
    std::optional<QByteArray> askICUWithinBudget(QByteArrayView line);
    bool spend(SuperclassBudget::Steps steps);

    QByteArray baseName_;
    QByteArray beginning_; ///< of every match, in lower case
    SuperclassBudget& budget_;
    bool isPlain_;
    bool canBeginAnywhere_;
    bool needsColon_;
    bool hasBegun_ = false; ///< with the budget
    bool isOver_ = false;
    std::optional<SuperclassExpression> expression_;
};

} // namespace navrel

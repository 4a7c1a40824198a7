#pragma once

#include "scanning/SuperclassBudget.h"
#include "scanning/SuperclassExpression.h"

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

namespace navrel {

/// Whether a base name stands for itself in the superclass pattern. ICU decides about all others.
bool isPlainBaseName(QByteArrayView baseName);

/// Looks for the superclass of one header line by line: what `SuperclassExpression` finds, asked
/// only about the lines that can hold a match and, where the base name is not plain, within a
/// budget. One thread at a time.
class SuperclassSearch {
public:
    /// The budget must outlive the search and serve no other header meanwhile. A plain name takes
    /// nothing from it: no line makes its pattern backtrack.
    SuperclassSearch(QByteArray baseName, SuperclassBudget& budget);

    /// The superclass that a line names, or nil.
    std::optional<QByteArray> superclassOnLine(QByteArrayView line);

    /// Whether nothing more will be found: a superclass has been, the base name makes no pattern,
    /// its steps are spent, or ICU's memory is.
    bool isOver() const { return isOver_; }

    /// Whether matches may begin elsewhere than at "@i": a bar in the name makes the pattern two,
    /// and the second one begins behind the bar.
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

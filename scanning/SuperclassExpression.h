#pragma once

#include "scanning/LinePatterns.h"
#include "support/core/Error.h"

#include <QByteArray>
#include <QByteArrayView>

#include <optional>
#include <utility>

namespace navrel {

/// The superclass pattern of one header, by ICU. One thread at a time.
class SuperclassExpression {
public:
    /// The expression for a header of that base name; nil where it makes no pattern.
    static std::optional<SuperclassExpression>
    forBaseName(QByteArrayView baseName, const ScanPattern& pattern = LinePatterns().superclass);

    /// The superclass that a line names: that of its last match. Nil where it holds no match, is
    /// not UTF-8, or could not be searched, as in `atMost` steps: `error` then says why.
    std::optional<QByteArray> superclassOnLine(QByteArrayView line,
                                               std::optional<RegularExpression::Steps> atMost);

    /// What the last search cost, where it was limited.
    RegularExpression::Steps steps() const { return steps_; }

    /// Why the last search gave nothing although it may hold a match.
    const std::optional<Error>& error() const { return error_; }

private:
    explicit SuperclassExpression(RegularExpression expression)
        : expression_(std::move(expression)) {}

    RegularExpression expression_;
    RegularExpression::Steps steps_ = 0;
    std::optional<Error> error_;
};

} // namespace navrel

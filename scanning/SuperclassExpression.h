#pragma once

#include "scanning/LinePatterns.h"
#include "support/core/Error.h"

#include <QByteArray>
#include <QByteArrayView>

#include <optional>
#include <utility>

namespace navrel {

/// Searches lines for the superclass pattern of one header, by ICU. One thread at a time.
class SuperclassExpression {
public:
    /// The expression for a header of that base name; nil if that makes no valid pattern.
    static std::optional<SuperclassExpression>
    forBaseName(QByteArrayView baseName, const ScanPattern& pattern = LinePatterns().superclass);

    /// The superclass that a line names: that of its last match. Nil if there is no match, the line
    /// is not UTF-8, or it could not be searched, for example in `atMost` steps: then `error` says
    /// why.
    std::optional<QByteArray> superclassOnLine(QByteArrayView line,
                                               std::optional<RegularExpression::Steps> atMost);

    /// The steps of the last search, if it was limited.
    RegularExpression::Steps steps() const { return steps_; }

    /// Why the last search failed, although the line may have a match; nil if it did not fail.
    const std::optional<Error>& error() const { return error_; }

private:
    explicit SuperclassExpression(RegularExpression expression)
        : expression_(std::move(expression)) {}

    RegularExpression expression_;
    RegularExpression::Steps steps_ = 0;
    std::optional<Error> error_;
};

} // namespace navrel

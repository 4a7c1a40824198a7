#pragma once

#include "support/core/Error.h"

#include <QString>
#include <QStringView>

#include <memory>
#include <optional>
#include <variant>
#include <vector>

struct URegularExpression;

namespace navrel {

/// Domain of the errors whose code is one of ICU's.
extern const QString kRegularExpressionErrorDomain;

/// A regular expression with ICU's syntax and semantics, searched for anywhere in a text.
/// One thread at a time.
class RegularExpression {
public:
    enum Option : quint32 {
        kCaseInsensitive = 1,
        kDotMatchesLineSeparators = 2,
    };

    /// A part of the searched text, in UTF-16 units. A group that took no part in the match has the
    /// location -1 and no length.
    struct Range {
        qsizetype location;
        qsizetype length;
    };

    /// The whole match and its groups: `ranges[0]` is the match, `ranges[n]` the group n.
    struct Match {
        std::vector<Range> ranges;
    };

    /// What a search costs: places where a match was tried, and steps that ICU can go back to while
    /// it tries one. The same on every machine, however busy.
    using Steps = qint64;

    /// ICU counts the steps of a search by that many: what is beyond a multiple of it is not seen.
    static constexpr Steps kStepsAtATime = 10'000;

    /// What was found, in order of position. With an error, what was found before it.
    struct Matches {
        std::vector<Match> matches;
        Steps steps = 0; ///< counted only where they are limited: counting takes time
        std::optional<Error> error;
    };

    /// The expression, or why the pattern is none. `options` is a combination of Option.
    static std::variant<RegularExpression, Error> compile(QStringView pattern, quint32 options);

    /// All matches, none overlapping another. A pattern may backtrack without end: a search that
    /// has taken more than `atMost` steps ends with an error, and so does one that needs more than
    /// ICU's own limit of backtracking memory (8 MB).
    Matches matchesIn(QStringView text, std::optional<Steps> atMost = std::nullopt);

private:
    struct Closer {
        void operator()(URegularExpression* expression) const;
    };
    using Owner = std::unique_ptr<URegularExpression, Closer>;

    explicit RegularExpression(Owner expression) : expression_(std::move(expression)) {}

    Owner expression_;
};

} // namespace navrel

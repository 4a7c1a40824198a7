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

/// A regular expression with ICU's syntax and semantics. One thread at a time.
class RegularExpression {
public:
    enum Option : quint32 {
        kCaseInsensitive = 1,
        kDotMatchesLineSeparators = 2,
    };

    /// A part of the searched text, in UTF-16 units. A group that took no part in the match has
    /// location -1 and length 0.
    struct Range {
        qsizetype location;
        qsizetype length;
    };

    /// One match: `ranges[0]` is the whole of it, `ranges[n]` is group n.
    struct Match {
        std::vector<Range> ranges;
    };

    /// The cost of a search: the number of places where ICU tries a match, and of the states that
    /// it saves to backtrack to. The same on every machine, however busy.
    using Steps = qint64;

    /// ICU reports its states in multiples of this number; the rest is not counted.
    static constexpr Steps kStepsAtATime = 10'000;

    /// The matches in order of position; with an error, those found before it.
    struct Matches {
        std::vector<Match> matches;
        Steps steps = 0; ///< 0 for a search without limit: counting takes time
        std::optional<Error> error;
    };

    /// The expression, or the error in the pattern. `options` is a combination of Option.
    static std::variant<RegularExpression, Error> compile(QStringView pattern, quint32 options);

    /// All matches, anywhere in the text, which do not overlap. A pattern may backtrack without
    /// end: a search that takes more than `atMost` steps ends with an error, and so does one that
    /// exceeds ICU's own limit of backtracking memory (8 MB).
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

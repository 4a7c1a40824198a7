#pragma once

#include "support/Error.h"

#include <QString>
#include <QStringView>

#include <chrono>
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

    /// What was found, in order of position. With an error, what was found before it.
    struct Matches {
        std::vector<Match> matches;
        std::optional<Error> error;
    };

    /// The calling thread's processor time, so that no limit is reached because others were busy.
    struct Clock {
        using duration = std::chrono::nanoseconds;
        using rep = duration::rep;
        using period = duration::period;
        using time_point = std::chrono::time_point<Clock>;
        static constexpr bool is_steady = true;

        static time_point now();
    };
    using Deadline = Clock::time_point;

    /// The expression, or why the pattern is none. `options` is a combination of Option.
    static std::variant<RegularExpression, Error> compile(QStringView pattern, quint32 options);

    /// All matches, none overlapping another. A pattern may backtrack without end, so a search that
    /// reaches the deadline ends with an error; one that needs more than ICU's own limit of
    /// backtracking memory (8 MB) does so too.
    Matches matchesIn(QStringView text, std::optional<Deadline> deadline = std::nullopt);

private:
    struct Closer {
        void operator()(URegularExpression* expression) const;
    };
    using Owner = std::unique_ptr<URegularExpression, Closer>;

    explicit RegularExpression(Owner expression) : expression_(std::move(expression)) {}

    Owner expression_;
};

} // namespace navrel

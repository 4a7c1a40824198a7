#pragma once

#include "scanning/ScanPatterns.h"
#include "support/Error.h"
#include "support/text/RegularExpression.h"

#include <QByteArray>
#include <QByteArrayView>

#include <chrono>
#include <optional>

namespace navrel {

/// The processor time that the superclass of one header may take where its base name is a pattern
/// of its own. An honest header takes a tenth of a millisecond; "(a+)+b.h" would take years.
inline constexpr std::chrono::milliseconds kSuperclassTimeLimit(4);

/// The end of that time where it begins now.
RegularExpression::Deadline superclassDeadline();

/// The superclass pattern of one header, by ICU. One thread at a time.
class SuperclassExpression {
public:
    /// The expression for a header of that base name; nil where it makes no pattern. Searches fail
    /// from the deadline on.
    static std::optional<SuperclassExpression>
    forBaseName(QByteArrayView baseName, std::optional<RegularExpression::Deadline> deadline,
                const ScanPattern& pattern = ScanPatterns().superclass);

    /// The superclass that a line names: that of its last match. Nil where it holds no match, is
    /// not UTF-8, or could not be searched: `error` then says why.
    std::optional<QByteArray> superclassOnLine(QByteArrayView line);

    /// Why the last search gave nothing although it may hold a match.
    const std::optional<Error>& error() const { return error_; }

private:
    SuperclassExpression(RegularExpression expression,
                         std::optional<RegularExpression::Deadline> deadline)
        : expression_(std::move(expression)), deadline_(deadline) {}

    RegularExpression expression_;
    std::optional<RegularExpression::Deadline> deadline_;
    std::optional<Error> error_;
};

/// The shortcut pattern, by ICU. One thread at a time.
class ShortcutExpression {
public:
    explicit ShortcutExpression(const ScanPattern& pattern = ScanPatterns().shortcutLine);

    /// The text of a line's shortcut comment: that of its last match that has any. Nil where there
    /// is none, or the line is not UTF-8.
    std::optional<QByteArray> shortcutOnLine(QByteArrayView line);

private:
    RegularExpression expression_;
};

} // namespace navrel

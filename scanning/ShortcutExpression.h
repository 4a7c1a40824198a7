#pragma once

#include "scanning/LinePatterns.h"

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

namespace navrel {

/// Searches lines for the shortcut pattern, by ICU. One thread at a time.
class ShortcutExpression {
public:
    explicit ShortcutExpression(const ScanPattern& pattern = LinePatterns().shortcutLine);

    /// The text of a line's shortcut comment: the last that is not empty, if there are several. Nil
    /// if there is none, or the line is not UTF-8.
    std::optional<QByteArray> shortcutOnLine(QByteArrayView line);

private:
    RegularExpression expression_;
};

} // namespace navrel

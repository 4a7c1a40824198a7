#pragma once

#include "support/text/UTF8.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace navrel {

/// An attribute of a record as replies show it. Nil is shown as empty; only a store that was edited
/// by hand lacks attributes that are shown.
inline QString shown(const std::optional<QByteArray>& text) {
    return shownUTF8(text.value_or(""));
}

/// Booleans are the integers 0 and 1.
inline int shown(std::optional<bool> flag) {
    return flag.value_or(false) ? 1 : 0;
}

} // namespace navrel

#pragma once

#include <QByteArrayView>

namespace navrel {

/// Compares two UTF-8 texts in the order of the user's language, without regard to letter case:
/// negative, zero or positive if `left` comes before, equals or comes after `right`. If the
/// environment names no language (the "C" locale), Unicode's default order is used. Invalid UTF-8
/// is compared as replacement characters. Any thread.
int localizedCaseInsensitiveCompare(QByteArrayView left, QByteArrayView right);

} // namespace navrel

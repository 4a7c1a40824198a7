#pragma once

#include <QByteArrayView>

namespace navrel {

/// Compares two UTF-8 texts as the user's language orders them, letter case not deciding:
/// negative, zero or positive as `left` stands before, beside or after `right`. Where the
/// environment names no language (the "C" locale) the order is that of no language in particular,
/// still without letter case. Invalid UTF-8 is compared as replacement characters. Any thread.
int localizedCaseInsensitiveCompare(QByteArrayView left, QByteArrayView right);

} // namespace navrel

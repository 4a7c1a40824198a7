#pragma once

#include <QByteArrayView>
#include <QString>

#include <optional>

/// Strict UTF-8. Overlong forms, surrogates, values above U+10FFFF and cut-off sequences are
/// invalid and never replaced; NUL and the byte order mark are characters like any other. Any
/// thread.
namespace navrel {

/// How many bytes at the beginning are valid UTF-8: all of them, or the position at which the first
/// invalid sequence begins.
qsizetype validUTF8Length(QByteArrayView bytes);

bool isValidUTF8(QByteArrayView bytes);

/// The text that the bytes spell, or nil where they are not valid UTF-8.
std::optional<QString> decodeUTF8(QByteArrayView bytes);

/// The text of bytes that were valid where they came from, for people and devices: a byte order
/// mark at the beginning, of which QString::fromUtf8 makes nothing, is part of the name that
/// begins with it. What is not valid shows as U+FFFD.
QString shownUTF8(QByteArrayView bytes);

} // namespace navrel

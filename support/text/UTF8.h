#pragma once

#include <QByteArrayView>
#include <QString>

#include <optional>

/// Strict UTF-8. Overlong forms, surrogates, values above U+10FFFF and truncated sequences are
/// invalid, and not replaced unless a function says so. NUL and the byte order mark are characters
/// like any other. Any thread.
namespace navrel {

/// How many bytes at the beginning are valid UTF-8: all, or those before the first invalid
/// sequence.
qsizetype validUTF8Length(QByteArrayView bytes);

bool isValidUTF8(QByteArrayView bytes);

/// The text of the bytes, or nil if they are not valid UTF-8.
std::optional<QString> decodeUTF8(QByteArrayView bytes);

/// The text of the bytes, to show to users and devices. Invalid sequences become U+FFFD. Unlike
/// with QString::fromUtf8, a byte order mark at the beginning stays: it is part of the name.
QString shownUTF8(QByteArrayView bytes);

} // namespace navrel

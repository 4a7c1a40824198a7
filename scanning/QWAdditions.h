#pragma once

#include <QByteArrayView>

#include <limits>

namespace navrel {

/// The location that means "not found".
inline constexpr quint64 kNotFound = std::numeric_limits<qint64>::max();

/// A part of a byte buffer.
struct ByteRange {
    quint64 location;
    quint64 length;

    friend bool operator==(const ByteRange&, const ByteRange&) = default;
};

/// The range of `pattern` in `buffer`. The location is `kNotFound` if it is not there, or empty;
/// the length is always the pattern's.
///
/// Two oddities are deliberate, since the lines of QWFileReader depend on them. The search never
/// backs up: a byte that ends a partial match is not tried again as the beginning of another, so
/// "ab" is not found in "aab". And if the buffer ends within a partial match, the location of that
/// partial match is returned.
ByteRange rangeOfData_qw(QByteArrayView buffer, QByteArrayView pattern);

} // namespace navrel

#pragma once

#include "support/core/Error.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QVariant>

#include <optional>

namespace navrel {

// Property lists as values. A value is a QVariant that holds a QVariantMap, QVariantList, QString,
// qlonglong, bool, double, QDateTime (UTC) or QByteArray, and nothing else. The functions keep no
// state and may be called from any thread; what they are given is not trusted.

/// Domain of the errors of property lists; the codes are those of PropertyListErrorCode.
extern const QString kPropertyListErrorDomain;

enum class PropertyListErrorCode : qint64 {
    malformed = 1,   ///< the bytes are no property list; the text says where and what was expected
    tooLarge = 2,    ///< a limit of PropertyListLimits.h is exceeded
    notWritable = 3, ///< a value that the format cannot hold; the text names its place
};

/// A boolean that came from elsewhere, where it may be a number: 0 is false, every other one true.
/// Nothing for values of other types; a text that spells a number is none.
std::optional<bool> booleanOf(const QVariant& value);

/// Reads a property list in any format: binary, else XML, else old-style ASCII. Binary lists give
/// every kind of value, XML as well, ASCII maps, lists, strings and bytes. Nothing on failure, with
/// the reason in `error` where it is given: "line L, column C: …" for the text formats (both from
/// 1, columns in characters), "byte N: …" for the binary one.
std::optional<QVariant> propertyListWithData(QByteArrayView data,
                                             std::optional<Error>* error = nullptr);

/// Writes the binary format 1.0 ("bplist00"). Booleans are written as the integers 0 and 1, every
/// integer type of QVariant is taken, dates keep their milliseconds. Nothing on failure, with the
/// place in `error` where it is given, as in "items[3].path: a value of type QObject*".
std::optional<QByteArray> binaryDataWithPropertyList(const QVariant& propertyList,
                                                     std::optional<Error>* error = nullptr);

/// Writes the XML format, as UTF-8. As above, but for dates, which keep whole seconds, and text
/// that XML 1.0 cannot carry (control characters), which is an error.
std::optional<QByteArray> XMLDataWithPropertyList(const QVariant& propertyList,
                                                  std::optional<Error>* error = nullptr);

} // namespace navrel

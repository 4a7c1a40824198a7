#pragma once

#include "support/core/Error.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QVariant>

#include <optional>

namespace navrel {

// Property lists as values. A value is a QVariant with a QVariantMap, QVariantList, QString,
// qlonglong, bool, double, QDateTime (UTC) or QByteArray, and nothing else. The functions are pure;
// any thread. Their input is not trusted.

/// Domain of the errors of property lists; the codes are those of PropertyListErrorCode.
extern const QString kPropertyListErrorDomain;

enum class PropertyListErrorCode : qint64 {
    malformed = 1,   ///< not a property list; the text says where, and what was expected
    tooLarge = 2,    ///< a limit of PropertyListLimits.h is exceeded
    notWritable = 3, ///< a value that the format cannot hold; the text names its place
};

/// A boolean, which may have been sent as a number: 0 is false, any other number true. Nil for
/// values of other types, including text that spells a number.
std::optional<bool> booleanOf(const QVariant& value);

/// Reads a property list in any format, which it detects: binary, XML or old-style ASCII. Binary
/// and XML lists may have every kind of value, ASCII lists only maps, lists, strings and bytes. Nil
/// on failure, with the reason in `error` unless that is null: "line L, column C: …" for the text
/// formats (both from 1, columns in characters), "byte N: …" for the binary one.
std::optional<QVariant> propertyListWithData(QByteArrayView data,
                                             std::optional<Error>* error = nullptr);

/// Writes the binary format 1.0 ("bplist00"). Booleans are written as the integers 0 and 1, every
/// integer type of QVariant is accepted, and dates keep their milliseconds. Nil on failure, with
/// the place in `error` unless that is null: "items[3].path: a value of type QObject*".
std::optional<QByteArray> binaryDataWithPropertyList(const QVariant& propertyList,
                                                     std::optional<Error>* error = nullptr);

/// Writes the XML format, in UTF-8. As `binaryDataWithPropertyList`, with two differences: dates
/// keep whole seconds only, and text that XML 1.0 cannot hold (control characters) is an error.
std::optional<QByteArray> XMLDataWithPropertyList(const QVariant& propertyList,
                                                  std::optional<Error>* error = nullptr);

} // namespace navrel

#pragma once

#include "support/core/Error.h"
#include "support/propertylist/PropertyList.h"

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <gtest/gtest.h>

#include <initializer_list>
#include <optional>
#include <utility>

/// What the tests of each format of property lists say in the same words.
namespace navrel {

inline QVariantMap map(std::initializer_list<std::pair<QString, QVariant>> entries) {
    return QVariantMap(entries);
}

/// The list in a file of any format. An invalid value, and a failure, where there is none.
inline QVariant readList(const QByteArray& bytes) {
    std::optional<Error> error;
    const std::optional<QVariant> list = propertyListWithData(bytes, &error);
    EXPECT_TRUE(list.has_value()) << (error ? error->description().toStdString() : "no reason");
    return list.value_or(QVariant());
}

/// Why a file is no list.
inline Error errorOf(const QByteArray& bytes) {
    std::optional<Error> error;
    EXPECT_FALSE(propertyListWithData(bytes, &error).has_value()) << bytes.left(200).constData();
    return error.value_or(Error(QStringLiteral("none"), 0));
}

inline QString reasonOf(const QByteArray& bytes) {
    return errorOf(bytes).localizedDescription().value_or(QString());
}

/// What a writer makes of a list. No bytes, and a failure, where it refuses.
template <typename Writer>
QByteArray written(const QVariant& list, Writer write) {
    std::optional<Error> error;
    const std::optional<QByteArray> bytes = write(list, &error);
    EXPECT_TRUE(bytes.has_value()) << (error ? error->description().toStdString() : "no reason");
    return bytes.value_or(QByteArray());
}

/// Why a writer refuses a list.
template <typename Writer>
QString unwritableReason(const QVariant& list, Writer write) {
    std::optional<Error> error;
    EXPECT_FALSE(write(list, &error).has_value());
    return error ? error->localizedDescription().value_or(QString()) : QString();
}

} // namespace navrel

#pragma once

#include <QDBusArgument>

namespace navrel {

/// Writes the fields of a structure, in the order of its signature.
template <typename... Fields>
QDBusArgument& putStructure(QDBusArgument& argument, const Fields&... fields) {
    argument.beginStructure();
    (argument << ... << fields);
    argument.endStructure();
    return argument;
}

/// Reads the fields of a structure, in the same order.
template <typename... Fields>
const QDBusArgument& takeStructure(const QDBusArgument& argument, Fields&... fields) {
    argument.beginStructure();
    (argument >> ... >> fields);
    argument.endStructure();
    return argument;
}

} // namespace navrel

#pragma once

#include <QString>
#include <QVariantMap>

#include <optional>

namespace navrel {

class ManagedObjectContext;

/// The findings of scans as replies for the device and the menu. `records` is null if the store
/// cannot be opened: then nothing is listed. Main thread.
namespace views {

/// "items": "shortcut", "line" and "path" of every shortcut of the project, ordered by shortcut as
/// the user's language does, without letter case.
QVariantMap shortcutsDictionary(const ManagedObjectContext* records);

/// "title", "identifier", "items" and "path" of one file, and "counterpart" where it has one: the
/// identifier of the header of an implementation file, or the reverse. The items hold "name",
/// "line", "path" and "type", ordered by line. Nil when the identifier is unknown.
std::optional<QVariantMap> elementsDictionaryForObjectID(const ManagedObjectContext* records,
                                                         const QString& identifier);

} // namespace views

} // namespace navrel

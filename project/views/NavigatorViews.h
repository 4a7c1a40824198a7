#pragma once

#include <QByteArray>
#include <QString>
#include <QVariantMap>

#include <optional>

namespace navrel {

class ManagedObjectContext;

/// The files of the project as replies for the device: functions from the records to property-list
/// values. `records` is null where the store cannot be opened, which has been presented to the
/// user: nothing is listed then. Main thread.
namespace views {

/// "identifier", "label", "items" and "path" of one group, or of the main group, whose identifier
/// is `root`, where nil is asked for. Nil for an unknown identifier.
std::optional<QVariantMap> navigatorDictionaryForID(const ManagedObjectContext* records,
                                                    const QByteArray& root,
                                                    const std::optional<QString>& identifier);

/// "title" and "items": the distinct superclass names, in order.
QVariantMap superclassDictionary(const ManagedObjectContext* records);

/// "superclass", "label" and "items": the files whose superclass is the given one.
QVariantMap navigatorDictionaryForSuperclass(const ManagedObjectContext* records,
                                             const QString& superclass);

/// Identifier of the file of that name; nil where there is none, or several have it: none of them
/// can be told to be the one that is meant.
std::optional<QString> objectIDForFileName(const ManagedObjectContext* records,
                                           const QString& fileName);

} // namespace views

} // namespace navrel

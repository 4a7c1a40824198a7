#pragma once

#include <QByteArray>
#include <QString>
#include <QVariantMap>

#include <optional>

namespace navrel {

class ManagedObjectContext;

/// The files of the project as replies for the device: functions from the records to property-list
/// values. `records` is null if the store cannot be opened: then nothing is listed. Main thread.
namespace views {

/// "identifier", "label", "items" and "path" of one group. A nil `identifier` means the main group,
/// whose identifier is `root`. The result is nil if there is no such group.
std::optional<QVariantMap> navigatorDictionaryForID(const ManagedObjectContext* records,
                                                    const QByteArray& root,
                                                    const std::optional<QString>& identifier);

/// "title" and "items": the distinct superclass names, in order.
QVariantMap superclassDictionary(const ManagedObjectContext* records);

/// "superclass", "label" and "items": the files whose superclass is the given one.
QVariantMap navigatorDictionaryForSuperclass(const ManagedObjectContext* records,
                                             const QString& superclass);

/// Identifier of the file of that name; nil if there is none, or there are several: which of them
/// is meant cannot be known.
std::optional<QString> objectIDForFileName(const ManagedObjectContext* records,
                                           const QString& fileName);

} // namespace views

} // namespace navrel

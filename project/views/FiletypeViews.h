#pragma once

#include <QByteArray>
#include <QStringList>
#include <QVariantMap>

#include <vector>

namespace navrel {

class ManagedObjectContext;

/// The file types as replies for the device, and the one thing that the device may change.
/// `records` is null where the store cannot be opened: there are no file types then. Main thread.
namespace views {

/// "items": "extension" and "allowed" of every file type, ordered by extension.
QVariantMap allowedFileTypesDictionary(const ManagedObjectContext* records);

/// The extensions that are switched on, in the order of insertion.
std::vector<QByteArray> allowedExtensions(const ManagedObjectContext* records);
/// The same as texts.
QStringList allowedFileTypes(const ManagedObjectContext* records);

/// Switches the file type "extension" to "allowed" (a boolean or an integer) and returns the new
/// list. A request without either, or with another type of value, changes nothing.
QVariantMap changeFiletypeAllowanceWithDictionary(const ManagedObjectContext* records,
                                                  const QVariantMap& request);

} // namespace views

} // namespace navrel

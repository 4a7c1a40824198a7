#pragma once

#include <QByteArray>
#include <QStringList>
#include <QVariantMap>

#include <vector>

namespace navrel {

class ManagedObjectContext;

/// The file types as replies for the device, and the one request by which the device changes
/// something. `records` is null if the store cannot be opened: then there are no file types. Main
/// thread.
namespace views {

/// "items": "extension" and "allowed" of every file type, ordered by extension.
QVariantMap allowedFileTypesDictionary(const ManagedObjectContext* records);

/// The extensions that are switched on, in the order of insertion.
std::vector<QByteArray> allowedExtensions(const ManagedObjectContext* records);
/// As `allowedExtensions`, as text to show.
QStringList allowedFileTypes(const ManagedObjectContext* records);

/// Switches the file type "extension" to "allowed" (a boolean or an integer) and returns the new
/// list. A request without either, or with another type of value, changes nothing.
QVariantMap changeFiletypeAllowanceWithDictionary(const ManagedObjectContext* records,
                                                  const QVariantMap& request);

} // namespace views

} // namespace navrel

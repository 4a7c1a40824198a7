#pragma once

#include "project/store/StoreLimits.h"
#include "project/store/StoreTables.h"
#include "support/core/Error.h"

#include <QByteArrayView>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace navrel {

class PersistentStoreCoordinator;

/// The records as the program works with them: all of them are in memory, and `save` writes what
/// changed since the last save. Main thread only.
///
/// A record is owned by the context and valid until it is deleted. Fetches return snapshots in the
/// order of insertion, and cannot fail. Values are compared byte by byte; nil never matches.
class ManagedObjectContext {
public:
    /// Takes the records of the coordinator's store. The coordinator must outlive the context.
    explicit ManagedObjectContext(PersistentStoreCoordinator& coordinator);
    ~ManagedObjectContext();
    ManagedObjectContext(const ManagedObjectContext&) = delete;
    ManagedObjectContext& operator=(const ManagedObjectContext&) = delete;

    // Insertion: the new record's attributes are all nil. Code that makes records of untrusted
    // input must ask first whether there is room for one more (StoreLimits.h), and leave it out if
    // not.

    bool hasRoomForObject() const { return tables_->objects.size() < kMaximumObjects; }
    bool hasRoomForFiletype() const { return tables_->filetypes.size() < kMaximumFiletypes; }
    bool hasRoomForShortcut() const { return tables_->shortcuts.size() < kMaximumShortcuts; }
    bool hasRoomForElement() const { return tables_->elements.size() < kMaximumElements; }
    /// Whether there is room for one more record of each entity.
    bool hasRoom() const {
        return hasRoomForObject() && hasRoomForFiletype() && hasRoomForShortcut() &&
               hasRoomForElement();
    }

    CDObject& insertObject() { return tables_->objects.insert(); }
    CDFiletype& insertFiletype() { return tables_->filetypes.insert(); }
    CDShortcut& insertShortcut() { return tables_->shortcuts.insert(); }
    CDElement& insertElement() { return tables_->elements.insert(); }

    // Deletion. The record must not be used afterwards.

    void deleteObject(CDObject& record) { tables_->objects.remove(record); }
    void deleteShortcut(CDShortcut& record) { tables_->shortcuts.remove(record); }
    void deleteElement(CDElement& record) { tables_->elements.remove(record); }
    void deleteAllObjects() { tables_->objects.removeAll(); }
    void deleteAllShortcuts() { tables_->shortcuts.removeAll(); }
    void deleteAllElements() { tables_->elements.removeAll(); }

    // Fetches.

    std::vector<CDObject*> objects() const { return tables_->objects.all(); }
    std::vector<CDObject*> objectsWithIdentifier(QByteArrayView identifier) const;
    std::vector<CDObject*> objectsWithName(QByteArrayView name) const;
    std::vector<CDObject*> objectsWithParentID(QByteArrayView parentID) const;
    std::vector<CDObject*> objectsWithSubclassOf(QByteArrayView subclassOf) const;
    /// The last of `objectsWithIdentifier`, or null.
    CDObject* lastObjectWithIdentifier(QByteArrayView identifier) const;
    std::vector<CDFiletype*> filetypes() const { return tables_->filetypes.all(); }
    std::vector<CDFiletype*> filetypesWithExtension(QByteArrayView extension) const;
    std::vector<CDShortcut*> shortcuts() const { return tables_->shortcuts.all(); }
    std::vector<CDShortcut*> shortcutsWithIdentifier(QByteArrayView identifier) const;
    std::vector<CDElement*> elements() const { return tables_->elements.all(); }
    std::vector<CDElement*> elementsWithIdentifier(QByteArrayView identifier) const;

    /// A number that changes to a new value with any insertion, deletion or change of a CDObject.
    quint64 objectsGeneration() const { return tables_->objects.generation(); }

    // Saving.

    /// Registers an edit in progress that is not in the records yet. `commit` writes it into them,
    /// and returns false if it cannot be written as it is.
    void addPendingEdit(std::function<bool()> commit);
    /// Commits the pending edits in order. False if one failed: it and those after it stay pending.
    bool commitEditing();
    /// Whether a save has something to write.
    bool hasChanges() const;
    /// Writes all changes since the last save, or none of them; without changes, no statement is
    /// run. After a failure the records stay as they are, and the next save tries again.
    std::optional<Error> save();

private:
    PersistentStoreCoordinator& coordinator_;
    std::unique_ptr<StoreTables> tables_;
    std::vector<std::function<bool()>> pendingEdits_;
};

} // namespace navrel

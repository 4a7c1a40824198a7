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
/// A record is owned by the context and valid until it is deleted. Fetches give snapshots in the
/// order of insertion; they cannot fail. Values are compared byte by byte, and nil equals nothing.
class ManagedObjectContext {
public:
    /// Takes the records that the coordinator's store holds. The coordinator outlives the context.
    explicit ManagedObjectContext(PersistentStoreCoordinator& coordinator);
    ~ManagedObjectContext();
    ManagedObjectContext(const ManagedObjectContext&) = delete;
    ManagedObjectContext& operator=(const ManagedObjectContext&) = delete;

    // Insertion: a record whose attributes are all nil. What makes records of what it reads asks
    // first whether there is room for one more (StoreLimits.h), and does without where there is
    // none.

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

    /// Differs from every earlier answer after any insertion, deletion or change of a CDObject.
    quint64 objectsGeneration() const { return tables_->objects.generation(); }

    // Saving.

    /// Registers an edit that is under way outside of the records, to be written into them by
    /// `commit`, which returns false when the edit cannot be committed as it stands.
    void addPendingEdit(std::function<bool()> commit);
    /// Commits the pending edits. False when one could not be; it and those after it stay pending.
    bool commitEditing();
    /// Whether a save has something to write.
    bool hasChanges() const;
    /// Writes what changed since the last save, all of it or nothing; no statement is run where
    /// nothing changed. After a failure the records stay as they are and the next save tries again.
    std::optional<Error> save();

private:
    PersistentStoreCoordinator& coordinator_;
    std::unique_ptr<StoreTables> tables_;
    std::vector<std::function<bool()>> pendingEdits_;
};

} // namespace navrel

#include "project/store/ManagedObjectContext.h"

#include "project/store/PersistentStoreCoordinator.h"
#include "support/core/MainThread.h"

#include <utility>

namespace navrel {

ManagedObjectContext::ManagedObjectContext(PersistentStoreCoordinator& coordinator)
    : coordinator_(coordinator), tables_(coordinator.takeRecords()) {}

ManagedObjectContext::~ManagedObjectContext() = default;

std::vector<CDObject*>
ManagedObjectContext::objectsWithIdentifier(QByteArrayView identifier) const {
    return tables_->objects.withKey(CDObject::kIdentifierKey, identifier);
}

std::vector<CDObject*> ManagedObjectContext::objectsWithName(QByteArrayView name) const {
    return tables_->objects.withKey(CDObject::kNameKey, name);
}

std::vector<CDObject*> ManagedObjectContext::objectsWithParentID(QByteArrayView parentID) const {
    return tables_->objects.withKey(CDObject::kParentIDKey, parentID);
}

std::vector<CDObject*>
ManagedObjectContext::objectsWithSubclassOf(QByteArrayView subclassOf) const {
    return tables_->objects.withKey(CDObject::kSubclassOfKey, subclassOf);
}

CDObject* ManagedObjectContext::lastObjectWithIdentifier(QByteArrayView identifier) const {
    return tables_->objects.lastWithKey(CDObject::kIdentifierKey, identifier);
}

std::vector<CDFiletype*>
ManagedObjectContext::filetypesWithExtension(QByteArrayView extension) const {
    return tables_->filetypes.withKey(CDFiletype::kExtensionKey, extension);
}

std::vector<CDShortcut*>
ManagedObjectContext::shortcutsWithIdentifier(QByteArrayView identifier) const {
    return tables_->shortcuts.withKey(CDShortcut::kIdentifierKey, identifier);
}

std::vector<CDElement*>
ManagedObjectContext::elementsWithIdentifier(QByteArrayView identifier) const {
    return tables_->elements.withKey(CDElement::kIdentifierKey, identifier);
}

void ManagedObjectContext::addPendingEdit(std::function<bool()> commit) {
    pendingEdits_.push_back(std::move(commit));
}

bool ManagedObjectContext::commitEditing() {
    NAVREL_ASSERT_MAIN_THREAD();
    while (!pendingEdits_.empty()) {
        if (!pendingEdits_.front()()) {
            return false;
        }
        pendingEdits_.erase(pendingEdits_.begin());
    }
    return true;
}

bool ManagedObjectContext::hasChanges() const {
    return tables_->visitUntil([](const auto& table) { return table.hasChanges(); });
}

std::optional<Error> ManagedObjectContext::save() {
    NAVREL_ASSERT_MAIN_THREAD();
    if (!hasChanges()) {
        return std::nullopt;
    }
    std::optional<Error> error = coordinator_.save(*tables_);
    if (!error) {
        tables_->visitUntil([](auto& table) {
            table.markSaved();
            return false;
        });
    }
    return error;
}

} // namespace navrel

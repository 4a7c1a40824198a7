#include "scanning/SourceFileScanner.h"

#include "project/store/ManagedObjectContext.h"
#include "scanning/SourceScan.h"

namespace navrel {

void SourceFileScanner::setSuperclassForManagedObject(CDObject& object) {
    const SourceFindings* findings = findingsFor(object, Operation::Superclass);
    if (findings != nullptr && findings->superclass()) {
        object.setSubclassOf(findings->superclass()->toByteArray());
    }
}

void SourceFileScanner::generateShortcutsForManagedObject(const CDObject& object,
                                                          ManagedObjectContext& context) {
    const SourceFindings* findings = findingsFor(object, Operation::Shortcuts);
    if (findings == nullptr) {
        return;
    }
    for (const SourceShortcut& found : findings->shortcuts()) {
        if (!context.hasRoomForShortcut()) {
            return;
        }
        CDShortcut& shortcut = context.insertShortcut();
        shortcut.setIdentifier(object.identifier());
        shortcut.setPath(object.path());
        shortcut.setLine(found.line);
        shortcut.setShortcut(found.text.toByteArray());
    }
}

void SourceFileScanner::generateElementsForManagedObject(const CDObject& object,
                                                         ManagedObjectContext& context) {
    const SourceFindings* findings = findingsFor(object, Operation::Elements);
    if (findings == nullptr) {
        return;
    }
    findings->visitElements([&](const SourceElement& found) {
        if (!context.hasRoomForElement()) {
            return;
        }
        CDElement& element = context.insertElement();
        element.setIdentifier(object.identifier());
        element.setPath(object.path());
        element.setType(nameOfElementType(found.type));
        element.setName(found.name.toByteArray());
        element.setLine(found.line);
    });
}

/// The findings of the record's file, or null where it cannot be read.
const SourceFindings* SourceFileScanner::findingsFor(const CDObject& object, Operation operation) {
    const bool goesOn = path_ == object.path() && lastOperation_ < operation;
    if (!goesOn) {
        scan(object.path());
    }
    path_ = object.path();
    lastOperation_ = operation;
    return isReadable_ ? &findings_ : nullptr;
}

void SourceFileScanner::scan(const std::optional<QByteArray>& path) {
    const auto text = path ? buffer_.read(*path) : std::nullopt;
    isReadable_ = text.has_value();
    if (text) {
        scanSource(*text, SourceName(*path), findings_, superclassBudget_);
    }
}

} // namespace navrel

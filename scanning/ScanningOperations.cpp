#include "scanning/ScanningOperations.h"

#include "project/store/ManagedObjectContext.h"
#include "scanning/SourceFindings.h"
#include "support/core/MainThread.h"

namespace navrel {

void setSuperclassForManagedObject(CDObject& object, const SourceFindings& findings) {
    NAVREL_ASSERT_MAIN_THREAD();
    if (findings.superclass()) {
        object.setSubclassOf(findings.superclass()->toByteArray());
    }
}

void generateShortcutsForManagedObject(const CDObject& object, const SourceFindings& findings,
                                       ManagedObjectContext& context) {
    NAVREL_ASSERT_MAIN_THREAD();
    for (const SourceShortcut& found : findings.shortcuts()) {
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

void generateElementsForManagedObject(const CDObject& object, const SourceFindings& findings,
                                      ManagedObjectContext& context) {
    NAVREL_ASSERT_MAIN_THREAD();
    findings.visitElements([&](const SourceElement& found) {
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

} // namespace navrel

// The data manager's dealings with the editor: which file is active, and opening one at a line.

#include "project/Editor.h"
#include "project/KZDataManager.h"
#include "project/ManagedObjectContext.h"

namespace navrel {

namespace {

/// A line as it comes from a device: a number or a decimal text. Nothing where there is none.
std::optional<int> lineNumber(const QVariant& line) {
    if (!line.isValid()) {
        return std::nullopt;
    }
    return line.toInt();
}

} // namespace

std::optional<QString> KZDataManager::objectIDForActiveFile() {
    const auto fileName = collaborators_.editor.activeFileName();
    ManagedObjectContext* context = managedObjectContext();
    if (!fileName || context == nullptr) {
        return std::nullopt;
    }
    // By name only, deliberately: that is all that an editor's window title tells. Of several files
    // of one name none can be told to be the active one.
    const auto objects = context->objectsWithName(fileName->toUtf8());
    if (objects.size() != 1 || !objects.front()->identifier()) {
        return std::nullopt;
    }
    return QString::fromUtf8(*objects.front()->identifier());
}

void KZDataManager::openFile(const std::optional<QString>& path, const QVariant& line) {
    if (path) {
        collaborators_.editor.openFile(*path, lineNumber(line));
    }
}

} // namespace navrel

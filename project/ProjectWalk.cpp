#include "project/ProjectWalk.h"

#include "project/FileSurvey.h"
#include "project/FolderListings.h"
#include "project/store/ManagedObjectContext.h"
#include "scanning/ScanningOperations.h"
#include "scanning/SourceFileScanner.h"
#include "support/files/FileDates.h"
#include "support/propertylist/PropertyListIndex.h"
#include "support/text/FilePath.h"

#include <QByteArrayView>

#include <algorithm>
#include <array>

namespace navrel {

namespace {

using Value = PropertyListDocument::Value;

constexpr std::array<QByteArrayView, 6> kScannedExtensions{"h", "m", "swift", "c", "mm", "cpp"};

QByteArray toByteArray(std::string_view text) {
    return {text.data(), static_cast<qsizetype>(text.size())};
}

std::optional<QByteArray> toByteArray(const std::optional<std::string_view>& text) {
    if (!text) {
        return std::nullopt;
    }
    return toByteArray(*text);
}

std::string_view toStringView(const QByteArray& text) {
    return {text.constData(), static_cast<std::size_t>(text.size())};
}

/// A string of an entry; nil where it is absent or of another kind.
std::optional<QByteArray> textIn(Value entry, std::string_view key) {
    const Value value = entry[key];
    return value.isString() ? std::optional(toByteArray(value.utf8())) : std::nullopt;
}

/// Whether the parent's path or the entry's own names no file for its length alone. To be asked
/// before they are joined: an entry of megabytes would be copied for each group that lists it.
bool isTooLong(const std::optional<QByteArray>& referencePath, Value entry) {
    constexpr auto kLongest = static_cast<std::size_t>(kMaximumPathLength);
    return referencePath &&
           (referencePath->size() > kMaximumPathLength || entry["path"].utf8().size() > kLongest);
}

/// The parent's path joined with the entry's own. Where the entry has none, that is the parent's:
/// the entry's source tree is ignored, a deliberate simplification.
std::optional<QByteArray> resolvedPath(const std::optional<QByteArray>& referencePath,
                                       Value entry) {
    const Value path = entry["path"];
    if (!referencePath || !path.isString()) {
        return referencePath;
    }
    return appendingPathComponent(*referencePath, path.utf8());
}

} // namespace

ProjectWalk::ProjectWalk(ManagedObjectContext& context, const PropertyListIndex* objects,
                         SourceFileScanner& scanner, FileSurvey& survey, FolderListings* listings,
                         ScanAllowance& allowance)
    : context_(context), objects_(objects), scanner_(scanner), survey_(survey), listings_(listings),
      allowance_(allowance), bytesScannedBefore_(scanner.bytesScanned()) {}

void ProjectWalk::generateObjectForID(const QByteArray& identifier,
                                      const std::optional<QByteArray>& referencePath,
                                      const std::optional<QByteArray>& parentID, qint32 index) {
    visit({toStringView(identifier), referencePath,
           parentID ? std::optional(toStringView(*parentID)) : std::nullopt, index});
    while (!levels_.empty() || !folderLevels_.empty()) {
        if (!folderLevels_.empty()) {
            visitNextEntry(folderLevels_.back());
        } else {
            visitNextChild(levels_.back());
        }
    }
}

void ProjectWalk::visitNextChild(Level& level) {
    if (level.nextChild == level.end) {
        levels_.pop_back();
        return;
    }
    const Value child = *level.nextChild;
    ++level.nextChild;
    const qint32 position = level.nextIndex++;
    if (child.isString()) {
        // A copy: the visit may move the levels.
        const std::optional<QByteArray> path = level.path;
        visit({child.utf8(), path, level.identifier, position});
    }
}

void ProjectWalk::visitNextEntry(FolderLevel& level) {
    if (level.next == level.entries.size()) {
        folderLevels_.pop_back();
        return;
    }
    // Copies: entering a folder may move the levels.
    ListedEntry entry = level.entries[level.next];
    const auto index = static_cast<qint32>(level.next++);
    const auto folder = level.folder;
    const QByteArray parent = level.identifier;
    const std::optional<QByteArray> parentPath = level.path;
    const QByteArray path = appendingPathComponent(*parentPath, entry.name);
    if (path.size() > kMaximumPathLength) {
        return;
    }
    entry.isFolder = folder->isEntered(entry, path);
    const QByteArray identifier = folder->identifierOf(path);
    const CDObject* object = refreshedRecord(
        {toStringView(identifier), parentPath, toStringView(parent), index, &entry}, Value());
    if (object != nullptr && entry.isFolder) {
        enterFolder(*object, path, folder);
    }
}

void ProjectWalk::visit(const Visit& visit) {
    const Value entry = objects_ != nullptr ? objects_->find(visit.identifier) : Value();
    const CDObject* object = refreshedRecord(visit, entry);
    if (object == nullptr) {
        return;
    }
    if (!isSynchronized(entry)) {
        enterChildren(*object, visit.identifier, entry);
    } else if (object->path()) {
        enterFolder(*object, *object->path(),
                    std::make_shared<SynchronizedFolder>(visit.identifier, *object->path()));
    }
}

bool ProjectWalk::isSynchronized(Value entry) const {
    return listings_ != nullptr && textIn(entry, "isa") == "PBXFileSystemSynchronizedRootGroup";
}

std::optional<QByteArray> ProjectWalk::pathOf(const Visit& visit, Value entry) const {
    return visit.onDisk != nullptr
               ? std::optional(appendingPathComponent(*visit.referencePath, visit.onDisk->name))
               : resolvedPath(visit.referencePath, entry);
}

/// The object's record, new or brought up to date; null where there is none and nothing to record,
/// or no room for it.
CDObject* ProjectWalk::refreshedRecord(const Visit& visit, Value entry) {
    CDObject* object = context_.lastObjectWithIdentifier(visit.identifier);
    if (object != nullptr && isInPlace(*object, visit)) {
        const std::optional<qint64> date =
            object->path() ? survey_.modificationDate(*object->path()) : std::nullopt;
        if (isUpToDate(*object, date) || (date && !mayScan())) {
            return object;
        }
        object->setModified(date);
    }
    // A path that is too long names no file; what lies below would only have longer ones, without
    // bound.
    if (isTooLong(visit.referencePath, entry)) {
        return nullptr;
    }
    const std::optional<QByteArray> path = pathOf(visit, entry);
    if (path && path->size() > kMaximumPathLength) {
        return nullptr;
    }
    if (object == nullptr) {
        if (!context_.hasRoomForObject() || !path || !survey_.exists(*path)) {
            return nullptr;
        }
        object = &context_.insertObject();
    }
    build(*object, visit, entry, path);
    return object;
}

/// Whether a record of what stands on disk is of that very path: the folder of the group may have
/// been moved.
bool ProjectWalk::isInPlace(const CDObject& object, const Visit& visit) const {
    return visit.onDisk == nullptr || object.path() == pathOf(visit, Value());
}

/// Whether the record's file is as it was when the record was built.
bool ProjectWalk::isUpToDate(const CDObject& object, const std::optional<qint64>& date) const {
    return date && date == object.modified();
}

/// Whether one more changed file may be scanned. Takes note of it where not.
bool ProjectWalk::mayScan() {
    const bool may = scanner_.bytesScanned() - bytesScannedBefore_ < allowance_.bytes;
    allowance_.isUsedUp = allowance_.isUsedUp || !may;
    return may;
}

void ProjectWalk::build(CDObject& object, const Visit& visit, Value entry,
                        const std::optional<QByteArray>& path) {
    object.setIndex(visit.index);
    object.setIdentifier(toByteArray(visit.identifier));
    object.setParentID(toByteArray(visit.parentID));
    if (path) {
        object.setPath(path);
        object.setModified(survey_.modificationDate(*path));
    }
    setKind(object, visit, entry, path);
    const QByteArray pathName = path ? lastPathComponent(*path) : QByteArray("unknown");
    object.setName(textIn(entry, "name").value_or(pathName));
}

void ProjectWalk::setKind(CDObject& object, const Visit& visit, Value entry,
                          const std::optional<QByteArray>& path) {
    const std::optional<QByteArray> kind = textIn(entry, "isa");
    const bool isFolder = visit.onDisk != nullptr && visit.onDisk->isFolder;
    if (kind == "PBXGroup" || isFolder || isSynchronized(entry)) {
        object.setIsGroup(true);
    } else if (kind == "PBXFileReference" || visit.onDisk != nullptr) {
        object.setIsGroup(false);
        buildFileReference(object, entry, path);
    } else {
        // Deliberate: a variant or version group counts as a group only by its own resolved path,
        // so that one without a path is a leaf.
        object.setIsGroup(path && pathExtension(*path) == "xib");
    }
}

void ProjectWalk::buildFileReference(CDObject& object, Value entry,
                                     const std::optional<QByteArray>& path) {
    object.setType(textIn(entry, "lastKnownFileType").value_or("unknown"));
    if (!path) {
        object.setExtension(QByteArray("unknown"));
        return;
    }
    const QByteArray extension = pathExtension(*path);
    addFiletype(extension);
    object.setExtension(extension);
    scan(object, extension);
}

void ProjectWalk::addFiletype(const QByteArray& extension) {
    if (context_.hasRoomForFiletype() && context_.filetypesWithExtension(extension).empty()) {
        CDFiletype& filetype = context_.insertFiletype();
        filetype.setAllowed(true);
        filetype.setExtension(extension);
    }
}

/// Has a source file scanned, and puts what was found in the place of what was found before.
void ProjectWalk::scan(CDObject& object, const QByteArray& extension) {
    if (std::find(kScannedExtensions.begin(), kScannedExtensions.end(), extension) ==
        kScannedExtensions.end()) {
        return;
    }
    const SourceFindings& findings = scanner_.scan(object.path());
    if (extension == "h") {
        setSuperclassForManagedObject(object, findings);
    }
    for (CDShortcut* shortcut : context_.shortcutsWithIdentifier(*object.identifier())) {
        context_.deleteShortcut(*shortcut);
    }
    generateShortcutsForManagedObject(object, findings, context_);
    for (CDElement* element : context_.elementsWithIdentifier(*object.identifier())) {
        context_.deleteElement(*element);
    }
    generateElementsForManagedObject(object, findings, context_);
}

void ProjectWalk::enterChildren(const CDObject& object, std::string_view identifier, Value entry) {
    const auto children = entry["children"].elements();
    if (children.begin() == children.end() || !isWorthWalking(object)) {
        return;
    }
    levels_.push_back({identifier, object.path(), children.begin(), children.end()});
}

void ProjectWalk::enterFolder(const CDObject& object, const QByteArray& path,
                              const std::shared_ptr<SynchronizedFolder>& folder) {
    if (isWorthWalking(object)) {
        folderLevels_.push_back({*object.identifier(), path, listings_->entriesOf(path), folder});
    }
}

/// Whether the children of an object are to be walked. Under a path under which they were walked in
/// this pass, or are being walked further up, they are not: the same parent, path and files would
/// give the same records again. So neither cycles nor groups that many others list cost time.
bool ProjectWalk::isWorthWalking(const CDObject& object) {
    std::vector<std::optional<QByteArray>>& paths = walkedPaths_[&object];
    if (paths.size() == kMaximumPathsOfObject ||
        std::find(paths.begin(), paths.end(), object.path()) != paths.end()) {
        return false;
    }
    paths.push_back(object.path());
    return true;
}

} // namespace navrel

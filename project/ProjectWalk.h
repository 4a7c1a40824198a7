#pragma once

#include "project/SynchronizedFolder.h"
#include "support/propertylist/PropertyListDocument.h"

#include <QByteArray>

#include <limits>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace navrel {

class CDObject;
class FileSurvey;
class FolderListings;
class ManagedObjectContext;
class PropertyListIndex;
class SourceFileScanner;

/// Under how many paths the children of an object are walked in one pass. An object whose file
/// exists has one path. One whose file is missing gets another path from each group that lists it:
/// two or three in real projects, but without end in a cycle.
inline constexpr std::size_t kMaximumPathsOfObject = 8;

/// How much a walk may scan of files that changed. Once it has scanned `bytes` bytes, it leaves the
/// records of further such files as they are, for the next walk.
struct ScanAllowance {
    static constexpr qint64 kUnlimited = std::numeric_limits<qint64>::max();

    qint64 bytes = kUnlimited;
    bool isUsedUp = false; ///< whether a record was left for the next walk
};

/// One walk over the group tree of a project file, which builds and refreshes the records of its
/// objects: depth first, parents before children, children in project order. The tree is untrusted:
/// it may be cyclic, of any depth, and name an object in many places. One thread at a time.
class ProjectWalk {
public:
    /// All arguments must outlive the walk, and the project file must not be read again meanwhile.
    /// `objects` is null if there is no project file. `listings` are those of synchronized folders;
    /// without them (null), such a folder is a leaf, like any object of unknown kind. New files are
    /// scanned whatever the allowance.
    ProjectWalk(ManagedObjectContext& context, const PropertyListIndex* objects,
                SourceFileScanner& scanner, FileSurvey& survey, FolderListings* listings,
                ScanAllowance& allowance);

    /// Walks one object and everything below it. `referencePath` is the resolved path of its
    /// parent.
    void generateObjectForID(const QByteArray& identifier,
                             const std::optional<QByteArray>& referencePath,
                             const std::optional<QByteArray>& parentID, qint32 index);

private:
    using Value = PropertyListDocument::Value;
    using Elements = PropertyListDocument::ElementIterator;

    /// One object in one of the groups that list it.
    struct Visit {
        std::string_view identifier;
        const std::optional<QByteArray>& referencePath;
        std::optional<std::string_view> parentID;
        qint32 index;
        /// The entry, for an object that is on disk and not in the project file; otherwise null.
        const ListedEntry* onDisk = nullptr;
    };
    /// A group with children that are still to be visited.
    struct Level {
        std::string_view identifier;
        std::optional<QByteArray> path;
        Elements nextChild;
        Elements end;
        qint32 nextIndex = 0;
    };

    /// A folder on disk with entries that are still to be visited.
    struct FolderLevel {
        QByteArray identifier;
        QByteArray path;
        ListedEntries entries;
        std::shared_ptr<SynchronizedFolder> folder;
        std::size_t next = 0;
    };

    void visit(const Visit& visit);
    void visitNextChild(Level& level);
    void visitNextEntry(FolderLevel& level);
    bool isSynchronized(Value entry) const;
    std::optional<QByteArray> pathOf(const Visit& visit, Value entry) const;
    CDObject* refreshedRecord(const Visit& visit, Value entry);
    bool isInPlace(const CDObject& object, const Visit& visit) const;
    bool isUpToDate(const CDObject& object, const std::optional<qint64>& date) const;
    bool mayScan();
    void build(CDObject& object, const Visit& visit, Value entry,
               const std::optional<QByteArray>& path);
    void buildFileReference(CDObject& object, Value entry, const std::optional<QByteArray>& path);
    void addFiletype(const QByteArray& extension);
    void scan(CDObject& object, const QByteArray& extension);
    void setKind(CDObject& object, const Visit& visit, Value entry,
                 const std::optional<QByteArray>& path);
    void enterChildren(const CDObject& object, std::string_view identifier, Value entry);
    void enterFolder(const CDObject& object, const QByteArray& path,
                     const std::shared_ptr<SynchronizedFolder>& folder);
    bool isWorthWalking(const CDObject& object);

    ManagedObjectContext& context_;
    const PropertyListIndex* objects_;
    SourceFileScanner& scanner_;
    FileSurvey& survey_;
    FolderListings* listings_;
    ScanAllowance& allowance_;
    const qint64 bytesScannedBefore_;
    std::vector<Level> levels_;
    std::vector<FolderLevel> folderLevels_; ///< of the synchronized folder that is being walked
    // The paths under which the children of an object were walked.
    std::unordered_map<const CDObject*, std::vector<std::optional<QByteArray>>> walkedPaths_;
};

} // namespace navrel

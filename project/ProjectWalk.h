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

/// In one pass, the children of an object are walked under no more paths than this. An object whose
/// file is there has one path; one whose file is missing takes a new one with each group that lists
/// it, of which real projects have two or three, while a cycle would lengthen it without end.
inline constexpr std::size_t kMaximumPathsOfObject = 8;

/// What a walk may scan of the files that changed: it begins no further one once it has scanned so
/// many bytes. Their records stay as they are, for the next walk.
struct ScanAllowance {
    static constexpr qint64 kUnlimited = std::numeric_limits<qint64>::max();

    qint64 bytes = kUnlimited;
    bool isUsedUp = false; ///< whether a record was left for the next walk
};

/// One walk over the group tree of a project file, which builds and refreshes the records of its
/// objects: depth first, parents before children, children in project order. The tree is untrusted:
/// it may be cyclic, of any depth, and name an object in many places. What the references name
/// outlives the walk, and the project file is not read again meanwhile.
class ProjectWalk {
public:
    /// `objects` is null where there is no project file. `listings` are those of synchronized
    /// folders; without them such a folder is a leaf, as every kind that is not known. New files
    /// are scanned whatever the allowance.
    ProjectWalk(ManagedObjectContext& context, const PropertyListIndex* objects,
                SourceFileScanner& scanner, FileSurvey& survey, FolderListings* listings,
                ScanAllowance& allowance);

    /// Walks from one object on. `referencePath` is the parent's resolved path.
    void generateObjectForID(const QByteArray& identifier,
                             const std::optional<QByteArray>& referencePath,
                             const std::optional<QByteArray>& parentID, qint32 index);

private:
    using Value = PropertyListDocument::Value;
    using Elements = PropertyListDocument::ElementIterator;

    /// One object as one group lists it.
    struct Visit {
        std::string_view identifier;
        const std::optional<QByteArray>& referencePath;
        std::optional<std::string_view> parentID;
        qint32 index;
        /// What it is where it stands on disk and not in the project file, else null.
        const ListedEntry* onDisk = nullptr;
    };
    /// A group some of whose children are still to be visited.
    struct Level {
        std::string_view identifier;
        std::optional<QByteArray> path;
        Elements nextChild;
        Elements end;
        qint32 nextIndex = 0;
    };

    /// A folder on disk some of whose entries are still to be visited.
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

#pragma once

#include "project/FileSurvey.h"
#include "project/FolderListings.h"
#include "project/ProjectFile.h"
#include "project/ProjectWalk.h"
#include "scanning/SourceFileScanner.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace navrel {

class CDObject;
class ManagedObjectContext;
class ProjectStore;

/// The passes over a project: from the project file and the file system to the records. Main
/// thread.
class ProjectPass {
public:
    /// `showsSynchronizedFolders`: whether the files in folders that the project mirrors have
    /// records. The store must outlive the passes.
    ProjectPass(ProjectStore& store, bool showsSynchronizedFolders)
        : store_(store), showsSynchronizedFolders_(showsSynchronizedFolders) {}

    /// How a pass ended: with every record up to date, or with some left for `resume`.
    enum class End { Complete, ToBeContinued };

    /// One pass over the bundle at a path: reads the project file, brings the records up to date,
    /// saves. One that follows a pass without changes costs one question to the file system a
    /// record. With an allowance, files that changed are left once so many bytes were scanned; the
    /// store is consistent then, too.
    End run(const QString& bundlePath, qint64 bytesToScan = ScanAllowance::kUnlimited);
    /// Goes on with a pass that was to be continued. No file is asked for its date, or scanned,
    /// that was before: a file that changes all the time holds up no other.
    End resume(const QString& bundlePath, qint64 bytesToScan);

    /// Builds or refreshes the record of one project object and, depth first, those below it, in
    /// the project file as last read.
    void generateObjectForID(const QByteArray& identifier,
                             const std::optional<QByteArray>& referencePath,
                             const std::optional<QByteArray>& parentID, qint32 index);

    /// What the record's file holds now. Valid until the next scan.
    const SourceFindings& scan(const CDObject& object);

    /// The project file as last read.
    const ProjectFile& projectFile() const { return projectFile_; }

private:
    /// What a pass that changed no record was based on, beside its survey of the files.
    struct QuietPass {
        quint64 projectFileGeneration;
        quint64 objectsGeneration;
    };

    End perform(const QString& bundlePath, qint64 bytesToScan);
    void logProblem(const QString& bundlePath);
    bool wouldChangeNothing(const ManagedObjectContext& context);
    End update(ManagedObjectContext& context, const QString& bundlePath, qint64 bytesToScan);
    void walk(ManagedObjectContext& context, const QByteArray& identifier,
              const std::optional<QByteArray>& referencePath,
              const std::optional<QByteArray>& parentID, qint32 index, ScanAllowance& allowance);
    void deleteVanishedObjects(ManagedObjectContext& context);

    ProjectStore& store_;
    bool showsSynchronizedFolders_;
    ProjectFile projectFile_;
    SourceFileScanner scanner_;
    FileSurvey survey_;
    FolderListings listings_;
    std::optional<QString> loggedProblem_;
    std::optional<QuietPass> quietPass_;
    bool isResumed_ = false;
};

} // namespace navrel

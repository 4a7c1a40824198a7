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

/// Runs the passes over a project, which bring its records up to date with the project file and the
/// file system. Main thread.
class ProjectPass {
public:
    /// `showsSynchronizedFolders` says whether the files in folders that the project mirrors get
    /// records. The store must outlive this.
    ProjectPass(ProjectStore& store, bool showsSynchronizedFolders)
        : store_(store), showsSynchronizedFolders_(showsSynchronizedFolders) {}

    /// How a pass ended: all records are up to date, or some are left for `resume`.
    enum class End { Complete, ToBeContinued };

    /// Runs a pass over the bundle at a path: reads the project file, brings the records up to
    /// date, saves. If the pass before changed nothing, this one costs one look-up of a file's date
    /// for each record. Once `bytesToScan` bytes of sources have been scanned, further files that
    /// changed are left for `resume`; the store is saved and consistent then, too.
    End run(const QString& bundlePath, qint64 bytesToScan = ScanAllowance::kUnlimited);
    /// Continues a pass that ended with ToBeContinued. Files whose dates it has looked up already
    /// are not looked at again, so a file that changes all the time does not hold up the others.
    End resume(const QString& bundlePath, qint64 bytesToScan);

    /// Builds or refreshes the record of one object of the project file as last read, then, depth
    /// first, those of its children.
    void generateObjectForID(const QByteArray& identifier,
                             const std::optional<QByteArray>& referencePath,
                             const std::optional<QByteArray>& parentID, qint32 index);

    /// Scans the record's file. The result is valid until the next scan.
    const SourceFindings& scan(const CDObject& object);

    /// The project file as last read.
    const ProjectFile& projectFile() const { return projectFile_; }

private:
    /// The state that a pass which changed no record was based on, in addition to its survey.
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
